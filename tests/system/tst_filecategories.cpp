#include "settings/SettingsManager.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/FileCategories.h"

#include <QDataStream>
#include <QSignalSpy>
#include <QTest>

using namespace Velmora::System;
using Velmora::Settings::SettingsManager;

class TestFileCategories : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init() { SettingsManager::clear(); }

    void walksCategoriesAlphabetically();
    void namesAndColoursCategories_data();
    void namesAndColoursCategories();
    void streamsSevenSizesWithoutCount();
    void survivesARestart();
    void emptyKeyNeverTouchesSettings();
    void storedValueOfAnotherShapeIsIgnored();
    void raisesNoSignalForTheSameProgress();
    void clampsProgress();
    void unknownCategoriesStayOutOfTheTotal();
};

void TestFileCategories::walksCategoriesAlphabetically()
{
    QStringList names;
    for (int category : categories())
        names.append(FileCategories::categoryName(category));
    QCOMPARE(names, (QStringList{"DOCUMENTS", "OTHER", "PICTURES", "PROGRAMS", "SOUND", "SYSTEM", "VIDEO"}));
    QCOMPARE(FileCategories::categoryName(42), QStringLiteral("OTHER"));
    QVERIFY(categoryExtensions(FileCategory::System).isEmpty());
    QVERIFY(categoryPaths(FileCategory::Video).isEmpty());
    QVERIFY(categoryPaths(FileCategory::System).startsWith(QLatin1String("Windows,swapfile.sys,")));
    QVERIFY(!categoryExtensions(FileCategory::Documents).contains(QLatin1Char(' ')));
}

void TestFileCategories::namesAndColoursCategories_data()
{
    QTest::addColumn<int>("category");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("first") << 0 << QColor(0, 225, 255);
    QTest::newRow("video") << 3 << QColor(80, 114, 236);
    QTest::newRow("last") << 6 << QColor(160, 3, 218);
    QTest::newRow("beyond the last") << 9 << QColor(160, 3, 218);
}

void TestFileCategories::namesAndColoursCategories()
{
    QFETCH(int, category);
    QFETCH(QColor, colour);
    FileCategories categoriesOfDrive{QString()};
    QCOMPARE(categoriesOfDrive.data(category, FileCategories::ColorRole).value<QColor>(), colour);
    QCOMPARE(categoriesOfDrive.data(category, 0).toString(), FileCategories::categoryName(category));
    QVERIFY(!categoriesOfDrive.data(category, 1).isValid());
}

void TestFileCategories::streamsSevenSizesWithoutCount()
{
    FileCategoriesData data;
    data.valid = true;
    data.takenAt = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5));
    for (int category : categories())
        data.sizes[category] = 1000 + category;
    QByteArray bytes;
    {
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out << data;
    }
    QDataStream reference(&bytes, QIODevice::ReadOnly);
    bool valid = false;
    QDateTime takenAt;
    reference >> valid >> takenAt;
    QList<qint64> sizes;
    for (int i = 0; i < 7; ++i) {
        qint64 size = 0;
        reference >> size;
        sizes.append(size);
    }
    QVERIFY(reference.atEnd());
    QVERIFY(valid);
    QCOMPARE(takenAt, data.takenAt);
    QCOMPARE(sizes, (QList<qint64>{1002, 1006, 1005, 1001, 1004, 1000, 1003}));
}

void TestFileCategories::survivesARestart()
{
    QDateTime takenAt;
    {
        FileCategories scanned(QStringLiteral("BRANTEL SSD S1AA11"));
        scanned.setSizes({{FileCategory::Video, 5000}, {FileCategory::System, 7000}});
        LogCapture log;
        scanned.setStatus(FileCategoryStatus::Complete, 1.0);
        takenAt = scanned.timestamp();
        QVERIFY(takenAt.isValid());
        QCOMPARE(log.messages(Velmora::Logger::Info),
            QStringList{QStringLiteral("Saved valid file categories data for BRANTEL SSD S1AA11")});
    }
    LogCapture log;
    FileCategories restored(QStringLiteral("BRANTEL SSD S1AA11"));
    QCOMPARE(restored.status(), int(FileCategoryStatus::Complete));
    QCOMPARE(restored.progress(), 1.0);
    QCOMPARE(restored.size(FileCategory::Video), qint64(5000));
    QCOMPARE(restored.totalSize(), qint64(12000));
    QCOMPARE(restored.timestamp(), takenAt);
    QCOMPARE(log.messages(), QStringList{QStringLiteral("Restored valid file categories data for [BRANTEL SSD S1AA11] taken at [%1]")
                                             .arg(takenAt.toString())});

    // A new scan invalidates the snapshot in memory only.
    restored.setStatus(FileCategoryStatus::Scanning, 0.1);
    FileCategories again(QStringLiteral("BRANTEL SSD S1AA11"));
    QCOMPARE(again.status(), int(FileCategoryStatus::Complete));
}

void TestFileCategories::emptyKeyNeverTouchesSettings()
{
    QSignalSpy settings(SettingsManager::instance(), &SettingsManager::settingsChanged);
    FileCategories anonymous{QString()};
    anonymous.setSize(FileCategory::Sound, 10);
    anonymous.setStatus(FileCategoryStatus::Complete, 1.0);
    QCOMPARE(settings.count(), 0);
    QVERIFY(!SettingsManager::contains(QStringLiteral("FileCategories"), QString()));
}

void TestFileCategories::storedValueOfAnotherShapeIsIgnored()
{
    SettingsManager::setValue(QStringLiteral("FileCategories"), QStringLiteral("odd"), QStringLiteral("not a snapshot"));
    FileCategories categoriesOfDrive(QStringLiteral("odd"));
    QCOMPARE(categoriesOfDrive.status(), int(FileCategoryStatus::NotScanned));
    QCOMPARE(categoriesOfDrive.totalSize(), qint64(0));
}

void TestFileCategories::raisesNoSignalForTheSameProgress()
{
    FileCategories categoriesOfDrive{QString()};
    QSignalSpy changed(&categoriesOfDrive, &FileCategories::categoryDataChanged);
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, 0.5);
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, 0.5 + 1e-14);
    QCOMPARE(changed.count(), 1);
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, 0.6);
    QCOMPARE(changed.count(), 2);
    categoriesOfDrive.setSize(FileCategory::Pictures, 0);
    QCOMPARE(changed.count(), 2);
    categoriesOfDrive.setSize(FileCategory::Pictures, 1);
    QCOMPARE(changed.count(), 3);
}

void TestFileCategories::clampsProgress()
{
    FileCategories categoriesOfDrive{QString()};
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, 1.7);
    QCOMPARE(categoriesOfDrive.progress(), 1.0);
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, -0.5);
    QCOMPARE(categoriesOfDrive.progress(), 0.0);
}

void TestFileCategories::unknownCategoriesStayOutOfTheTotal()
{
    FileCategories categoriesOfDrive{QString()};
    categoriesOfDrive.setSizes({{FileCategory::Documents, 10}, {99, 1000}});
    QCOMPARE(categoriesOfDrive.totalSize(), qint64(10));
    QCOMPARE(categoriesOfDrive.size(99), qint64(1000));
    QCOMPARE(categoriesOfDrive.size(98), qint64(0));
    categoriesOfDrive.clearSizes();
    QCOMPARE(categoriesOfDrive.totalSize(), qint64(0));
}

KESTRAVIN_TEST_MAIN(TestFileCategories)
#include "tst_filecategories.moc"
