#include "migration/ExtensionsFilter.h"
#include "migration/FileExt.h"
#include "migration/FileExtGroup.h"
#include "migration/FileSystemFilter.h"
#include "migration/FileSystemNode.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/FileCategories.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using Velmora::Migration::ExtensionsFilter;
using Velmora::Migration::FileExt;
using Velmora::Migration::FileExtGroup;
using Velmora::Migration::FileSystemFilter;
using Velmora::Migration::FileSystemNode;
using Velmora::System::Bytes;
namespace FileCategory = Velmora::System::FileCategory;

namespace {

QList<Bytes> sizes(int count, qint64 each = 1000)
{
    QList<Bytes> result;
    for (int i = 0; i < count; ++i)
        result.append(Bytes(each));
    return result;
}

// C:\ with Users (Ann, Bob), Windows (System32) and two files, all listed as the service would.
struct Tree {
    Tree()
        : model(QStringLiteral("C:"))
        , tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest)
    {
    }

    void fill()
    {
        model.addDirs(QStringLiteral("C:\\"), {QStringLiteral("Users"), QStringLiteral("Windows")}, sizes(2));
        model.addFiles(QStringLiteral("C:\\"), {QStringLiteral("boot.ini"), QStringLiteral("notes.txt")}, sizes(2));
        model.addDirs(QStringLiteral("C:\\Users\\"), {QStringLiteral("Ann"), QStringLiteral("Bob")}, sizes(2));
        model.addFiles(QStringLiteral("C:\\Users\\"), {}, {});
        model.addDirs(QStringLiteral("C:\\Windows\\"), {QStringLiteral("System32")}, sizes(1));
    }

    QModelIndex at(const QString& path) const { return model.indexForNode(model.nodeForPath(path)); }
    Qt::CheckState state(const QString& path) const { return model.nodeForPath(path)->checkState(); }
    void uncheck(const QString& path) { QVERIFY(model.setData(at(path), Qt::Unchecked, Qt::CheckStateRole)); }
    void check(const QString& path) { QVERIFY(model.setData(at(path), Qt::Checked, Qt::CheckStateRole)); }

    FileSystemFilter model;
    QAbstractItemModelTester tester;
};

} // namespace

class TestMigrationFilters : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void extensionNormalForm_data();
    void extensionNormalForm();
    void groupsFromText_data();
    void groupsFromText();
    void filteredExtensions();
    void modelShape();
    void placeholdersAndLazyLoading();
    void checkPropagation();
    void lockedSystemPaths();
    void smallestListOfUncheckedPaths();
    void directoryUncheckedBeforeItsChildrenArrive();
    void ignoredPathsNeverShow();
    void bulkInsertIsOneRowOperation();
    void badInput();
};

void TestMigrationFilters::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
}

void TestMigrationFilters::extensionNormalForm_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("normal");
    QTest::newRow("star") << "*.MP3" << ".mp3";
    QTest::newRow("bare") << "mp3" << ".mp3";
    QTest::newRow("blanks") << " .mp3 " << ".mp3";
    QTest::newRow("star without dot") << "*Mp3" << ".mp3";
    QTest::newRow("double extension") << "TAR.GZ" << ".tar.gz";
}

void TestMigrationFilters::extensionNormalForm()
{
    QFETCH(QString, text);
    QFETCH(QString, normal);
    QCOMPARE(FileExt(text).extension(), normal);
}

void TestMigrationFilters::groupsFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("members");
    QTest::newRow("one extension three ways") << "mp3, *.MP3;.Mp3" << QStringList{".mp3"};
    QTest::newRow("mixed separators") << "avi;mkv, mp4  wmv" << QStringList{".avi", ".mkv", ".mp4", ".wmv"};
    QTest::newRow("empty") << " ;, " << QStringList();
}

void TestMigrationFilters::groupsFromText()
{
    QFETCH(QString, text);
    QFETCH(QStringList, members);

    ExtensionsFilter filter;
    QSignalSpy added(&filter, &ExtensionsFilter::extensionGroupAdded);
    filter.setGroup(FileCategory::Video, text);
    QCOMPARE(added.count(), 1);
    FileExtGroup* group = filter.group(FileCategory::Video);
    QCOMPARE(group->name(), QStringLiteral("VIDEO"));
    QStringList found;
    for (int i = 0; i < group->extensionCount(); ++i)
        found.append(group->extensionAt(i)->extension());
    QCOMPARE(found, members);
}

void TestMigrationFilters::filteredExtensions()
{
    ExtensionsFilter filter;
    QCOMPARE(filter.categories(),
        QList<int>({FileCategory::Documents, FileCategory::Video, FileCategory::Sound, FileCategory::Pictures}));
    QVERIFY(filter.filteredExtensions().isEmpty());

    filter.setGroup(FileCategory::Pictures, QStringLiteral("png;jpg"));
    filter.setGroup(FileCategory::Sound, QStringLiteral("flac"));
    FileExtGroup* pictures = filter.group(FileCategory::Pictures);
    QSignalSpy toggled(pictures, &FileExtGroup::checkedChanged);
    pictures->setChecked(false);
    pictures->setChecked(false);
    QCOMPARE(toggled.count(), 1);
    QCOMPARE(filter.filteredExtensions(), QStringList({".png", ".jpg"}));

    // Ascending category: sound (4) before pictures (5).
    filter.group(FileCategory::Sound)->setChecked(false);
    QCOMPARE(filter.filteredExtensions(), QStringList({".flac", ".png", ".jpg"}));
    QCOMPARE(filter.group(FileCategory::Documents)->filteredExtensions(), QStringList());
}

void TestMigrationFilters::modelShape()
{
    Tree tree;
    tree.fill();
    FileSystemFilter& model = tree.model;
    QCOMPARE(model.columnCount(), 2);
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("PATH"));
    QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("SIZE"));
    QVERIFY(!model.headerData(0, Qt::Vertical).isValid());
    QCOMPARE(model.rowCount(), 4);

    const QModelIndex users = tree.at(QStringLiteral("C:\\Users"));
    QCOMPARE(users.data().toString(), QStringLiteral("Users"));
    QCOMPARE(model.index(users.row(), 1).data().toString(), QStringLiteral("0.98 KB"));
    QCOMPARE(users.data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QVERIFY(!model.index(users.row(), 1).data(Qt::CheckStateRole).isValid());
    QCOMPARE(model.flags(users), Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    const QModelIndex file = tree.at(QStringLiteral("C:\\notes.txt"));
    QCOMPARE(model.flags(file), Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren);
    QCOMPARE(model.parent(tree.at(QStringLiteral("C:\\Users\\Bob"))), users);
    QCOMPARE(tree.model.nodeForPath(QStringLiteral("c:\\USERS\\bob"))->path(), QStringLiteral("C:\\Users\\Bob"));

    tree.model.setSystemPaths({QStringLiteral("C:\\Users\\Cid\\AppData")});
    const QModelIndex unknown = tree.at(QStringLiteral("C:\\Users\\Cid"));
    QCOMPARE(model.index(unknown.row(), 1, users).data().toString(), QStringLiteral("..."));
}

void TestMigrationFilters::placeholdersAndLazyLoading()
{
    Tree tree;
    QSignalSpy requests(&tree.model, &FileSystemFilter::requestFileSystemData);
    tree.model.requestRootData();
    QCOMPARE(requests.takeFirst().at(0).toString(), QStringLiteral("C:"));

    tree.fill();
    const QModelIndex ann = tree.at(QStringLiteral("C:\\Users\\Ann"));
    QCOMPARE(tree.model.rowCount(ann), 1);
    const QModelIndex loading = tree.model.index(0, 0, ann);
    QCOMPARE(loading.data().toString(), QStringLiteral("LOADING..."));
    QCOMPARE(tree.model.flags(loading), Qt::NoItemFlags);
    QVERIFY(tree.model.canFetchMore(ann));

    tree.model.onItemExpanded(ann);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.at(0).at(0).toString(), QStringLiteral("C:\\Users\\Ann"));
    QVERIFY(!tree.model.canFetchMore(ann));

    QSignalSpy removed(&tree.model, &QAbstractItemModel::rowsRemoved);
    tree.model.addDirs(QStringLiteral("C:\\Users\\Ann\\"), {}, {});
    QCOMPARE(removed.count(), 1);
    QCOMPARE(tree.model.rowCount(ann), 0);
    // A loaded directory gets no new placeholder when it is listed again.
    tree.model.addDirs(QStringLiteral("C:\\Users\\"), {QStringLiteral("Ann")}, sizes(1, 5));
    QCOMPARE(tree.model.rowCount(ann), 0);
    QCOMPARE(tree.model.nodeForPath(QStringLiteral("C:\\Users\\Ann"))->size().value(), qint64(5));
}

void TestMigrationFilters::checkPropagation()
{
    Tree tree;
    tree.fill();
    QSignalSpy changed(&tree.model, &QAbstractItemModel::dataChanged);

    tree.uncheck(QStringLiteral("C:\\Users"));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Ann")), Qt::Unchecked);
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Bob")), Qt::Unchecked);
    QCOMPARE(tree.state(QStringLiteral("C:")), Qt::PartiallyChecked);
    QVERIFY(!changed.isEmpty());
    QCOMPARE(changed.first().at(0).value<QModelIndex>(), tree.at(QStringLiteral("C:\\Users")));

    tree.check(QStringLiteral("C:\\Users\\Bob"));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users")), Qt::PartiallyChecked);
    tree.check(QStringLiteral("C:\\Users\\Ann"));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users")), Qt::Checked);
    QCOMPARE(tree.state(QStringLiteral("C:")), Qt::Checked);

    for (const char* path : {"C:\\Users", "C:\\Windows", "C:\\boot.ini", "C:\\notes.txt"})
        tree.uncheck(QString::fromLatin1(path));
    QCOMPARE(tree.state(QStringLiteral("C:")), Qt::Unchecked);
    // The placeholder under Ann followed the parent.
    QCOMPARE(tree.model.nodeForPath(QStringLiteral("C:\\Users\\Ann"))->placeholder()->checkState(), Qt::Unchecked);
}

void TestMigrationFilters::lockedSystemPaths()
{
    Tree tree;
    tree.fill();
    QSignalSpy requests(&tree.model, &FileSystemFilter::requestFileSystemData);
    tree.model.setSystemPaths({QStringLiteral("C:\\Windows\\System32\\drivers"), QStringLiteral("C:\\Users\\Ann")});
    QCOMPARE(requests.count(), 4);
    QStringList asked;
    for (const auto& request : requests)
        asked.append(request.at(0).toString());
    QCOMPARE(asked, QStringList({"C:", "C:\\Windows", "C:\\Windows\\System32", "C:\\Users"}));

    FileSystemNode* drivers = tree.model.nodeForPath(QStringLiteral("C:\\Windows\\System32\\drivers"));
    QVERIFY(drivers);
    QCOMPARE(drivers->size().value(), qint64(-1));
    QVERIFY(drivers->isLocked());
    QVERIFY(!tree.model.nodeForPath(QStringLiteral("C:\\Windows\\System32"))->isLocked());
    QVERIFY(tree.model.nodeForPath(QStringLiteral("C:\\Users\\Ann"))->placeholder()->isLocked());
    QVERIFY(!(tree.model.flags(tree.at(QStringLiteral("C:\\Users\\Ann"))) & Qt::ItemIsUserCheckable));

    // A locked node refuses to be unchecked, and setData still says yes.
    QVERIFY(tree.model.setData(tree.at(QStringLiteral("C:\\Users\\Ann")), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Ann")), Qt::Checked);

    tree.uncheck(QStringLiteral("C:\\Users\\Bob"));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users")), Qt::PartiallyChecked);
    QCOMPARE(tree.model.uncheckedPaths(), QStringList{QStringLiteral("C:\\Users\\Bob")});

    // Unchecking the root leaves the locked branches checked and the root partly checked.
    QVERIFY(tree.model.setData(QModelIndex(), Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(tree.state(QStringLiteral("C:")), Qt::PartiallyChecked);
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Ann")), Qt::Checked);
    QCOMPARE(tree.state(QStringLiteral("C:\\Windows\\System32\\drivers")), Qt::Checked);
    QCOMPARE(tree.state(QStringLiteral("C:\\Windows\\System32")), Qt::PartiallyChecked);
    // System32's placeholder and its other content go; the locked branch doesn't.
    QCOMPARE(tree.model.uncheckedPaths(), QStringList({"C:\\Users\\Bob", "C:\\boot.ini", "C:\\notes.txt"}));
}

void TestMigrationFilters::smallestListOfUncheckedPaths()
{
    Tree tree;
    tree.fill();
    tree.model.addFiles(QStringLiteral("C:\\Users\\Bob"), {QStringLiteral("a.doc"), QStringLiteral("b.doc")}, sizes(2));
    QVERIFY(tree.model.uncheckedPaths().isEmpty());

    tree.uncheck(QStringLiteral("C:\\Users\\Bob\\a.doc"));
    tree.uncheck(QStringLiteral("C:\\notes.txt"));
    QCOMPARE(tree.model.uncheckedPaths(), QStringList({"C:\\Users\\Bob\\a.doc", "C:\\notes.txt"}));

    // Once the whole directory goes, its path stands for everything in it.
    tree.uncheck(QStringLiteral("C:\\Users\\Bob\\b.doc"));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Bob")), Qt::PartiallyChecked);
    tree.uncheck(QStringLiteral("C:\\Users"));
    QCOMPARE(tree.model.uncheckedPaths(), QStringList({"C:\\Users", "C:\\notes.txt"}));

    tree.uncheck(QStringLiteral("C:\\Windows"));
    tree.uncheck(QStringLiteral("C:\\boot.ini"));
    QCOMPARE(tree.state(QStringLiteral("C:")), Qt::Unchecked);
    QCOMPARE(tree.model.uncheckedPaths(), QStringList({"C:\\Users", "C:\\Windows", "C:\\boot.ini", "C:\\notes.txt"}));
}

void TestMigrationFilters::directoryUncheckedBeforeItsChildrenArrive()
{
    Tree tree;
    tree.fill();
    tree.uncheck(QStringLiteral("C:\\Users\\Bob"));
    QCOMPARE(tree.model.uncheckedPaths(), QStringList{QStringLiteral("C:\\Users\\Bob")});

    tree.model.addDirs(QStringLiteral("C:\\Users\\Bob\\"), {QStringLiteral("Music")}, sizes(1));
    tree.model.addFiles(QStringLiteral("C:\\Users\\Bob\\"), {QStringLiteral("todo.txt")}, sizes(1));
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Bob\\Music")), Qt::Unchecked);
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Bob\\todo.txt")), Qt::Unchecked);
    QCOMPARE(tree.state(QStringLiteral("C:\\Users\\Bob")), Qt::Unchecked);
    QCOMPARE(tree.model.uncheckedPaths(), QStringList{QStringLiteral("C:\\Users\\Bob")});
}

void TestMigrationFilters::ignoredPathsNeverShow()
{
    Tree tree;
    tree.model.setSystemIgnoredPaths({QStringLiteral("C:\\pagefile.sys"), QStringLiteral("c:\\$recycle.bin")});
    tree.model.addDirs(QStringLiteral("C:\\"), {QStringLiteral("$Recycle.Bin"), QStringLiteral("Data")}, sizes(2));
    tree.model.addFiles(QStringLiteral("C:\\"), {QStringLiteral("pagefile.sys"), QStringLiteral("a.txt")}, sizes(2));
    QCOMPARE(tree.model.rowCount(), 2);
    QCOMPARE(tree.model.index(0, 0).data().toString(), QStringLiteral("Data"));
    QCOMPARE(tree.model.index(1, 0).data().toString(), QStringLiteral("a.txt"));
}

void TestMigrationFilters::bulkInsertIsOneRowOperation()
{
    Tree tree;
    tree.fill();
    QStringList names;
    for (int i = 0; i < 5000; ++i)
        names.append(QStringLiteral("file%1.bin").arg(i));
    names.append(QStringLiteral("NOTES.TXT"));
    QSignalSpy inserted(&tree.model, &QAbstractItemModel::rowsInserted);
    tree.model.addFiles(QStringLiteral("C:\\"), names, sizes(names.size(), 77));
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.at(0).at(1).toInt(), 4);
    QCOMPARE(inserted.at(0).at(2).toInt(), 4 + 4999);
    QCOMPARE(tree.model.rowCount(), 5004);
    // A name already there only takes the new size.
    QCOMPARE(tree.model.nodeForPath(QStringLiteral("C:\\notes.txt"))->size().value(), qint64(77));
}

void TestMigrationFilters::badInput()
{
    Tree tree;
    tree.fill();
    LogCapture log;
    tree.model.addFiles(QStringLiteral("C:\\"), {QStringLiteral("x")}, {});
    tree.model.addFiles(QStringLiteral("D:\\"), {QStringLiteral("x")}, sizes(1));
    tree.model.addDirs(QStringLiteral("C:\\Nope"), {QStringLiteral("x")}, sizes(1));
    QCOMPARE(log.messages(Velmora::Logger::Error),
        QStringList({QStringLiteral("Cannot add files. Size of name and size lists do not match."),
            QStringLiteral("Node 'D:\\' does not exist."),
            QStringLiteral("Trying to add dirs to not existing node [C:\\Nope].")}));
    QCOMPARE(tree.model.rowCount(), 4);
    // Roles other than the check state change nothing and still succeed.
    QVERIFY(tree.model.setData(tree.at(QStringLiteral("C:\\Users")), QStringLiteral("x"), Qt::EditRole));
    QCOMPARE(tree.at(QStringLiteral("C:\\Users")).data().toString(), QStringLiteral("Users"));
}

KESTRAVIN_TEST_MAIN(TestMigrationFilters)
#include "tst_migrationfilters.moc"
