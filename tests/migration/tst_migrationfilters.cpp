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
    void checkPropagation();
    void lockedSystemPaths();
    void smallestListOfUncheckedPaths();
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
    QTest::newRow("double extension") << "TAR.GZ" << ".tar.gz";
}

void TestMigrationFilters::extensionNormalForm()
{
    QFETCH(QString, text);
    QFETCH(QString, normal);
    QCOMPARE(FileExt(text).extension(), normal);
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

KESTRAVIN_TEST_SUITE(TestMigrationFilters)
#include "tst_migrationfilters.moc"
