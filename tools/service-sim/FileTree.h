#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace Velmora::ServiceSim {

// The content of one simulated volume. In a scenario a directory is a JSON object whose members
// are its entries; a file is a size (a number of bytes, or a text such as "2.5 GiB").
// Names compare case-insensitively, as on the volumes the service walks.
class FileTree
{
public:
    struct Node {
        QString name;
        bool directory = true;
        quint64 size = 0; // a file's size, or the sum of everything below a directory
        std::vector<Node> children;
    };

    static bool fromJson(const QJsonObject& root, FileTree* tree, QString* error);

    bool isEmpty() const { return m_root.children.empty(); }
    quint64 totalSize() const { return m_root.size; }

    // The node at the given components below the root; the root itself for none.
    const Node* find(const QStringList& components) const;

    // Every file with its path below the root ("Windows\\System32\\x.dll"), depth first in the
    // order of the entries.
    void forEachFile(const std::function<void(const QString& path, quint64 size)>& visit) const;

    // A copy that keeps only the files for which `keep` answers true, and the directories on
    // their way.
    FileTree filtered(const std::function<bool(const QString& path)>& keep) const;

private:
    static bool readDirectory(const QJsonObject& object, Node* directory, const QString& path, QString* error);
    static void visitFiles(const Node& directory, const QString& prefix,
        const std::function<void(const QString&, quint64)>& visit);
    static bool copyFiltered(const Node& from, Node* to, const QString& prefix,
        const std::function<bool(const QString&)>& keep);

    Node m_root;
};

} // namespace Velmora::ServiceSim
