#include "migration/FileSystemNode.h"

namespace Velmora::Migration {

const QChar FileSystemNode::Separator = QLatin1Char('\\');

FileSystemNode::FileSystemNode(const QString& name, NodeType type, bool locked, FileSystemNode* parentNode)
    : QObject(parentNode)
    , m_name(name.endsWith(Separator) ? name.left(name.size() - 1) : name)
    , m_type(type)
    , m_parentNode(parentNode)
    , m_locked(locked)
{
}

FileSystemNode* FileSystemNode::findChild(const QString& name) const
{
    return m_byName.value(key(name));
}

QString FileSystemNode::path() const
{
    QStringList parts;
    for (const FileSystemNode* node = this; node; node = node->m_parentNode)
        parts.prepend(node->m_name);
    return parts.join(Separator);
}

FileSystemNode* FileSystemNode::appendChild(const QString& name, NodeType type, const System::Bytes& size)
{
    auto* node = new FileSystemNode(name, type, m_locked, this);
    node->m_size = size;
    node->m_row = m_children.size();
    if (m_checkState == Qt::Unchecked)
        node->m_checkState = Qt::Unchecked;
    m_children.append(node);
    if (type == Placeholder)
        m_placeholder = node;
    else
        m_byName.insert(key(node->m_name), node);
    countChild(node->m_checkState, 1);
    return node;
}

FileSystemNode* FileSystemNode::appendPlaceholder(const QString& text)
{
    return appendChild(text, Placeholder, System::Bytes(0));
}

int FileSystemNode::removePlaceholder()
{
    if (!m_placeholder)
        return -1;
    const int row = m_placeholder->m_row;
    countChild(m_placeholder->m_checkState, -1);
    m_children.remove(row);
    for (int i = row; i < m_children.size(); ++i)
        m_children[i]->m_row = i;
    delete m_placeholder;
    m_placeholder = nullptr;
    return row;
}

void FileSystemNode::lockTree()
{
    m_locked = true;
    for (FileSystemNode* child : qAsConst(m_children))
        child->lockTree();
}

void FileSystemNode::setCheckState(Qt::CheckState state)
{
    applyState(state, true);
}

void FileSystemNode::applyState(Qt::CheckState state, bool settleParent)
{
    if (state == m_checkState)
        return;
    const Qt::CheckState previous = m_checkState;
    m_checkState = state;
    if (m_parentNode) {
        m_parentNode->childStateChanged(previous, state);
        if (settleParent)
            m_parentNode->onChildNodeCheckStateChanged();
    }
    if (state == Qt::PartiallyChecked)
        return;
    // The children follow; this node settles once at the end instead of after each of them.
    for (FileSystemNode* child : qAsConst(m_children)) {
        if (!child->m_locked)
            child->applyState(state, false);
    }
    if (!m_children.isEmpty())
        settleFromChildren();
}

void FileSystemNode::onChildNodeCheckStateChanged()
{
    settleFromChildren();
}

void FileSystemNode::settleFromChildren()
{
    Qt::CheckState state = Qt::PartiallyChecked;
    if (m_children.isEmpty() || m_checkedChildren == m_children.size())
        state = Qt::Checked;
    else if (m_uncheckedChildren == m_children.size())
        state = Qt::Unchecked;
    setCheckState(state);
}

void FileSystemNode::childStateChanged(Qt::CheckState from, Qt::CheckState to)
{
    countChild(from, -1);
    countChild(to, 1);
}

void FileSystemNode::countChild(Qt::CheckState state, int delta)
{
    if (state == Qt::Checked)
        m_checkedChildren += delta;
    else if (state == Qt::Unchecked)
        m_uncheckedChildren += delta;
}

} // namespace Velmora::Migration
