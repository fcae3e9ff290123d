#pragma once

#include <QObject>
#include <QString>

namespace Velmora::Migration {

// One file extension in the form the service compares: lower case, with its dot, without a
// leading star. "*.MP3", "mp3" and " .mp3 " are all ".mp3".
class FileExt : public QObject
{
    Q_OBJECT

public:
    explicit FileExt(const QString& text, QObject* parent = nullptr);

    static QString normalized(const QString& text);

    QString extension() const { return m_extension; }

private:
    QString m_extension;
};

} // namespace Velmora::Migration
