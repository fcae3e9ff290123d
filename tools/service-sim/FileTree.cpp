#include "FileTree.h"

#include "SizeText.h"

namespace Velmora::ServiceSim {

bool FileTree::fromJson(const QJsonObject& root, FileTree* tree, QString* error)
{
    tree->m_root = Node();
    return readDirectory(root, &tree->m_root, QString(), error);
}

bool FileTree::readDirectory(const QJsonObject& object, Node* directory, const QString& path, QString* error)
{
    for (auto it = object.begin(); it != object.end(); ++it) {
        Node child;
        child.name = it.key();
        const QString childPath = path.isEmpty() ? child.name : path + QLatin1Char('\\') + child.name;
        if (it.value().isObject()) {
            if (!readDirectory(it.value().toObject(), &child, childPath, error))
                return false;
        } else {
            child.directory = false;
            if (!SizeText::parse(it.value(), &child.size)) {
                *error = QStringLiteral("File \"%1\" has no readable size").arg(childPath);
                return false;
            }
        }
        directory->size += child.size;
        directory->children.push_back(std::move(child));
    }
    return true;
}

const FileTree::Node* FileTree::find(const QStringList& components) const
{
    const Node* node = &m_root;
    for (const QString& component : components) {
        const Node* next = nullptr;
        for (const Node& child : node->children) {
            if (child.name.compare(component, Qt::CaseInsensitive) == 0) {
                next = &child;
                break;
            }
        }
        if (!next)
            return nullptr;
        node = next;
    }
    return node;
}

void FileTree::forEachFile(const std::function<void(const QString&, quint64)>& visit) const
{
    visitFiles(m_root, QString(), visit);
}

void FileTree::visitFiles(const Node& directory, const QString& prefix,
    const std::function<void(const QString&, quint64)>& visit)
{
    for (const Node& child : directory.children) {
        const QString path = prefix.isEmpty() ? child.name : prefix + QLatin1Char('\\') + child.name;
        if (child.directory)
            visitFiles(child, path, visit);
        else
            visit(path, child.size);
    }
}

FileTree FileTree::filtered(const std::function<bool(const QString&)>& keep) const
{
    FileTree copy;
    copyFiltered(m_root, &copy.m_root, QString(), keep);
    return copy;
}

bool FileTree::copyFiltered(const Node& from, Node* to, const QString& prefix,
    const std::function<bool(const QString&)>& keep)
{
    to->name = from.name;
    to->directory = from.directory;
    to->size = 0;
    for (const Node& child : from.children) {
        const QString path = prefix.isEmpty() ? child.name : prefix + QLatin1Char('\\') + child.name;
        Node copied;
        if (child.directory) {
            if (!copyFiltered(child, &copied, path, keep))
                continue;
        } else {
            if (!keep(path))
                continue;
            copied = child;
        }
        to->size += copied.size;
        to->children.push_back(std::move(copied));
    }
    // Empty directories the user left out do not come across; those that were empty go along.
    return !to->children.empty() || from.children.empty();
}

} // namespace Velmora::ServiceSim
