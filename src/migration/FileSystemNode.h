#pragma once

#include "system/Bytes.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>

namespace Velmora::Migration {

// One file or directory of a partition's tree, with its checkbox. A directory keeps counts of its
// children's states, so that a change below settles its own state without walking all siblings.
class FileSystemNode : public QObject
{
    Q_OBJECT

public:
    enum NodeType { Directory = 0, File = 1, Placeholder = 2 };

    // Paths of the service use the separator of its platform.
    static const QChar Separator;

    FileSystemNode(const QString& name, NodeType type, bool locked, FileSystemNode* parentNode = nullptr);

    QString name() const { return m_name; }
    NodeType type() const { return m_type; }
    Qt::CheckState checkState() const { return m_checkState; }
    void setCheckState(Qt::CheckState state);
    bool isLoaded() const { return m_loaded; }
    void setLoaded(bool loaded) { m_loaded = loaded; }
    bool isLocked() const { return m_locked; }
    // Locks this node and everything below it.
    void lockTree();

    FileSystemNode* parentNode() const { return m_parentNode; }
    FileSystemNode* placeholder() const { return m_placeholder; }
    System::Bytes size() const { return m_size; }
    void setSize(const System::Bytes& size) { m_size = size; }

    int childCount() const { return m_children.size(); }
    FileSystemNode* child(int row) const { return m_children.value(row); }
    const QVector<FileSystemNode*>& children() const { return m_children; }
    // Case-insensitive; placeholders are never found by name.
    FileSystemNode* findChild(const QString& name) const;
    FileSystemNode* findChildByKey(const QString& nameKey) const { return m_byName.value(nameKey); }
    int row() const { return m_row; }
    QString path() const;

    // A new child inherits the lock and comes up unchecked under an unchecked parent.
    FileSystemNode* appendChild(const QString& name, NodeType type, const System::Bytes& size);
    FileSystemNode* appendPlaceholder(const QString& text);
    // Returns the placeholder's former row, or -1 when there was none.
    int removePlaceholder();

    static QString key(const QString& name) { return name.toLower(); }

public slots:
    void onChildNodeCheckStateChanged();

private:
    void childStateChanged(Qt::CheckState from, Qt::CheckState to);
    void countChild(Qt::CheckState state, int delta);
    void applyState(Qt::CheckState state, bool settleParent);
    void settleFromChildren();

    QString m_name;
    NodeType m_type;
    Qt::CheckState m_checkState = Qt::Checked;
    bool m_loaded = false;
    FileSystemNode* m_parentNode;
    FileSystemNode* m_placeholder = nullptr;
    System::Bytes m_size;
    QVector<FileSystemNode*> m_children;
    QHash<QString, FileSystemNode*> m_byName;
    bool m_locked;
    int m_row = 0;
    int m_checkedChildren = 0;
    int m_uncheckedChildren = 0;
};

} // namespace Velmora::Migration
