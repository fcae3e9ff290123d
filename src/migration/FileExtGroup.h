#pragma once

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Velmora::Migration {

class FileExt;

// A checkable set of extensions. Unchecked means that files of these types stay behind.
class FileExtGroup : public QObject
{
    Q_OBJECT

public:
    explicit FileExtGroup(const QString& name, QObject* parent = nullptr);

    QString name() const { return m_name; }
    int extensionCount() const { return m_extensions.size(); }
    FileExt* extensionAt(int index) const { return m_extensions.value(index); }
    bool isChecked() const { return m_checked; }

    // Adds the extension in its normal form, unless the group holds it already.
    void addExtension(const QString& text);
    // Empty while the group is checked, else every member in order.
    QStringList filteredExtensions() const;

public slots:
    void setChecked(bool checked);

signals:
    void checkedChanged(bool checked);

private:
    QString m_name;
    QList<FileExt*> m_extensions;
    QSet<QString> m_known;
    bool m_checked = true;
};

} // namespace Velmora::Migration
