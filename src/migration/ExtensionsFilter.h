#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

namespace Velmora::Migration {

class FileExtGroup;

// The file-type groups of one partition that the user may leave behind, keyed by file category.
class ExtensionsFilter : public QObject
{
    Q_OBJECT

public:
    explicit ExtensionsFilter(QObject* parent = nullptr);

    bool hasGroup(int category) const { return m_groups.contains(category); }
    FileExtGroup* group(int category) const { return m_groups.value(category); }
    QList<int> categories() const { return m_groups.keys(); }

    // The members of every unchecked group, in ascending order of category.
    QStringList filteredExtensions() const;

    // Replaces the group of `category` by one made of `extensionsText`; the former group stays a
    // child of this filter.
    void setGroup(int category, const QString& extensionsText);
    void addGroup(int category);

signals:
    void extensionGroupAdded(int category);

private:
    QMap<int, FileExtGroup*> m_groups;
};

} // namespace Velmora::Migration
