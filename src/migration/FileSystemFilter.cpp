#include "migration/FileSystemFilter.h"

#include "logger/Logger.h"
#include "migration/FileSystemNode.h"

#include <QFileInfo>
#include <QIcon>

namespace Velmora::Migration {

using System::Bytes;

FileSystemFilter::FileSystemFilter(const QString& letter, QObject* parent)
    : QAbstractItemModel(parent)
    , m_root(new FileSystemNode(letter, FileSystemNode::Directory, false))
{
    m_root->setParent(this);
    m_root->setSize(Bytes(0));
}

QString FileSystemFilter::placeholderText()
{
    return tr("LOADING...");
}

QStringList FileSystemFilter::components(const QString& path)
{
    return path.split(FileSystemNode::Separator, Qt::SkipEmptyParts);
}

QString FileSystemFilter::normalizedKey(const QString& path)
{
    return components(path).join(FileSystemNode::Separator).toLower();
}

bool FileSystemFilter::isIgnored(const QString& directoryKey, const QString& nameKey) const
{
    if (m_systemIgnoredKeys.isEmpty())
        return false;
    return m_systemIgnoredKeys.contains(directoryKey + FileSystemNode::Separator + nameKey);
}

FileSystemNode* FileSystemFilter::nodeForPath(const QString& path) const
{
    const QStringList parts = components(path);
    if (parts.isEmpty() || FileSystemNode::key(parts.first()) != FileSystemNode::key(m_root->name()))
        return nullptr;
    FileSystemNode* node = m_root;
    for (int i = 1; i < parts.size() && node; ++i)
        node = node->findChild(parts.at(i));
    return node;
}

FileSystemNode* FileSystemFilter::nodeForIndex(const QModelIndex& index) const
{
    if (!index.isValid())
        return m_root;
    return static_cast<FileSystemNode*>(index.internalPointer());
}

QModelIndex FileSystemFilter::indexForNode(const FileSystemNode* node, int column) const
{
    if (!node || node == m_root)
        return QModelIndex();
    return createIndex(node->row(), column, const_cast<FileSystemNode*>(node));
}

QModelIndex FileSystemFilter::index(int row, int column, const QModelIndex& parent) const
{
    if (column < 0 || column >= ColumnCount || (parent.isValid() && parent.column() != 0))
        return QModelIndex();
    FileSystemNode* node = nodeForIndex(parent);
    FileSystemNode* child = node->child(row);
    if (!child)
        return QModelIndex();
    return createIndex(row, column, child);
}

QModelIndex FileSystemFilter::parent(const QModelIndex& index) const
{
    if (!index.isValid())
        return QModelIndex();
    return indexForNode(nodeForIndex(index)->parentNode());
}

int FileSystemFilter::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() && parent.column() != 0)
        return 0;
    return nodeForIndex(parent)->childCount();
}

int FileSystemFilter::columnCount(const QModelIndex& parent) const
{
    Q_UNUSED(parent)
    return ColumnCount;
}

QVariant FileSystemFilter::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return QVariant();
    if (section == PathColumn)
        return tr("PATH");
    if (section == SizeColumn)
        return tr("SIZE");
    return QVariant();
}

QVariant FileSystemFilter::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const FileSystemNode* node = nodeForIndex(index);
    switch (role) {
    case Qt::DecorationRole: {
        if (index.column() != PathColumn)
            return QVariant();
        // The service's paths rarely exist on this machine; where one does, its own type decides.
        const QFileInfo info(node->path());
        const bool folder = info.exists() ? info.isDir() : node->type() == FileSystemNode::Directory;
        return QIcon::fromTheme(folder ? QStringLiteral("folder") : QStringLiteral("text-x-generic"));
    }
    case Qt::DisplayRole:
        if (index.column() == PathColumn)
            return node->name();
        if (index.column() == SizeColumn)
            return node->size().value() == -1 ? QStringLiteral("...") : node->size().toString();
        return QVariant();
    case Qt::CheckStateRole:
        if (index.column() == PathColumn)
            return static_cast<int>(node->checkState());
        return QVariant();
    default:
        return QVariant();
    }
}

Qt::ItemFlags FileSystemFilter::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const FileSystemNode* node = nodeForIndex(index);
    if (node->type() == FileSystemNode::Placeholder)
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled;
    if (node->type() != FileSystemNode::Directory)
        result |= Qt::ItemNeverHasChildren;
    if (!node->isLocked())
        result |= Qt::ItemIsUserCheckable;
    return result;
}

bool FileSystemFilter::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole)
        return true;
    FileSystemNode* node = nodeForIndex(index);
    const auto state = node->isLocked() ? Qt::Checked : static_cast<Qt::CheckState>(value.toInt());
    node->setCheckState(state);
    emitCheckStateChanges(node);
    return true;
}

void FileSystemFilter::emitCheckStateChanges(FileSystemNode* node)
{
    const QVector<int> roles = {Qt::CheckStateRole};
    for (FileSystemNode* up = node; up && up != m_root; up = up->parentNode()) {
        const QModelIndex at = indexForNode(up);
        emit dataChanged(at, at, roles);
    }
    // Below the node, one notification per directory covers all of its rows.
    QVector<FileSystemNode*> pending = {node};
    while (!pending.isEmpty()) {
        FileSystemNode* directory = pending.takeLast();
        if (directory->childCount() == 0)
            continue;
        emit dataChanged(indexForNode(directory->child(0)), indexForNode(directory->child(directory->childCount() - 1)),
            roles);
        for (FileSystemNode* child : directory->children())
            pending.append(child);
    }
}

bool FileSystemFilter::canFetchMore(const QModelIndex& parent) const
{
    return !nodeForIndex(parent)->isLoaded();
}

void FileSystemFilter::fetchMore(const QModelIndex& parent)
{
    // Loading follows the view's expanded() signal instead.
    Q_UNUSED(parent)
}

void FileSystemFilter::onItemExpanded(const QModelIndex& index)
{
    FileSystemNode* node = nodeForIndex(index);
    node->setLoaded(true);
    emit requestFileSystemData(node->path());
}

void FileSystemFilter::requestRootData()
{
    emit requestFileSystemData(m_root->path());
}

FileSystemNode* FileSystemFilter::addDirectory(FileSystemNode* parent, const QString& name, const Bytes& size)
{
    FileSystemNode* child = parent->findChild(name);
    if (child) {
        child->setSize(size);
        const QModelIndex at = indexForNode(child, SizeColumn);
        emit dataChanged(at, at);
    } else {
        const int row = parent->childCount();
        beginInsertRows(indexForNode(parent), row, row);
        child = parent->appendChild(name, FileSystemNode::Directory, size);
        endInsertRows();
    }
    finishDirectory(child);
    return child;
}

void FileSystemFilter::finishDirectory(FileSystemNode* directory)
{
    if (m_systemPathKeys.contains(normalizedKey(directory->path())))
        directory->lockTree();
    if (!directory->isLoaded() && !directory->placeholder()) {
        const int row = directory->childCount();
        beginInsertRows(indexForNode(directory), row, row);
        directory->appendPlaceholder(placeholderText());
        endInsertRows();
    }
}

void FileSystemFilter::addDirs(const QString& path, const QStringList& names, const QList<Bytes>& sizes)
{
    FileSystemNode* node = nodeForPath(path);
    if (!node) {
        Logger::error(QString(), QStringLiteral("Trying to add dirs to not existing node [%1].").arg(path));
        return;
    }
    const QModelIndex parentIndex = indexForNode(node);
    if (node->placeholder()) {
        const int row = node->placeholder()->row();
        beginRemoveRows(parentIndex, row, row);
        node->removePlaceholder();
        endRemoveRows();
    }
    if (parentIndex.isValid())
        emit dataChanged(parentIndex, indexForNode(node, SizeColumn));

    const QString baseKey = normalizedKey(node->path());
    // Directories new to the node go in with one row operation; known ones only change size.
    QList<int> fresh;
    QSet<QString> freshKeys;
    for (int i = 0; i < names.size(); ++i) {
        const QString& name = names.at(i);
        const QString key = FileSystemNode::key(name);
        if (isIgnored(baseKey, key))
            continue;
        const Bytes size = sizes.value(i, Bytes(-1));
        if (FileSystemNode* known = node->findChildByKey(key)) {
            addDirectory(node, known->name(), size);
            continue;
        }
        if (freshKeys.contains(key))
            continue;
        freshKeys.insert(key);
        fresh.append(i);
    }
    if (fresh.isEmpty())
        return;
    const int first = node->childCount();
    QList<FileSystemNode*> added;
    added.reserve(fresh.size());
    beginInsertRows(parentIndex, first, first + fresh.size() - 1);
    for (int i : qAsConst(fresh))
        added.append(node->appendChild(names.at(i), FileSystemNode::Directory, sizes.value(i, Bytes(-1))));
    endInsertRows();
    for (FileSystemNode* child : qAsConst(added))
        finishDirectory(child);
}

void FileSystemFilter::addFiles(const QString& path, const QStringList& names, const QList<Bytes>& sizes)
{
    if (names.size() != sizes.size()) {
        Logger::error(QString(), QStringLiteral("Cannot add files. Size of name and size lists do not match."));
        return;
    }
    FileSystemNode* node = nodeForPath(path);
    if (!node) {
        Logger::error(QString(), QStringLiteral("Node '%1' does not exist.").arg(path));
        return;
    }
    const QModelIndex parentIndex = indexForNode(node);
    const QString baseKey = normalizedKey(node->path());
    QList<int> fresh;
    fresh.reserve(names.size());
    QSet<QString> freshKeys;
    freshKeys.reserve(names.size());
    for (int i = 0; i < names.size(); ++i) {
        const QString& name = names.at(i);
        const QString key = FileSystemNode::key(name);
        if (isIgnored(baseKey, key))
            continue;
        if (FileSystemNode* known = node->findChildByKey(key)) {
            known->setSize(sizes.at(i));
            const QModelIndex at = indexForNode(known, SizeColumn);
            emit dataChanged(at, at);
            continue;
        }
        if (freshKeys.contains(key))
            continue;
        freshKeys.insert(key);
        fresh.append(i);
    }
    if (fresh.isEmpty())
        return;
    const int first = node->childCount();
    beginInsertRows(parentIndex, first, first + fresh.size() - 1);
    for (int i : qAsConst(fresh))
        node->appendChild(names.at(i), FileSystemNode::File, sizes.at(i));
    endInsertRows();
}

void FileSystemFilter::setSystemPaths(const QStringList& paths)
{
    if (paths == m_systemPaths)
        return;
    m_systemPaths = paths;
    m_systemPathKeys.clear();
    for (const QString& path : paths)
        m_systemPathKeys.insert(normalizedKey(path));

    QStringList directories;
    QSet<QString> seen;
    for (const QString& path : paths) {
        const QStringList parts = components(path);
        if (parts.isEmpty() || FileSystemNode::key(parts.first()) != FileSystemNode::key(m_root->name()))
            continue;
        for (int i = 1; i < parts.size(); ++i) {
            const QString directory = parts.mid(0, i).join(FileSystemNode::Separator);
            const QString key = directory.toLower();
            if (!seen.contains(key)) {
                seen.insert(key);
                directories.append(directory);
            }
        }
        FileSystemNode* node = m_root;
        for (int i = 1; i < parts.size(); ++i) {
            FileSystemNode* next = node->findChild(parts.at(i));
            node = next ? next : addDirectory(node, parts.at(i), Bytes(-1));
        }
        if (node != m_root)
            node->lockTree();
    }
    for (const QString& directory : qAsConst(directories))
        emit requestFileSystemData(directory);
}

void FileSystemFilter::setSystemIgnoredPaths(const QStringList& paths)
{
    if (paths == m_systemIgnoredPaths)
        return;
    m_systemIgnoredPaths = paths;
    m_systemIgnoredKeys.clear();
    for (const QString& path : paths)
        m_systemIgnoredKeys.insert(normalizedKey(path));
}

QStringList FileSystemFilter::uncheckedPaths() const
{
    QStringList paths;
    collectUnchecked(m_root, paths);
    return paths;
}

void FileSystemFilter::collectUnchecked(const FileSystemNode* node, QStringList& paths) const
{
    for (const FileSystemNode* child : node->children()) {
        if (child->type() == FileSystemNode::Placeholder)
            continue;
        if (child->checkState() == Qt::Unchecked)
            paths.append(child->path());
        else if (child->checkState() == Qt::PartiallyChecked)
            collectUnchecked(child, paths);
    }
}

} // namespace Velmora::Migration
