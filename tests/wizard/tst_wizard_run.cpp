// The wizard as a user drives it, against the simulated service as a process of its own: the
// drives chosen in the boxes, the estimation waited for, the run started and followed to its
// finish or error page, and HOME back to the start.

#include <QApplication>

#include "SimulatorProcess.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "logger/Logger.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "migration/MigrationDestPartition.h"
#include "migration/wizard/MigrationWizard.h"
#include "migration/wizard/PartitionDetailsWidget.h"
#include "migration/wizard/PartitionSizePage.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

using namespace Velmora;
using Migration::MigrationWizard;
using Migration::PageBase;

class TestWizardRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Logger::setConsoleEnabled(false); }
    void runToItsEnd_data();
    void runToItsEnd();
};

void TestWizardRun::runToItsEnd_data()
{
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<bool>("leaveDataBehind");
    QTest::addColumn<bool>("cancelDuringCopy");
    QTest::addColumn<int>("endPage");
    QTest::addColumn<QString>("endText");
    QTest::newRow("faults of the second volume listed") << QStringList() << false << false << int(PageBase::FinishPageId)
                                                        << "D:\\Archive\\Scans 2024\\scan-0417.pdf";
    QTest::newRow("no faults, no list") << QStringList() << true << false << int(PageBase::FinishPageId) << QString();
    QTest::newRow("cancel during the copy") << QStringList{QStringLiteral("--copy-step-ms"), QStringLiteral("300")} << false
                                            << true << int(PageBase::ErrorPageId) << "MIGRATION WAS CANCELED";
    QTest::newRow("format fails") << QStringList{QStringLiteral("--fail"), QStringLiteral("PartitionFormat#2=3")} << false
                                  << false << int(PageBase::ErrorPageId)
                                  << "FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (3).";
    QTest::newRow("destination pulled in the run") << QStringList{QStringLiteral("--unplug"), QStringLiteral("1@PartitionCreate#2")}
                                                   << false << false << int(PageBase::ErrorPageId) << QString();
}

void TestWizardRun::runToItsEnd()
{
    QFETCH(QStringList, faults);
    QFETCH(bool, leaveDataBehind);
    QFETCH(bool, cancelDuringCopy);
    QFETCH(int, endPage);
    QFETCH(QString, endText);
    SimulatorProcess service(QStringList{QStringLiteral("--scenario"), QStringLiteral("migration")} + faults);
    QVERIFY2(service.start(), qPrintable(service.output() + service.errorOutput()));

    System::System system;
    System::SystemManager manager(&system);
    Migration::MigrationController controller(&manager, &system);
    Communication::NamedPipeClient client;
    client.setServerName(service.name());
    Communication::Dispatcher dispatcher;
    connect(&client, &Communication::NamedPipeClient::connectedToServer, &dispatcher, &Communication::Dispatcher::clientConnected);
    connect(&client, &Communication::NamedPipeClient::messageReceived, &dispatcher, &Communication::Dispatcher::dispatchMessage);
    connect(&dispatcher, &Communication::Dispatcher::sendMessageToClient, &client, &Communication::NamedPipeClient::sendMessage);
    dispatcher.registerHandler(&manager);
    dispatcher.registerHandler(&controller);
    MigrationWizard wizard(controller.migration());
    wizard.resize(1100, 640);
    wizard.show();
    client.connectToServer();
    QTRY_VERIFY_WITH_TIMEOUT(system.drive(0) && system.drive(0)->hasOperatingSystem(), 10000);

    auto* from = wizard.findChild<QComboBox*>(QStringLiteral("driveFrom_comboBox"));
    auto* to = wizard.findChild<QComboBox*>(QStringLiteral("driveTo_comboBox"));
    QVERIFY(from && to);
    // The page brings its lists up to date on the next turn of the event loop after a drive changes.
    QTRY_COMPARE(to->findData(0), -1);
    from->setCurrentIndex(from->findData(0));
    to->setCurrentIndex(to->findData(1));
    QPushButton* next = wizard.button(MigrationWizard::NextButton);
    QVERIFY(next->isEnabled());
    next->click();
    QCOMPARE(wizard.currentPage(), int(PageBase::PartitionSizePageId));
    // The estimation measures C: and D: before the way on opens.
    QTRY_VERIFY_WITH_TIMEOUT(next->isEnabled(), 20000);
    auto* sizePage = static_cast<Migration::PartitionSizePage*>(wizard.page(PageBase::PartitionSizePageId));
    QVERIFY(!sizePage->isEstimating());
    if (leaveDataBehind) {
        Migration::PartitionDetailsWidget* data = nullptr;
        for (Migration::PartitionDetailsWidget* row : sizePage->rows()) {
            if (row->partition()->letter() == QLatin1String("D:"))
                data = row;
        }
        QVERIFY(data);
        data->findChild<QCheckBox*>(QStringLiteral("partitionCheckBox"))->click();
        QVERIFY(!data->partition()->migrate());
    }
    next->click();
    QCOMPARE(wizard.currentPage(), int(PageBase::AlertPageId));
    wizard.button(MigrationWizard::StartButton)->click();
    QCOMPARE(wizard.currentPage(), int(PageBase::ProgressPageId));

    if (cancelDuringCopy) {
        QTRY_COMPARE_WITH_TIMEOUT(controller.migration()->migrationStep(), Migration::CopyingFiles, 20000);
        wizard.button(MigrationWizard::CancelButton)->click();
        QVERIFY(wizard.button(MigrationWizard::CancelButton)->isHidden());
        QCOMPARE(wizard.currentPage(), int(PageBase::ProgressPageId));
    }
    QTRY_COMPARE_WITH_TIMEOUT(wizard.currentPage(), endPage, 30000);
    QCOMPARE(wizard.button(MigrationWizard::HomeButton)->isHidden(), false);
    if (endPage == PageBase::FinishPageId) {
        auto* list = wizard.findChild<QTextBrowser*>(QStringLiteral("faultedFilesAndDirectories_textBrowser"));
        QCOMPARE(list->isHidden(), endText.isEmpty());
        QVERIFY(list->toPlainText().contains(endText));
        QVERIFY(!list->toPlainText().contains(QStringLiteral("C:\\")));
    } else {
        const QString shown = wizard.findChild<QLabel*>(QStringLiteral("errorMsgLabel"))->text();
        QVERIFY2(endText.isEmpty() ? !shown.isEmpty() : shown == endText, qPrintable(shown));
    }

    wizard.button(MigrationWizard::HomeButton)->click();
    QCOMPARE(wizard.currentPage(), int(PageBase::InitPageId));
    QVERIFY(!controller.migration()->sourceDrive() && !controller.migration()->destinationDrive());
    from = wizard.findChild<QComboBox*>(QStringLiteral("driveFrom_comboBox"));
    QCOMPARE(from->currentIndex(), 0);
    QVERIFY(!next->isEnabled());
}

KESTRAVIN_GUI_TEST_MAIN(TestWizardRun)
#include "tst_wizard_run.moc"
