#include "migration/FileExtGroup.h"

#include "migration/FileExt.h"

namespace Velmora::Migration {

FileExtGroup::FileExtGroup(const QString& name, QObject* parent)
    : QObject(parent)
    , m_name(name)
{
}

void FileExtGroup::addExtension(const QString& text)
{
    const QString extension = FileExt::normalized(text);
    if (m_known.contains(extension))
        return;
    m_known.insert(extension);
    m_extensions.append(new FileExt(extension, this));
}

QStringList FileExtGroup::filteredExtensions() const
{
    QStringList result;
    if (m_checked)
        return result;
    result.reserve(m_extensions.size());
    for (const FileExt* extension : m_extensions)
        result.append(extension->extension());
    return result;
}

void FileExtGroup::setChecked(bool checked)
{
    if (checked == m_checked)
        return;
    m_checked = checked;
    emit checkedChanged(checked);
}

} // namespace Velmora::Migration
