// A whole migration by the program's own migration code against the real service: a GPT disk
// image with an ext4 volume full of files of several kinds, moved onto an empty disk image whose
// name makes it one of the maker's drives, as only those are offered as destinations, with a
// folder and a file type left out as a user leaves them out in the filter page.

#include "LoopDisk.h"
#include "RealService.h"
#include "logger/Logger.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "migration/MigrationDestDrive.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileExtGroup.h"
#include "migration/FileSystemFilter.h"
#include "migration/FileSystemNode.h"
#include "migration/MigrationDestPartition.h"
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

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Velmora;

class TestRealMigration : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void movesTheVolume();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<LoopDisk> m_source;
    std::unique_ptr<LoopDisk> m_destination;
    QString m_sourceVolume;
    RealService m_service;
    System::System m_system;
    System::SystemManager m_manager {&m_system};
    Migration::MigrationController m_controller {&m_manager, &m_system};
};

void TestRealMigration::initTestCase()
{
    QString unavailable = LoopDisk::unavailableReason();
    if (unavailable.isEmpty() && QStandardPaths::findExecutable(QStringLiteral("rsync")).isEmpty())
        unavailable = QStringLiteral("rsync is not installed");
    if (!unavailable.isEmpty())
        QSKIP(qPrintable(QStringLiteral("A real migration needs disks of its own: ") + unavailable));
    Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::Message::MessageType>();

    const QString sourceImage = m_folder.filePath(QStringLiteral("realmigration-source.img"));
    const QString destinationImage = m_folder.filePath(QStringLiteral("BRANTEL-realmigration.img"));
    QVERIFY(QFile(sourceImage).open(QIODevice::WriteOnly) && QFile::resize(sourceImage, 256 << 20));
    QVERIFY(QFile(destinationImage).open(QIODevice::WriteOnly) && QFile::resize(destinationImage, 512 << 20));
    m_source = std::make_unique<LoopDisk>();
    QVERIFY2(m_source->run(QStringLiteral("sfdisk"), {QStringLiteral("--quiet"), sourceImage},
                 "label: gpt\nsize=160MiB, type=L, name=data\ntype=L, name=spare\n"), qPrintable(m_source->error()));
    QVERIFY2(m_source->attach(sourceImage), qPrintable(m_source->error()));
    QVERIFY2(m_source->run(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-L"), QStringLiteral("DATA"), m_source->partition(1)}), qPrintable(m_source->error()));
    QVERIFY2(m_source->run(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-L"), QStringLiteral("SPARE"), m_source->partition(2)}), qPrintable(m_source->error()));
    m_sourceVolume = m_folder.filePath(QStringLiteral("source"));
    QVERIFY2(m_source->mount(m_source->partition(1), m_sourceVolume), qPrintable(m_source->error()));
    m_destination = std::make_unique<LoopDisk>();
    QVERIFY2(m_destination->run(QStringLiteral("losetup"), {QStringLiteral("--find"), QStringLiteral("--show"), destinationImage}), qPrintable(m_destination->error()));
    m_destination->adopt(QString::fromLocal8Bit(m_destination->output()));

    // Files of several kinds, owners and modes, a hard link, a symbolic link and a sparse file.
    QVERIFY(QDir(m_sourceVolume).mkpath(QStringLiteral("Photos/2026")));
    QVERIFY(QDir(m_sourceVolume).mkpath(QStringLiteral("Music")));
    QVERIFY(QDir(m_sourceVolume).mkpath(QStringLiteral("Backups/old")));
    QVERIFY(QDir(m_sourceVolume).mkpath(QStringLiteral("Videos")));
    for (const char* name : {"Backups/old/full.tar", "Videos/clip.mp4", "Videos/notes.txt"}) {
        QFile file(m_sourceVolume + QLatin1Char('/') + QLatin1String(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(5000, 'v')) > 0);
    }
    for (int i = 0; i < 200; ++i) {
        QFile file(m_sourceVolume + QStringLiteral("/Photos/2026/p%1.jpg").arg(i));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(1000 + i * 37, char('a' + i % 26))) > 0);
    }
    QFile song(m_sourceVolume + QStringLiteral("/Music/song.mp3"));
    QVERIFY(song.open(QIODevice::WriteOnly) && song.write(QByteArray(300000, 'm')) > 0);
    song.close();
    QVERIFY(::chown(QFile::encodeName(song.fileName()).constData(), 65534, 65534) == 0);
    QVERIFY(::chmod(QFile::encodeName(song.fileName()).constData(), 0640) == 0);
    QVERIFY(::link(QFile::encodeName(song.fileName()).constData(), QFile::encodeName(m_sourceVolume + QStringLiteral("/Music/again.mp3")).constData()) == 0);
    QVERIFY(QFile::link(QStringLiteral("Music/song.mp3"), m_sourceVolume + QStringLiteral("/favourite")));
    const QByteArray tagged = QFile::encodeName(m_sourceVolume + QStringLiteral("/Photos/2026/p7.jpg"));
    QVERIFY(::setxattr(tagged.constData(), "user.album", "summer", 6, 0) == 0);
    QVERIFY2(m_source->run(QStringLiteral("setfacl"), {QStringLiteral("-m"), QStringLiteral("u:65534:r"), QString::fromLocal8Bit(tagged)}),
        qPrintable(m_source->error()));
    QFile sparse(m_sourceVolume + QStringLiteral("/disk.raw"));
    QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(64 << 20));
    sparse.close();

    QVERIFY(m_service.start(m_folder.filePath(QStringLiteral("service"))));
    m_service.dispatcher()->registerHandler(&m_manager);
    m_service.dispatcher()->registerHandler(&m_controller);
    m_service.connectClient();
    QTRY_VERIFY_WITH_TIMEOUT(driveWithModel(m_system, QStringLiteral("realmigration-source.img")) && driveWithModel(m_system, QStringLiteral("BRANTEL-realmigration.img")), 10000);
}

void TestRealMigration::cleanupTestCase()
{
    m_service.stop();
    m_destination.reset();
    m_source.reset();
    System::SupportedDrivesManager::release();
}

void TestRealMigration::movesTheVolume()
{
    Migration::Migration* model = m_controller.migration();
    const System::Drive* source = driveWithModel(m_system, QStringLiteral("realmigration-source.img"));
    const System::Drive* target = driveWithModel(m_system, QStringLiteral("BRANTEL-realmigration.img"));
    QVERIFY(model->destinationDrives().contains(const_cast<System::Drive*>(target)));
    model->setSourceDriveId(source->id());
    model->setDestDriveId(target->id());
    // Each partition's size is estimated by the service's walk of its volume first.
    QTRY_VERIFY_WITH_TIMEOUT(model->destinationDrive()->allPartitionsInitialized(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(model->destinationDrive()->allPartitionsFit(), 20000);
    // Left out: the folder Backups, unchecked in the tree the service lists, and every video.
    System::MigrationDestPartition* data = model->destinationDrive()->migrationPartition(1);
    QVERIFY(data);
    Migration::FileSystemFilter* tree = data->fileSystemFilter();
    tree->requestRootData();
    QTRY_VERIFY_WITH_TIMEOUT(tree->rootNode()->findChild(QStringLiteral("Backups")), 10000);
    QVERIFY(tree->setData(tree->indexForNode(tree->rootNode()->findChild(QStringLiteral("Backups"))), Qt::Unchecked, Qt::CheckStateRole));
    data->extensionsFilter()->group(System::FileCategory::Video)->setChecked(false);

    QSignalSpy failed(model, &Migration::Migration::migrationFailed);
    QSignalSpy finished(model, &Migration::Migration::migrationFinished);
    model->startMigration();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count() + failed.count(), 1, 120000);
    QVERIFY2(failed.isEmpty(), failed.isEmpty() ? "" : qPrintable(failed.first().first().toString()));
    QVERIFY(model->copiedSize().value() > 0);

    // The new volume, looked at read-only: the same tree, contents, owners, modes, links and holes.
    LoopDisk look;
    const QString copy = m_folder.filePath(QStringLiteral("copy"));
    QVERIFY2(look.run(QStringLiteral("partx"), {QStringLiteral("--update"), m_destination->device()}), qPrintable(look.error()));
    QVERIFY2(look.mount(m_destination->partition(1), copy, {QStringLiteral("-o"), QStringLiteral("ro")}), qPrintable(look.error()));
    QVERIFY2(look.run(QStringLiteral("rsync"), {QStringLiteral("-aHAXn"), QStringLiteral("--itemize-changes"), QStringLiteral("--exclude=/lost+found"),
                 QStringLiteral("--exclude=/Backups"), QStringLiteral("--exclude=*.mp4"), m_sourceVolume + QLatin1Char('/'), copy + QLatin1Char('/')}),
        qPrintable(look.error()));
    QCOMPARE(look.output(), QByteArray());
    QVERIFY(!QFileInfo::exists(copy + QStringLiteral("/Backups")));
    QVERIFY(!QFileInfo::exists(copy + QStringLiteral("/Videos/clip.mp4")));
    QVERIFY(QFileInfo::exists(copy + QStringLiteral("/Videos/notes.txt")));
    char album[16] = {};
    QCOMPARE(::getxattr(QFile::encodeName(copy + QStringLiteral("/Photos/2026/p7.jpg")).constData(), "user.album", album, sizeof album), ssize_t(6));
    struct stat hole {};
    QCOMPARE(::stat(QFile::encodeName(copy + QStringLiteral("/disk.raw")).constData(), &hole), 0);
    QVERIFY(hole.st_blocks < 1024); // still sparse: 64 MiB long, next to nothing allocated
    QCOMPARE(QFileInfo(copy + QStringLiteral("/favourite")).symLinkTarget(), copy + QStringLiteral("/Music/song.mp3"));
}

KESTRAVIN_TEST_SUITE(TestRealMigration)
#include "tst_realmigration.moc"
