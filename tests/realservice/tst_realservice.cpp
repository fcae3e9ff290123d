#include "LoopDisk.h"
#include "RealService.h"
#include "logger/Logger.h"
#include "performance/PerformanceCheck.h"
#include "performance/PerformanceResult.h"
#include "smart/SmartController.h"
#include "smart/SmartManager.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/FileCategories.h"
#include "system/Partition.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sys/statvfs.h>

using namespace Velmora;

// The program's drive model, file categories, speed test and SMART decoding, wired as the program
// wires them, against the real service on a disk of the test's own: a GPT image with an ext4
// volume full of files of several kinds and an empty vfat one.
class TestRealService : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void listsTheDisk();
    void categoriesAgreeWithTheFiles();
    void measuresTheDisk();
    void smartIsReportedMissing();

private:
    bool writeFile(const QString& name, qint64 size);

    QTemporaryDir m_folder;
    std::unique_ptr<LoopDisk> m_disk;
    QString m_volume;
    QMap<int, qint64> m_written; // bytes per file category
    RealService m_service;
    System::System* m_system = nullptr;
    System::Drive* m_drive = nullptr;
    Performance::PerformanceCheck* m_performance = nullptr;
    std::unique_ptr<LogCapture> m_log;
};

bool TestRealService::writeFile(const QString& name, qint64 size)
{
    QFile file(m_volume + QLatin1Char('/') + name);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    return file.write(QByteArray(int(size), 'k')) == size;
}

void TestRealService::initTestCase()
{
    const QString unavailable = LoopDisk::unavailableReason();
    if (!unavailable.isEmpty())
        QSKIP(qPrintable(QStringLiteral("The real service needs a disk of its own: ") + unavailable));
    Logger::setConsoleEnabled(false);
    m_log = std::make_unique<LogCapture>();
    qRegisterMetaType<Message::Message::MessageType>();

    // 512 MiB, so that the 128 MiB of the speed test fit on the ext4 volume.
    const QString image = m_folder.filePath(QStringLiteral("realservice-disk.img"));
    QVERIFY(QFile(image).open(QIODevice::WriteOnly) && QFile::resize(image, 512 << 20));
    m_disk = std::make_unique<LoopDisk>();
    QVERIFY2(m_disk->run(QStringLiteral("sfdisk"), {QStringLiteral("--quiet"), image},
                 "label: gpt\nsize=384MiB, type=L, name=data\ntype=U, name=efi\n"), qPrintable(m_disk->error()));
    QVERIFY2(m_disk->attach(image), qPrintable(m_disk->error()));
    QVERIFY2(m_disk->run(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-L"), QStringLiteral("DATA"), m_disk->partition(1)}), qPrintable(m_disk->error()));
    QVERIFY2(m_disk->run(QStringLiteral("mkfs.vfat"), {QStringLiteral("-n"), QStringLiteral("EFI"), m_disk->partition(2)}), qPrintable(m_disk->error()));
    m_volume = m_folder.filePath(QStringLiteral("data"));
    QVERIFY2(m_disk->mount(m_disk->partition(1), m_volume), qPrintable(m_disk->error()));

    const struct { const char* name; int category; qint64 size; } files[] = {
        {"holiday.JPG", System::FileCategory::Pictures, 300000}, {"scan.png", System::FileCategory::Pictures, 120000},
        {"film.mp4", System::FileCategory::Video, 2000000}, {"clip.mkv", System::FileCategory::Video, 700000},
        {"song.mp3", System::FileCategory::Sound, 450000}, {"letter.pdf", System::FileCategory::Documents, 90000},
        {"notes.xyz", System::FileCategory::Other, 5000}};
    QVERIFY(QDir(m_volume).mkpath(QStringLiteral("deep/er")));
    for (const auto& file : files) {
        QVERIFY(writeFile(QString::fromLatin1(file.name), file.size));
        // The same kinds deeper down, and a link that must not count twice.
        QVERIFY(writeFile(QStringLiteral("deep/er/") + QString::fromLatin1(file.name), file.size));
        m_written[file.category] += 2 * file.size;
    }
    QVERIFY(QFile::link(m_volume + QStringLiteral("/film.mp4"), m_volume + QStringLiteral("/deep/film-link.mp4")));

    QVERIFY(m_service.start(m_folder.filePath(QStringLiteral("service"))));
    m_system = new System::System(this);
    m_performance = new Performance::PerformanceCheck(m_system, this);
    m_service.dispatcher()->registerHandler(new System::SystemManager(m_system, this));
    m_service.dispatcher()->registerHandler(new Smart::SmartManager(m_system, this));
    m_service.dispatcher()->registerHandler(m_performance);
    m_service.connectClient();
    QTRY_VERIFY_WITH_TIMEOUT(m_drive = driveWithModel(*m_system, QStringLiteral("realservice-disk.img")), 10000);
}

void TestRealService::cleanupTestCase()
{
    m_service.stop();
    m_disk.reset();
    System::SupportedDrivesManager::release();
}

void TestRealService::listsTheDisk()
{
    QCOMPARE(m_drive->capacity().value(), qint64(512) << 20);
    QCOMPARE(m_drive->partitionCount(), 2);
    const System::Partition* data = m_drive->partition(1);
    const System::Partition* efi = m_drive->partition(2);
    QVERIFY(data && efi);
    QCOMPARE(data->label(), QStringLiteral("DATA"));
    QCOMPARE(data->letter(), m_volume);
    QCOMPARE(data->size().value(), qint64(384) << 20);
    struct statvfs volume {};
    QCOMPARE(statvfs(QFile::encodeName(m_volume).constData(), &volume), 0);
    QCOMPARE(data->used().value(), qint64(volume.f_blocks - volume.f_bfree) * qint64(volume.f_frsize));
    QCOMPARE(efi->label(), QStringLiteral("EFI"));
    QCOMPARE(efi->offset().value(), data->offset().value() + data->size().value());
}

void TestRealService::categoriesAgreeWithTheFiles()
{
    System::FileCategories* categories = m_drive->fileCategories();
    m_drive->updateFileCategories();
    QTRY_COMPARE_WITH_TIMEOUT(categories->status(), int(System::FileCategoryStatus::Complete), 20000);
    for (int category : {System::FileCategory::Pictures, System::FileCategory::Video, System::FileCategory::Sound,
             System::FileCategory::Documents}) {
        QCOMPARE(qint64(categories->size(System::FileCategory::Value(category))), m_written.value(category));
    }
    // The file of no kind, and whatever ext4 keeps for itself, are the rest.
    QVERIFY(qint64(categories->size(System::FileCategory::Other)) >= m_written.value(System::FileCategory::Other));
}

void TestRealService::measuresTheDisk()
{
    m_system->setCurrentDrive(m_drive->id());
    m_performance->startTest();
    QTRY_COMPARE_WITH_TIMEOUT(int(m_performance->status()), int(Performance::PerformanceCheck::Finished), 60000);
    const Performance::PerformanceResult* result = m_drive->performanceResult();
    QVERIFY(result && !result->isEmpty());
    QVERIFY(result->readSpeed() > 0.0 && result->writeSpeed() > 0.0);
    // The service's file is gone again: only what the test wrote stays on the volume.
    QCOMPARE(QDir(m_volume).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size(),
        9); // the seven files, lost+found and deep
}

void TestRealService::smartIsReportedMissing()
{
    // A loop device has no SMART: the service says there is no such attribute, and the program
    // logs it and knows no parameter of the drive.
    QTRY_VERIFY(m_log->count(QStringLiteral("Unable to read SMART attributes, no such attribute.")) > 0);
    bool known = true;
    m_drive->smartController()->parameterValue(Smart::Temperature, &known);
    QVERIFY(!known);
}

KESTRAVIN_TEST_SUITE(TestRealService)
#include "tst_realservice.moc"
