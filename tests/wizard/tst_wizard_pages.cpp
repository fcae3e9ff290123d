// The wizard's rules on its own, with the test playing the service through the controller: which
// buttons each page offers, what blocks the way on, how the size estimation counts and stops,
// and where a vanished drive sends the user.

#include <QApplication>

#include "ControllerRig.h"
#include "logger/Logger.h"
#include "migration/wizard/MigrationWizard.h"
#include "migration/wizard/PartitionDetailsWidget.h"
#include "migration/wizard/PartitionSizePage.h"
#include "support/TestEnvironment.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace Velmora::Migration;
using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

const int CancelledPage = 8;

// A wizard over the controller rig's model, with the example disk as drive 1 and an empty drive 2.
struct WizardRig : ControllerRig {
    MigrationWizard wizard{model};

    void chooseAndInitialize()
    {
        choose();
        for (int id : plan()->partitions().keys())
            plan()->migrationPartition(id)->markInitialized();
    }
    PartitionSizePage* sizePage() const
    {
        return static_cast<PartitionSizePage*>(wizard.page(PageBase::PartitionSizePageId));
    }
    void click(int button) { wizard.button(button)->click(); }
    // The partition whose size was asked for last.
    int measured() const
    {
        for (int i = frames.size() - 1; i >= 0; --i) {
            if (frames.at(i).first == Message::MigrationFilterTypeRequest)
                return sent<Wire::FileTypeStructureRequest>(i).partitionid();
        }
        return -1;
    }
    void answerSize(double progress, bool done)
    {
        Wire::FileTypeStructure answer;
        answer.set_code(done ? Wire::SUCCESS : Wire::IN_PROGRESS);
        answer.set_driveid(1);
        answer.set_partitionid(measured());
        answer.set_progress(float(progress));
        for (quint32 id : {0u, 1u, 2u}) {
            auto* sum = answer.add_filetypes();
            sum->set_id(id);
            sum->set_size(id == 2 ? quint64(10) * PlanBuilder::GiB : 0);
        }
        deliver(Message::MigrationFilterTypeResponse, bytes(answer));
    }
    int stopsSent() const
    {
        int stops = 0;
        for (int i = 0; i < frames.size(); ++i) {
            if (frames.at(i).first == Message::MigrationFilterTypeRequest
                && sent<Wire::FileTypeStructureRequest>(i).action() == Wire::FileTypeStructureRequest::Stop)
                ++stops;
        }
        return stops;
    }
    // Walks the road as a user would, up to the page asked for.
    void goTo(int page)
    {
        if (page == PageBase::InitPageId)
            return;
        chooseAndInitialize();
        click(MigrationWizard::NextButton);
        answerSize(1.0, true);
        answerSize(1.0, true);
        if (page == PageBase::FiltersPageId) {
            sizePage()->rows().at(3)->findChild<QPushButton*>(QStringLiteral("pushButton_filterFiles"))->click();
            return;
        }
        if (page == PageBase::PartitionSizePageId)
            return;
        click(MigrationWizard::NextButton);
        if (page == PageBase::AlertPageId)
            return;
        click(MigrationWizard::StartButton);
        if (page == CancelledPage)
            click(MigrationWizard::CancelButton);
        else if (page == PageBase::FinishPageId)
            serve();
        else if (page == PageBase::ErrorPageId)
            answerClean(Wire::FAILED);
    }
    QList<int> shownButtons() const
    {
        QList<int> shown;
        for (int id = MigrationWizard::BackButton; id <= MigrationWizard::ApplyButton; ++id) {
            if (!wizard.button(id)->isHidden())
                shown.append(id);
        }
        std::sort(shown.begin(), shown.end());
        return shown;
    }
};

} // namespace

class TestWizardPages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void buttonsPerPage_data();
    void buttonsPerPage();
    void nextNeedsTwoDifferentDrives_data();
    void nextNeedsTwoDifferentDrives();
    void estimationShowsItsShare();
    void nothingToMeasureEndsAtOnce();
    void backDuringEstimationStopsOnce();
    void driveChangeRules_data();
    void driveChangeRules();
};

void TestWizardPages::buttonsPerPage_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QList<int>>("buttons");
    QTest::addColumn<bool>("nextEnabled");
    using W = MigrationWizard;
    QTest::newRow("drives") << int(PageBase::InitPageId) << "CHOOSE YOUR DRIVE (STEP 1/3)" << QList<int>{W::NextButton} << false;
    QTest::newRow("partitions") << int(PageBase::PartitionSizePageId) << "PARTITIONS (STEP 2/3)"
                                << QList<int>{W::BackButton, W::NextButton} << true;
    QTest::newRow("filters") << int(PageBase::FiltersPageId) << "CHOOSE FILES TO MIGRATE" << QList<int>{W::ApplyButton} << true;
    QTest::newRow("warning") << int(PageBase::AlertPageId) << "DATA LOSS WARNING (STEP 3/3)"
                             << QList<int>{W::BackButton, W::StartButton} << true;
    QTest::newRow("progress") << int(PageBase::ProgressPageId) << "MIGRATION STATUS" << QList<int>{W::CancelButton} << false;
    // Cancel leaves the page and the default row: a disabled next until the error page comes.
    QTest::newRow("cancelled") << CancelledPage << "MIGRATION STATUS" << QList<int>{W::NextButton} << false;
    QTest::newRow("finish") << int(PageBase::FinishPageId) << "MIGRATION STATUS" << QList<int>{W::HomeButton} << true;
    QTest::newRow("error") << int(PageBase::ErrorPageId) << "MIGRATION FAILED" << QList<int>{W::HomeButton} << true;
}

void TestWizardPages::buttonsPerPage()
{
    QFETCH(int, page);
    QFETCH(QString, title);
    QFETCH(QList<int>, buttons);
    QFETCH(bool, nextEnabled);
    WizardRig rig;
    rig.goTo(page);
    QCOMPARE(rig.wizard.currentPage(), page == CancelledPage ? int(PageBase::ProgressPageId) : page);
    QCOMPARE(rig.wizard.title(), title);
    QCOMPARE(rig.shownButtons(), buttons);
    QCOMPARE(rig.wizard.button(MigrationWizard::NextButton)->isEnabled(), nextEnabled);
}

void TestWizardPages::nextNeedsTwoDifferentDrives_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("destination");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("none") << -1 << -1 << false;
    QTest::newRow("source only") << 1 << -1 << false;
    QTest::newRow("destination only") << -1 << 2 << false;
    QTest::newRow("same drive") << 2 << 2 << false;
    QTest::newRow("two drives") << 1 << 2 << true;
}

void TestWizardPages::nextNeedsTwoDifferentDrives()
{
    QFETCH(int, source);
    QFETCH(int, destination);
    QFETCH(bool, enabled);
    WizardRig rig;
    rig.choose();
    rig.model->setSourceDriveId(source);
    rig.model->setDestDriveId(destination);
    QCOMPARE(rig.wizard.button(MigrationWizard::NextButton)->isEnabled(), enabled);
    rig.click(MigrationWizard::NextButton);
    QCOMPARE(rig.wizard.currentPage(), enabled ? int(PageBase::PartitionSizePageId) : int(PageBase::InitPageId));
}

void TestWizardPages::estimationShowsItsShare()
{
    WizardRig rig;
    rig.chooseAndInitialize();
    rig.click(MigrationWizard::NextButton);
    PartitionSizePage* page = rig.sizePage();
    // C: and D: have letters; EFI, MSR and recovery are never measured.
    QCOMPARE(rig.measured(), 3);
    QVERIFY(page->isEstimating());
    QCOMPARE(page->estimationProgress(), 0);
    QVERIFY(!rig.wizard.button(MigrationWizard::NextButton)->isEnabled());

    const QList<QPair<double, int>> steps = {{0.5, 25}, {1.0, 50}, {0.5, 75}};
    for (const auto& step : steps) {
        rig.answerSize(step.first, step.first == 1.0);
        QCOMPARE(page->estimationProgress(), step.second);
    }
    QCOMPARE(rig.measured(), 4);
    rig.answerSize(1.0, true);
    QVERIFY(!page->isEstimating());
    QVERIFY(rig.wizard.button(MigrationWizard::NextButton)->isEnabled());
    QCOMPARE(rig.plan()->migrationPartition(4)->used().value(), 10 * PlanBuilder::GiB);
}

void TestWizardPages::nothingToMeasureEndsAtOnce()
{
    WizardRig rig;
    auto* source = PlanBuilder::drive(1, 64 * PlanBuilder::GiB);
    PlanBuilder::add(source, 1, PlanBuilder::Efi, 100 * PlanBuilder::MiB, 30 * PlanBuilder::MiB);
    PlanBuilder::add(source, 2, PlanBuilder::Raw, 8 * PlanBuilder::GiB, 0);
    rig.choose(source);
    for (int id : rig.plan()->partitions().keys())
        rig.plan()->migrationPartition(id)->markInitialized();
    rig.click(MigrationWizard::NextButton);
    QCOMPARE(rig.measured(), -1);
    QVERIFY(!rig.sizePage()->isEstimating());
    QCOMPARE(rig.sizePage()->estimationProgress(), 0);
    QCOMPARE(rig.sizePage()->rows().size(), 2);
}

void TestWizardPages::backDuringEstimationStopsOnce()
{
    WizardRig rig;
    rig.chooseAndInitialize();
    rig.click(MigrationWizard::NextButton);
    rig.answerSize(1.0, true);
    rig.answerSize(0.5, false);
    const qint64 reached = rig.plan()->migrationPartition(4)->used().value();
    rig.click(MigrationWizard::BackButton);
    QCOMPARE(rig.wizard.currentPage(), int(PageBase::InitPageId));
    QCOMPARE(rig.stopsSent(), 1);
    QCOMPARE(rig.plan()->migrationPartition(3)->used().value(), 10 * PlanBuilder::GiB);
    QCOMPARE(rig.plan()->migrationPartition(4)->used().value(), reached);
    // A late answer of the stopped estimation moves nothing on.
    rig.answerSize(1.0, true);
    QCOMPARE(rig.wizard.currentPage(), int(PageBase::InitPageId));
    QCOMPARE(rig.stopsSent(), 1);
}

void TestWizardPages::driveChangeRules_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("removed");
    QTest::addColumn<int>("expectedPage");
    QTest::addColumn<bool>("cancelSent");
    QTest::newRow("partitions, destination") << int(PageBase::PartitionSizePageId) << 2 << int(PageBase::InitPageId) << false;
    QTest::newRow("filters, destination") << int(PageBase::FiltersPageId) << 2 << int(PageBase::InitPageId) << false;
    QTest::newRow("warning, source") << int(PageBase::AlertPageId) << 1 << int(PageBase::InitPageId) << false;
    QTest::newRow("progress, destination") << int(PageBase::ProgressPageId) << 2 << int(PageBase::ProgressPageId) << true;
    QTest::newRow("finish, destination") << int(PageBase::FinishPageId) << 2 << int(PageBase::FinishPageId) << false;
}

void TestWizardPages::driveChangeRules()
{
    QFETCH(int, page);
    QFETCH(int, removed);
    QFETCH(int, expectedPage);
    QFETCH(bool, cancelSent);
    WizardRig rig;
    rig.goTo(page);
    QSignalSpy cancel(rig.model, &Migration::cancel);
    rig.system.removeDrive(removed);
    QCOMPARE(rig.wizard.currentPage(), expectedPage);
    QCOMPARE(cancel.count(), cancelSent ? 1 : 0);
    QVERIFY(!rig.wizard.button(MigrationWizard::NextButton)->isEnabled() || expectedPage == PageBase::FinishPageId);
    if (expectedPage == PageBase::InitPageId) {
        QVERIFY(rig.sizePage()->rows().isEmpty() || removed == 1);
        rig.click(MigrationWizard::NextButton);
        QCOMPARE(rig.wizard.currentPage(), int(PageBase::InitPageId));
    }
}

KESTRAVIN_GUI_TEST_MAIN(TestWizardPages)
#include "tst_wizard_pages.moc"
