#pragma once

#include "system/Bytes.h"

#include <QAbstractItemModel>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Velmora::Migration {

class FileSystemNode;

// The files and directories of one partition, each with a checkbox, loaded a directory at a time
// as the user opens them. Paths that the system needs are locked and always go across.
class FileSystemFilter : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { PathColumn = 0, SizeColumn = 1, ColumnCount = 2 };

    explicit FileSystemFilter(const QString& letter, QObject* parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

    FileSystemNode* rootNode() const { return m_root; }
    FileSystemNode* nodeForPath(const QString& path) const;
    FileSystemNode* nodeForIndex(const QModelIndex& index) const;
    QModelIndex indexForNode(const FileSystemNode* node, int column = 0) const;

    QStringList systemPaths() const { return m_systemPaths; }
    QStringList systemIgnoredPaths() const { return m_systemIgnoredPaths; }
    void setSystemPaths(const QStringList& paths);
    void setSystemIgnoredPaths(const QStringList& paths);

    void addFiles(const QString& path, const QStringList& names, const QList<System::Bytes>& sizes);
    void addDirs(const QString& path, const QStringList& names, const QList<System::Bytes>& sizes);

    // The fewest paths that together cover every unchecked node.
    QStringList uncheckedPaths() const;
    void requestRootData();

    static QStringList components(const QString& path);
    static QString placeholderText();

public slots:
    void onItemExpanded(const QModelIndex& index);

signals:
    void requestFileSystemData(QString path);
    void requestFilterExcludedSize();

private:
    static QString normalizedKey(const QString& path);
    // Whether the service wants `nameKey` under the directory of `directoryKey` left out.
    bool isIgnored(const QString& directoryKey, const QString& nameKey) const;
    FileSystemNode* addDirectory(FileSystemNode* parent, const QString& name, const System::Bytes& size);
    void finishDirectory(FileSystemNode* directory);
    void emitCheckStateChanges(FileSystemNode* node);
    void collectUnchecked(const FileSystemNode* node, QStringList& paths) const;

    FileSystemNode* m_root;
    QStringList m_systemPaths;
    QStringList m_systemIgnoredPaths;
    QSet<QString> m_systemPathKeys;
    QSet<QString> m_systemIgnoredKeys;
};

} // namespace Velmora::Migration
