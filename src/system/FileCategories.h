#pragma once

#include <QColor>
#include <QDataStream>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QVariant>

namespace Velmora::System {

// The kinds of files the used space of a drive divides into. Plain ints travel everywhere.
namespace FileCategory {
enum Value { System = 0, Programs = 1, Documents = 2, Video = 3, Sound = 4, Pictures = 5, Other = 6 };
}

namespace FileCategoryStatus {
enum Value { NotScanned = 0, Scanning = 1, Complete = 2 };
}

// A snapshot of a finished scan, kept in the settings so that it survives a restart.
struct FileCategoriesData {
    FileCategoriesData();
    bool valid = false;
    QDateTime takenAt;
    QMap<int, qint64> sizes;
};

QDataStream& operator<<(QDataStream& stream, const FileCategoriesData& data);
QDataStream& operator>>(QDataStream& stream, FileCategoriesData& data);

// Every walk through the categories goes in this order: alphabetical by their names.
QList<int> categories();
QString categoryExtensions(int category);
QString categoryPaths(int category);

// How one drive's used space divides among the categories, and how far the service's scan is.
class FileCategories : public QObject
{
    Q_OBJECT

public:
    static constexpr int ColorRole = 9;

    FileCategories(const QString& key, QObject* parent = nullptr);

    static QString categoryName(int category);
    static QColor categoryColor(int category);

    qint64 size(int category) const { return m_data.sizes.value(category, 0); }
    void setSize(int category, qint64 size);
    void setSizes(const QMap<int, qint64>& sizes);
    void clearSizes();
    qint64 totalSize() const;

    double progress() const { return m_progress; }
    int status() const { return m_status; }
    QDateTime timestamp() const { return m_data.takenAt; }
    void setStatus(int status, double progress);

    QVariant data(int category, int role) const;

signals:
    void categoryDataChanged();

private:
    void restore();

    QString m_key;
    FileCategoriesData m_data;
    int m_status = FileCategoryStatus::NotScanned;
    double m_progress = 0.0;
};

} // namespace Velmora::System

Q_DECLARE_METATYPE(Velmora::System::FileCategoriesData)
