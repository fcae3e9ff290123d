#include "migration/ExtensionsFilter.h"

#include "migration/FileExtGroup.h"
#include "system/FileCategories.h"

#include <QRegularExpression>

namespace Velmora::Migration {

using Velmora::System::FileCategories;
namespace FileCategory = Velmora::System::FileCategory;

ExtensionsFilter::ExtensionsFilter(QObject* parent)
    : QObject(parent)
{
    for (int category : {FileCategory::Documents, FileCategory::Pictures, FileCategory::Video, FileCategory::Sound})
        addGroup(category);
}

QStringList ExtensionsFilter::filteredExtensions() const
{
    QStringList result;
    for (const FileExtGroup* group : m_groups)
        result.append(group->filteredExtensions());
    return result;
}

void ExtensionsFilter::setGroup(int category, const QString& extensionsText)
{
    static const QRegularExpression separators(QStringLiteral("[;, ]"));
    const QStringList parts = extensionsText.split(separators, Qt::SkipEmptyParts);
    auto* group = new FileExtGroup(FileCategories::categoryName(category), this);
    for (const QString& part : parts)
        group->addExtension(part);
    m_groups.insert(category, group);
    emit extensionGroupAdded(category);
}

void ExtensionsFilter::addGroup(int category)
{
    setGroup(category, Velmora::System::categoryExtensions(category));
}

} // namespace Velmora::Migration
