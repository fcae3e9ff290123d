#pragma once

#include "logger/Logger.h"

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

// Records every log line written while it lives, through the logger's line hook, so that tests
// can assert the lines the program must write. The line format itself is untouched.
class LogCapture
{
public:
    struct Entry {
        int level;
        QString message;  // the text after the tag separator
        QString line;     // the console line as written, colours included
    };

    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QVector<Entry> entries() const;
    QStringList messages() const;
    QStringList messages(int level) const;
    int count(const QString& message) const;
    int countStartingWith(const QString& prefix) const;
    void clear();

private:
    mutable QMutex m_mutex;
    QVector<Entry> m_entries;
};
