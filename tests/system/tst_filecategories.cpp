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

    void streamsSevenSizesWithoutCount();
    void survivesARestart();
    void clampsProgress();
};

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

void TestFileCategories::clampsProgress()
{
    FileCategories categoriesOfDrive{QString()};
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, 1.7);
    QCOMPARE(categoriesOfDrive.progress(), 1.0);
    categoriesOfDrive.setStatus(FileCategoryStatus::Scanning, -0.5);
    QCOMPARE(categoriesOfDrive.progress(), 0.0);
}

KESTRAVIN_TEST_SUITE(TestFileCategories)
#include "tst_filecategories.moc"
