#include <QApplication>

#include "support/TestEnvironment.h"
#include "WidgetShots.h"

#include "ads/AdsManager.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "gui/ApplicationFonts.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowWinFrame.h"
#include "gui/MenuBar.h"
#include "gui/PagePlaceholder.h"
#include "gui/pages/HomePage.h"
#include "gui/views/AboutWidget.h"
#include "gui/views/AdWidget.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "performance/PerformanceCheck.h"
#include "rest/RestClient.h"
#include "settings/SettingsManager.h"
#include "system/Bytes.h"
#include "system/Drive.h"
#include "system/System.h"
#include "system/SystemManager.h"
#include "update/ApplicationUpdate.h"
#include "update/FirmwareUpdate.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPointer>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

using namespace Velmora;
using Velmora::Gui::Page;

namespace {

constexpr qint64 GiB = 1024LL * 1024 * 1024;
const QRect Desktop(0, 0, 1920, 1080);

System::Drive* makeDrive(int id, const QString& model, const QString& type, qint64 capacity = 256 * GiB)
{
    return new System::Drive(id, model, QStringLiteral("SN%1").arg(id), QString(), QStringLiteral("FW1"),
        System::Bytes(capacity), 4, 4, true, type);
}

Gui::MainWindow::Collaborators collaboratorsOf(System::System* system)
{
    Gui::MainWindow::Collaborators collaborators;
    collaborators.system = system;
    return collaborators;
}

QStringList comboTexts(const QComboBox* combo)
{
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
        texts.append(combo->itemText(i));
    return texts;
}

// The caption of the page on top of the stack, or of what stands for it.
QString currentPageCaption(const Gui::MainWindow& window)
{
    const auto* stack = window.findChild<QStackedWidget*>(QStringLiteral("contentStackedWidget"));
    const auto* placeholder = qobject_cast<const Gui::PagePlaceholder*>(stack->currentWidget());
    if (placeholder)
        return placeholder->caption();
    const auto* title = stack->currentWidget()->findChild<QLabel*>(QStringLiteral("titleLabel"));
    return title ? title->text() : QString();
}

bool onHomePage(const Gui::MainWindow& window)
{
    const auto* stack = window.findChild<QStackedWidget*>(QStringLiteral("contentStackedWidget"));
    return qobject_cast<const Gui::HomePage*>(stack->currentWidget()) != nullptr;
}

// A mouse event as the platform would deliver it to the widget under the point (frame coordinates).
void sendMouse(QWidget& frame, QEvent::Type type, const QPoint& framePos, Qt::MouseButtons buttons)
{
    QWidget* target = frame.childAt(framePos);
    if (!target)
        target = &frame;
    const QPoint global = frame.mapToGlobal(framePos);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, target->mapFromGlobal(global), framePos, global, button, buttons, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

QRect savedGeometry()
{
    return Settings::SettingsManager::value(QStringLiteral("MainWindow"), QStringLiteral("Geometry")).toRect();
}

bool savedMaximized()
{
    return Settings::SettingsManager::value(QStringLiteral("MainWindow"), QStringLiteral("isMaximized"), false).toBool();
}

// The program's collaborators around one system, as main() makes them, but pointed at a back-end
// address where nothing listens and with the first advertisement check an hour away: the window
// only needs their signals.
struct ProgramParts
{
    System::System system;
    System::SystemManager systemManager { &system };
    Performance::PerformanceCheck performanceCheck { &system };
    Migration::MigrationController migrationController { &systemManager, &system };
    REST::RestClient restClient { QUrl(QStringLiteral("https://127.0.0.1:9/kestravin/public/api/")) };
    CommunicationWeb::TarnAuthorizationService authorization { &restClient };
    Download::DownloadManager downloads;
    Update::ApplicationUpdate applicationUpdate { &restClient, &authorization, &downloads };
    Update::FirmwareUpdate firmwareUpdate { &system, &restClient, &authorization };
    Ads::AdsManager adsManager { &restClient, &authorization, &downloads, nullptr, 3600 * 1000 };

    Gui::MainWindow::Collaborators collaborators()
    {
        Gui::MainWindow::Collaborators all;
        all.performanceCheck = &performanceCheck;
        all.systemManager = &systemManager;
        all.system = &system;
        all.migrationController = &migrationController;
        all.applicationUpdate = &applicationUpdate;
        all.firmwareUpdate = &firmwareUpdate;
        all.adsManager = &adsManager;
        return all;
    }
};

template <typename T>
T* child(const QWidget& parent, const char* name)
{
    return parent.findChild<T*>(QString::fromLatin1(name));
}

} // namespace

class TestGuiMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void menuEntriesTriggerTheirPage_data();
    void menuEntriesTriggerTheirPage();
    void groupButtonsTriggerNothing();
    void menuSwitchesWithoutSignal();

    void pagesAreCreatedOnFirstShowOnly();
    void groupIdsShowTheHomePage();
    void driveStatusPageShowsTheDriveSection();

    void driveComboLeavesOutUsbDrives_data();
    void driveComboLeavesOutUsbDrives();
    void driveComboFollowsRemovals();
    void driveComboAndCurrentDriveAgree();

    void firstShowPlacesTheWindow_data();
    void firstShowPlacesTheWindow();
    void closeHidesAndKeepsGeometry();
    void maximizedWindowReturnsMaximized();
    void windowButtons();
    void dragWithoutWindowManager_data();
    void dragWithoutWindowManager();

    void borderShowsResizeCursor_data();
    void borderShowsResizeCursor();
    void updateNotice_data();
    void updateNotice();
    void updateButtonLeadsToSettings();
    void migrationLocksNavigation_data();
    void migrationLocksNavigation();
    void advertisementTakesTheBody_data();
    void advertisementTakesTheBody();
    void aboutViewIsBuiltAnewEachTime();

    void screenshot();
};

void TestGuiMainWindow::initTestCase()
{
    Gui::registerApplicationFonts();
}

void TestGuiMainWindow::init()
{
    Settings::SettingsManager::clear();
}

void TestGuiMainWindow::menuEntriesTriggerTheirPage_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("caption");
    QTest::newRow("my ssd") << int(Page::SsdStatusId) << "MY SSD";
    QTest::newRow("smart") << int(Page::SmartParametersId) << "SMART PARAMETERS";
    QTest::newRow("performance") << int(Page::PerformanceTestId) << "PERFORMANCE TEST";
    QTest::newRow("firmware") << int(Page::FirmwareUpdateId) << "FIRMWARE UPDATE";
    QTest::newRow("migration") << int(Page::DataMigrationId) << "DATA MIGRATION";
    QTest::newRow("settings") << int(Page::SettingsId) << "SETTINGS";
    QTest::newRow("support") << int(Page::TechnicalSupportId) << "TECHNICAL SUPPORT";
}

void TestGuiMainWindow::menuEntriesTriggerTheirPage()
{
    QFETCH(int, id);
    QFETCH(QString, caption);
    Gui::MenuBar menu;
    QSignalSpy triggered(&menu, &Gui::MenuBar::menuTriggered);
    menu.button(Page::SettingsId)->click();

    QAbstractButton* entry = menu.button(Page::PageId(id));
    QVERIFY(entry);
    QCOMPARE(entry->text(), caption);
    entry->click();

    QCOMPARE(triggered.count(), 2);
    QCOMPARE(triggered.last().at(0).value<Page::PageId>(), Page::PageId(id));
    for (int other = Page::HomeId; other <= Page::TechnicalSupportId; ++other) {
        if (QAbstractButton* button = menu.button(Page::PageId(other)))
            QVERIFY2(button->isChecked() == (other == id), qPrintable(button->text()));
    }
}

void TestGuiMainWindow::groupButtonsTriggerNothing()
{
    Gui::MenuBar menu;
    QSignalSpy triggered(&menu, &Gui::MenuBar::menuTriggered);
    QCOMPARE(menu.caption(Page::SsdManagementId), QStringLiteral("SSD MANAGEMENT"));
    QCOMPARE(menu.caption(Page::AdditionalFeaturesId), QStringLiteral("ADDITIONAL FEATURES"));
    for (Page::PageId group : { Page::SsdManagementId, Page::AdditionalFeaturesId }) {
        QAbstractButton* button = menu.button(group);
        QVERIFY(button->findChild<QMenu*>());
        emit button->clicked(false);
    }
    QCOMPARE(triggered.count(), 0);
}

void TestGuiMainWindow::menuSwitchesWithoutSignal()
{
    Gui::MenuBar menu;
    QSignalSpy triggered(&menu, &Gui::MenuBar::menuTriggered);
    menu.button(Page::SmartParametersId)->click();

    menu.onSwitchToSettingsTab();
    QVERIFY(menu.button(Page::SettingsId)->isChecked());
    QVERIFY(!menu.button(Page::SmartParametersId)->isChecked());

    menu.onSwitchToFirmwareUpdatetPage();
    QVERIFY(menu.button(Page::FirmwareUpdateId)->isChecked());
    QVERIFY(!menu.button(Page::SettingsId)->isChecked());
    QCOMPARE(triggered.count(), 1);
}

void TestGuiMainWindow::pagesAreCreatedOnFirstShowOnly()
{
    ProgramParts parts;
    Gui::MainWindow window(parts.collaborators());
    auto* stack = window.findChild<QStackedWidget*>(QStringLiteral("contentStackedWidget"));
    auto* menu = window.findChild<Gui::MenuBar*>(QStringLiteral("menu"));
    QCOMPARE(stack->count(), 2);
    QVERIFY(onHomePage(window));

    const QList<Page::PageId> lazy { Page::SmartParametersId, Page::PerformanceTestId, Page::FirmwareUpdateId,
        Page::DataMigrationId, Page::SettingsId, Page::TechnicalSupportId };
    const QMap<Page::PageId, QString> titles { { Page::SmartParametersId, QStringLiteral("SMART PARAMETERS") },
        { Page::PerformanceTestId, QStringLiteral("PERFORMANCE CHECK") },
        { Page::FirmwareUpdateId, QStringLiteral("FIRMWARE UPDATE") },
        { Page::DataMigrationId, QStringLiteral("CHOOSE YOUR DRIVE (STEP 1/3)") },
        { Page::SettingsId, QStringLiteral("SETTINGS") },
        { Page::TechnicalSupportId, QStringLiteral("TECHNICAL SUPPORT") } };
    QMap<Page::PageId, QWidget*> made;
    for (Page::PageId id : lazy) {
        const int before = stack->count();
        menu->button(id)->click();
        QCOMPARE(stack->count(), before + 1);
        QCOMPARE(currentPageCaption(window), titles.value(id));
        made.insert(id, stack->currentWidget());
        QCOMPARE(stack->currentWidget()->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        QCOMPARE(stack->widget(0)->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    }
    // Shown again, each is the page made the first time.
    for (Page::PageId id : lazy) {
        menu->button(id)->click();
        QCOMPARE(stack->currentWidget(), made.value(id));
    }
    menu->button(Page::SsdStatusId)->click();
    QCOMPARE(currentPageCaption(window), QStringLiteral("MY SSD"));
    QCOMPARE(stack->count(), 2 + lazy.size());
}

void TestGuiMainWindow::groupIdsShowTheHomePage()
{
    System::System system;
    Gui::MainWindow window(collaboratorsOf(&system));
    auto* stack = window.findChild<QStackedWidget*>(QStringLiteral("contentStackedWidget"));
    auto* menu = window.findChild<Gui::MenuBar*>(QStringLiteral("menu"));
    menu->button(Page::SettingsId)->click();
    QCOMPARE(currentPageCaption(window), QStringLiteral("SETTINGS"));

    for (Page::PageId group : { Page::SsdManagementId, Page::AdditionalFeaturesId }) {
        menu->button(Page::SettingsId)->click();
        QVERIFY(QMetaObject::invokeMethod(&window, "changePage", Q_ARG(Velmora::Gui::Page::PageId, group)));
        QCOMPARE(stack->currentIndex(), 0);
        QVERIFY(onHomePage(window));
    }
    QCOMPARE(stack->count(), 3);
}

void TestGuiMainWindow::driveStatusPageShowsTheDriveSection()
{
    System::System system;
    system.addDrive(makeDrive(1, QStringLiteral("KV ONE"), QStringLiteral("SATA")));
    Gui::MainWindow window(collaboratorsOf(&system));
    window.show();
    auto* menu = window.findChild<Gui::MenuBar*>(QStringLiteral("menu"));
    auto* footer = window.findChild<QWidget*>(QStringLiteral("footer"));
    auto* homeFooter = window.findChild<QWidget*>(QStringLiteral("homeFooter"));
    QVERIFY(!menu->isVisible());
    QVERIFY(!footer->isVisible());
    QVERIFY(homeFooter->isVisible());

    window.showDriveStatusPage();
    QVERIFY(menu->isVisible());
    QVERIFY(footer->isVisible());
    QVERIFY(!homeFooter->isVisible());
    QCOMPARE(currentPageCaption(window), QStringLiteral("MY SSD"));
    // The tray's way to the status page leaves the choice of drive to the user.
    QVERIFY(!system.currentDrive());

    // Choosing a drive on the home page goes the same way and makes that drive current.
    system.addDrive(makeDrive(2, QStringLiteral("KV TWO"), QStringLiteral("NVMe")));
    QVERIFY(QMetaObject::invokeMethod(&window, "onHomeDriveSelected", Q_ARG(int, 2)));
    QCOMPARE(system.currentDriveId(), 2);
    QCOMPARE(window.findChild<QComboBox*>(QStringLiteral("currentDrive"))->currentText(), QStringLiteral("KV TWO [256.00 GB]"));
}

void TestGuiMainWindow::driveComboLeavesOutUsbDrives_data()
{
    QTest::addColumn<QStringList>("typesBefore");
    QTest::addColumn<QStringList>("typesAfter");
    QTest::addColumn<QList<int>>("listedIds");
    QTest::addColumn<int>("shownId");
    // Drives get ids 1, 2, ... in the order of the types; those before exist when the window is made.
    QTest::newRow("none") << QStringList() << QStringList() << QList<int>() << -1;
    QTest::newRow("known at start") << QStringList { "SATA", "NVMe" } << QStringList() << QList<int> { 1, 2 } << 1;
    QTest::newRow("added later") << QStringList() << QStringList { "SATA", "NVMe" } << QList<int> { 1, 2 } << 1;
    QTest::newRow("usb in any case") << QStringList { "USB" } << QStringList { "usb", "SATA", "Usb bridge" }
                                     << QList<int> { 3 } << 3;
    QTest::newRow("only usb") << QStringList { "USB" } << QStringList { "external USB 3.0" } << QList<int>() << -1;
    QTest::newRow("mixed") << QStringList { "NVMe", "USB" } << QStringList { "SATA" } << QList<int> { 1, 3 } << 1;
}

void TestGuiMainWindow::driveComboLeavesOutUsbDrives()
{
    QFETCH(QStringList, typesBefore);
    QFETCH(QStringList, typesAfter);
    QFETCH(QList<int>, listedIds);
    QFETCH(int, shownId);

    System::System system;
    int id = 0;
    for (const QString& type : typesBefore)
        ++id, system.addDrive(makeDrive(id, QStringLiteral("DRIVE %1").arg(id), type, id * 128 * GiB));
    Gui::MainWindow window(collaboratorsOf(&system));
    for (const QString& type : typesAfter)
        ++id, system.addDrive(makeDrive(id, QStringLiteral("DRIVE %1").arg(id), type, id * 128 * GiB));

    auto* combo = window.findChild<QComboBox*>(QStringLiteral("currentDrive"));
    QStringList expected;
    QList<int> ids;
    for (int listed : listedIds)
        expected.append(QStringLiteral("DRIVE %1 [%2.00 GB]").arg(listed).arg(listed * 128));
    for (int i = 0; i < combo->count(); ++i)
        ids.append(combo->itemData(i).toInt());
    QCOMPARE(comboTexts(combo), expected);
    QCOMPARE(ids, listedIds);
    // The USB drives stay in the model.
    QCOMPARE(system.driveIds().size(), typesBefore.size() + typesAfter.size());
    // The box shows the first listed drive, which becomes current only when the user chooses it.
    QCOMPARE(combo->currentIndex() >= 0 ? combo->currentData().toInt() : -1, shownId);
    QVERIFY(!system.currentDrive());
}

void TestGuiMainWindow::driveComboFollowsRemovals()
{
    System::System system;
    system.addDrive(makeDrive(1, QStringLiteral("ONE"), QStringLiteral("SATA")));
    system.addDrive(makeDrive(2, QStringLiteral("TWO"), QStringLiteral("USB")));
    Gui::MainWindow window(collaboratorsOf(&system));
    system.addDrive(makeDrive(3, QStringLiteral("THREE"), QStringLiteral("NVMe")));
    system.addDrive(makeDrive(4, QStringLiteral("FOUR"), QStringLiteral("SATA")));
    auto* combo = window.findChild<QComboBox*>(QStringLiteral("currentDrive"));
    system.setCurrentDrive(4);
    QCOMPARE(combo->currentText(), QStringLiteral("FOUR [256.00 GB]"));

    QSignalSpy changed(&system, &System::System::currentDriveChanged);
    system.removeDrive(2);
    QCOMPARE(comboTexts(combo), (QStringList { "ONE [256.00 GB]", "THREE [256.00 GB]", "FOUR [256.00 GB]" }));
    QCOMPARE(combo->currentText(), QStringLiteral("FOUR [256.00 GB]"));

    // The current drive goes; the model moves on to the first remaining one and the box shows it.
    system.removeDrive(4);
    QCOMPARE(comboTexts(combo), (QStringList { "ONE [256.00 GB]", "THREE [256.00 GB]" }));
    QCOMPARE(system.currentDriveId(), 1);
    QCOMPARE(combo->currentData().toInt(), 1);

    system.removeDrive(1);
    system.removeDrive(3);
    QCOMPARE(combo->count(), 0);
    QCOMPARE(changed.count(), 0);

    system.addDrive(makeDrive(5, QStringLiteral("FIVE"), QStringLiteral("SATA")));
    QCOMPARE(comboTexts(combo), QStringList { "FIVE [256.00 GB]" });
    // With no drive left to look at, a new one waits for the user's choice.
    QVERIFY(!system.currentDrive());
}

void TestGuiMainWindow::driveComboAndCurrentDriveAgree()
{
    System::System system;
    for (int id = 1; id <= 3; ++id)
        system.addDrive(makeDrive(id, QStringLiteral("D%1").arg(id), QStringLiteral("SATA")));
    Gui::MainWindow window(collaboratorsOf(&system));
    auto* combo = window.findChild<QComboBox*>(QStringLiteral("currentDrive"));
    QSignalSpy changed(&system, &System::System::currentDriveChanged);

    // Before a drive is chosen on the home page the box changes nothing.
    combo->setCurrentIndex(1);
    QVERIFY(!system.currentDrive());
    QCOMPARE(changed.count(), 0);

    system.setCurrentDrive(2);
    QCOMPARE(combo->currentData().toInt(), 2);
    combo->setCurrentIndex(2);
    QCOMPARE(system.currentDriveId(), 3);
    window.changeCurrentDrive(1);
    QCOMPARE(combo->currentData().toInt(), 1);
    QCOMPARE(changed.count(), 3);
}

void TestGuiMainWindow::firstShowPlacesTheWindow_data()
{
    QTest::addColumn<QVariant>("saved");
    QTest::addColumn<bool>("savedMaximized");
    QTest::addColumn<QRect>("expectedGeometry");
    QTest::addColumn<bool>("expectMaximized");
    QTest::newRow("nothing saved") << QVariant() << false << QRect(1, 1, 1280, 1024) << false;
    QTest::newRow("saved on screen") << QVariant(QRect(200, 100, 1000, 700)) << false << QRect(200, 100, 1000, 700)
                                     << false;
    QTest::newRow("saved maximized") << QVariant(QRect(200, 100, 1000, 700)) << true << QRect(200, 100, 1000, 700)
                                     << true;
    QTest::newRow("larger than the screen") << QVariant(QRect(10, 10, 1920, 1200)) << false
                                            << QRect(10, 10, 1920, 1200) << true;
    // Right and bottom of the lost place become the size, which no longer fits.
    QTest::newRow("screen gone") << QVariant(QRect(2500, 100, 1000, 700)) << false << QRect(0, 0, 3500, 800) << true;
}

void TestGuiMainWindow::firstShowPlacesTheWindow()
{
    QFETCH(QVariant, saved);
    QFETCH(bool, savedMaximized);
    QFETCH(QRect, expectedGeometry);
    QFETCH(bool, expectMaximized);
    if (saved.isValid())
        Settings::SettingsManager::setValue(QStringLiteral("MainWindow"), QStringLiteral("Geometry"), saved);
    Settings::SettingsManager::setValue(QStringLiteral("MainWindow"), QStringLiteral("isMaximized"), savedMaximized);

    System::System system;
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    QCOMPARE(frame.minimumSize(), QSize(900, 600));
    QVERIFY(frame.windowFlags() & Qt::FramelessWindowHint);
    frame.show();

    QVERIFY(frame.isVisible());
    QCOMPARE(frame.isMaximized(), expectMaximized);
    QCOMPARE(window->findChild<QWidget*>(QStringLiteral("resoreWindow"))->isVisible(), expectMaximized);
    QCOMPARE(window->findChild<QWidget*>(QStringLiteral("maximizeWindow"))->isVisible(), !expectMaximized);
    if (expectMaximized && !savedMaximized) {
        // Zooming stores the place it zoomed from.
        QCOMPARE(savedGeometry(), expectedGeometry);
    } else if (!expectMaximized) {
        QCOMPARE(frame.geometry(), expectedGeometry);
    }
}

void TestGuiMainWindow::closeHidesAndKeepsGeometry()
{
    System::System system;
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    frame.setGeometry(300, 150, 1100, 750);

    QVERIFY(frame.close());
    QVERIFY(!frame.isVisible());
    // Outside a test's missing event loop, closing the last window would end the program.
    QVERIFY(!frame.testAttribute(Qt::WA_QuitOnClose));
    QCOMPARE(savedGeometry(), QRect(300, 150, 1100, 750));
    QVERIFY(!savedMaximized());

    frame.show();
    QVERIFY(frame.isVisible());
    QVERIFY(!frame.isMaximized());

    // The close button of the title area hides too.
    frame.setGeometry(320, 160, 1000, 700);
    window->findChild<QPushButton*>(QStringLiteral("closeWindow"))->click();
    QVERIFY(!frame.isVisible());
    QCOMPARE(savedGeometry(), QRect(320, 160, 1000, 700));

    // A new window starts where the last one was left.
    auto* second = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame next(second);
    next.setScreenAreas([] { return QList<QRect> { Desktop }; });
    next.show();
    QCOMPARE(next.geometry(), QRect(320, 160, 1000, 700));
}

void TestGuiMainWindow::maximizedWindowReturnsMaximized()
{
    System::System system;
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    frame.setGeometry(250, 120, 1000, 720);
    frame.maximize();
    QVERIFY(frame.isMaximized());

    QVERIFY(frame.close());
    QVERIFY(savedMaximized());
    QCOMPARE(savedGeometry(), QRect(250, 120, 1000, 720));

    frame.show();
    QVERIFY(frame.isVisible());
    QVERIFY(frame.isMaximized());
    QVERIFY(window->findChild<QWidget*>(QStringLiteral("resoreWindow"))->isVisible());
}

void TestGuiMainWindow::windowButtons()
{
    System::System system;
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    auto* maximizeButton = window->findChild<QPushButton*>(QStringLiteral("maximizeWindow"));
    auto* restoreButton = window->findChild<QPushButton*>(QStringLiteral("resoreWindow"));
    QVERIFY(maximizeButton->isVisible());
    QVERIFY(!restoreButton->isVisible());

    maximizeButton->click();
    QVERIFY(frame.isMaximized());
    QVERIFY(!maximizeButton->isVisible());
    QVERIFY(restoreButton->isVisible());

    restoreButton->click();
    QVERIFY(!frame.isMaximized());
    QVERIFY(maximizeButton->isVisible());

    window->findChild<QPushButton*>(QStringLiteral("minimizeWindow"))->click();
    QVERIFY(frame.isMinimized());
    frame.show();
    QVERIFY(!frame.isMinimized());
    QVERIFY(frame.isVisible());
}

void TestGuiMainWindow::dragWithoutWindowManager_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("movement");
    QTest::addColumn<QRect>("expected");
    // The window starts at (100, 100), 1000 x 700.
    QTest::newRow("title area moves") << QPoint(400, 30) << QPoint(50, -40) << QRect(150, 60, 1000, 700);
    QTest::newRow("right border widens") << QPoint(997, 300) << QPoint(80, 0) << QRect(100, 100, 1080, 700);
    QTest::newRow("bottom border grows") << QPoint(500, 698) << QPoint(0, 60) << QRect(100, 100, 1000, 760);
    QTest::newRow("top-left corner") << QPoint(2, 2) << QPoint(-30, -20) << QRect(70, 80, 1030, 720);
    QTest::newRow("not below the minimum") << QPoint(0, 400) << QPoint(300, 0) << QRect(200, 100, 900, 700);
    QTest::newRow("page area does nothing") << QPoint(500, 400) << QPoint(50, 50) << QRect(100, 100, 1000, 700);
}

void TestGuiMainWindow::dragWithoutWindowManager()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, movement);
    QFETCH(QRect, expected);

    System::System system;
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    frame.setGeometry(100, 100, 1000, 700);

    sendMouse(frame, QEvent::MouseButtonPress, press, Qt::LeftButton);
    // Positions are relative to where the window was at the press.
    sendMouse(frame, QEvent::MouseMove, press + movement / 2, Qt::LeftButton);
    const QPoint endGlobal = QPoint(100, 100) + press + movement;
    QMouseEvent move(QEvent::MouseMove, QPointF(), QPointF(), endGlobal, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window, &move);
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(), QPointF(), endGlobal, Qt::LeftButton, Qt::NoButton,
        Qt::NoModifier);
    QApplication::sendEvent(window, &release);
    QCOMPARE(frame.geometry(), expected);

    // After the release the mouse moves the window no more.
    QMouseEvent later(QEvent::MouseMove, QPointF(), QPointF(), endGlobal + QPoint(40, 40), Qt::NoButton, Qt::NoButton,
        Qt::NoModifier);
    QApplication::sendEvent(window, &later);
    QCOMPARE(frame.geometry(), expected);
}

void TestGuiMainWindow::borderShowsResizeCursor_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("shape");
    QTest::newRow("top left corner") << QPoint(2, 3) << int(Qt::SizeFDiagCursor);
    QTest::newRow("bottom right corner") << QPoint(1277, 1020) << int(Qt::SizeFDiagCursor);
    QTest::newRow("top right corner") << QPoint(1275, 0) << int(Qt::SizeBDiagCursor);
    QTest::newRow("bottom left corner") << QPoint(5, 1018) << int(Qt::SizeBDiagCursor);
    QTest::newRow("left edge") << QPoint(5, 500) << int(Qt::SizeHorCursor);
    QTest::newRow("right edge") << QPoint(1274, 500) << int(Qt::SizeHorCursor);
    QTest::newRow("top edge over the title") << QPoint(600, 1) << int(Qt::SizeVerCursor);
    QTest::newRow("bottom edge") << QPoint(600, 1023) << int(Qt::SizeVerCursor);
    QTest::newRow("inside, by the border") << QPoint(6, 500) << int(Qt::ArrowCursor);
    QTest::newRow("middle") << QPoint(600, 500) << int(Qt::ArrowCursor);
}

void TestGuiMainWindow::borderShowsResizeCursor()
{
    QFETCH(QPoint, point);
    QFETCH(int, shape);
    System::System system;
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    QCOMPARE(frame.size(), QSize(1280, 1024));

    auto moveTo = [&frame](const QPoint& local) {
        const QPoint global = frame.mapToGlobal(local);
        QMouseEvent move(QEvent::MouseMove, local, local, global, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(frame.windowHandle(), &move);
    };
    moveTo(point);
    QCOMPARE(int(frame.cursor().shape()), shape);

    // Back inside, the arrow returns; a zoomed window can't be resized by its border.
    moveTo(QPoint(600, 500));
    QCOMPARE(int(frame.cursor().shape()), int(Qt::ArrowCursor));
    frame.maximize();
    moveTo(point);
    QCOMPARE(int(frame.cursor().shape()), int(Qt::ArrowCursor));
}

void TestGuiMainWindow::updateNotice_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("buttonShown");
    QTest::newRow("available") << int(Update::UpdateAvailable) << true;
    QTest::newRow("up to date") << int(Update::UpToDate) << false;
    QTest::newRow("check failed") << int(Update::CheckFailed) << false;
}

void TestGuiMainWindow::updateNotice()
{
    QFETCH(int, status);
    QFETCH(bool, buttonShown);
    ProgramParts parts;
    Gui::MainWindow window(parts.collaborators());
    QSignalSpy announced(&window, &Gui::MainWindow::applicationUpdateAvailable);
    QVERIFY(child<QPushButton>(window, "updateAvailableButton")->isHidden());

    emit parts.applicationUpdate.applicationUpdateStatusChanged(Update::ApplicationUpdateStatus(status),
        QStringLiteral("1.2.0"));

    QCOMPARE(!child<QPushButton>(window, "updateAvailableButton")->isHidden(), buttonShown);
    QCOMPARE(!child<QLabel>(window, "label_updateAvailable")->isHidden(), !buttonShown);
    if (buttonShown) {
        QCOMPARE(announced.count(), 1);
        QCOMPARE(announced.at(0).at(0).toString(), QStringLiteral("APPLICATION UPDATE AVAILABLE"));
        QCOMPARE(announced.at(0).at(1).toString(), QStringLiteral("1.2.0"));
    } else {
        QCOMPARE(announced.count(), 0);
    }
}

void TestGuiMainWindow::updateButtonLeadsToSettings()
{
    ProgramParts parts;
    Gui::MainWindow window(parts.collaborators());
    auto* menu = child<Gui::MenuBar>(window, "menu");
    QSignalSpy triggered(menu, &Gui::MenuBar::menuTriggered);
    emit parts.applicationUpdate.applicationUpdateStatusChanged(Update::UpdateAvailable, QStringLiteral("1.2.0"));

    child<QPushButton>(window, "updateAvailableButton")->click();

    QCOMPARE(currentPageCaption(window), QStringLiteral("SETTINGS"));
    QVERIFY(menu->button(Page::SettingsId)->isChecked());
    QCOMPARE(triggered.count(), 0);
}

void TestGuiMainWindow::migrationLocksNavigation_data()
{
    QTest::addColumn<bool>("failed");
    QTest::newRow("finished") << false;
    QTest::newRow("failed") << true;
}

void TestGuiMainWindow::migrationLocksNavigation()
{
    QFETCH(bool, failed);
    ProgramParts parts;
    parts.system.addDrive(makeDrive(1, QStringLiteral("KV PRIME 1TB"), QStringLiteral("NVMe")));
    Gui::MainWindow window(parts.collaborators());
    auto* stack = child<QStackedWidget>(window, "contentStackedWidget");
    const QList<QWidget*> locked { child<QWidget>(window, "menu"), child<QWidget>(window, "currentDrive"),
        child<QWidget>(window, "updateAvailableButton") };

    emit parts.migrationController.migration()->start();
    for (QWidget* widget : locked)
        QVERIFY2(!widget->isEnabled(), qPrintable(widget->objectName()));
    // The tray's request to see the drive status waits for the end of the migration.
    window.showDriveStatusPage();
    QCOMPARE(stack->currentIndex(), 0);
    QVERIFY(child<QWidget>(window, "menu")->isHidden());

    if (failed)
        emit parts.migrationController.migrationFailed(QStringLiteral("COPY FAILED"));
    else
        emit parts.migrationController.migrationFinished();
    for (QWidget* widget : locked)
        QVERIFY2(widget->isEnabled(), qPrintable(widget->objectName()));
    window.showDriveStatusPage();
    QCOMPARE(stack->currentIndex(), 1);
    QVERIFY(!child<QWidget>(window, "menu")->isHidden());
}

void TestGuiMainWindow::advertisementTakesTheBody_data()
{
    QTest::addColumn<bool>("onDrivePage");
    QTest::newRow("over the home page") << false;
    QTest::newRow("over a drive page") << true;
}

void TestGuiMainWindow::advertisementTakesTheBody()
{
    QFETCH(bool, onDrivePage);
    ProgramParts parts;
    parts.system.addDrive(makeDrive(1, QStringLiteral("KV PRIME 1TB"), QStringLiteral("NVMe")));
    auto* window = new Gui::MainWindow(parts.collaborators());
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    if (onDrivePage)
        window->showDriveStatusPage();

    QImage picture(400, 200, QImage::Format_RGB32);
    picture.fill(QColor(200, 40, 120));
    const QString file = QDir::temp().filePath(QStringLiteral("ad.png"));
    QVERIFY(picture.save(file));
    emit parts.adsManager.newAdAvailable(file, QUrl(QStringLiteral("https://example.org/offer")));

    auto* ad = window->findChild<Gui::AdWidget*>();
    QVERIFY(ad);
    QVERIFY(ad->isVisible());
    QVERIFY(!child<QWidget>(*window, "contentScrollArea")->isVisible());
    QVERIFY(!child<QWidget>(*window, "menu")->isVisible());

    child<QPushButton>(*ad, "pushButtonClose")->click();
    QVERIFY(!ad->isVisible());
    QVERIFY(child<QWidget>(*window, "contentScrollArea")->isVisible());
    QCOMPARE(child<QWidget>(*window, "menu")->isVisible(), onDrivePage);

    // The tray's request for the drive status closes a second advertisement.
    emit parts.adsManager.newAdAvailable(file, QUrl(QStringLiteral("https://example.org/offer")));
    QCOMPARE(window->findChildren<Gui::AdWidget*>().size(), 1);
    QVERIFY(ad->isVisible());
    window->showDriveStatusPage();
    QVERIFY(!ad->isVisible());
    QVERIFY(child<QWidget>(*window, "menu")->isVisible());
}

void TestGuiMainWindow::aboutViewIsBuiltAnewEachTime()
{
    ProgramParts parts;
    auto* window = new Gui::MainWindow(parts.collaborators());
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();

    QImage picture(40, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString file = QDir::temp().filePath(QStringLiteral("ad.png"));
    QVERIFY(picture.save(file));
    emit parts.adsManager.newAdAvailable(file, QUrl(QStringLiteral("https://example.org/")));

    window->onAboutAppDisplayRequest();
    QPointer<Gui::AboutWidget> about = window->findChild<Gui::AboutWidget*>();
    QVERIFY(about);
    QVERIFY(about->isVisible());
    QVERIFY(!window->findChild<Gui::AdWidget*>()->isVisible());
    QVERIFY(!child<QWidget>(*window, "contentScrollArea")->isVisible());

    emit about->closeRequest();
    QVERIFY(child<QWidget>(*window, "contentScrollArea")->isVisible());
    QVERIFY(!child<QWidget>(*window, "menu")->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(about.isNull());

    window->onAboutAppDisplayRequest();
    QVERIFY(window->findChild<Gui::AboutWidget*>());
    QVERIFY(window->findChild<Gui::AboutWidget*>()->isVisible());
}

void TestGuiMainWindow::screenshot()
{
    System::System system;
    system.addDrive(makeDrive(1, QStringLiteral("KV PRIME 1TB"), QStringLiteral("NVMe"), 1024 * GiB));
    system.addDrive(makeDrive(2, QStringLiteral("KV CARD"), QStringLiteral("USB")));
    auto* window = new Gui::MainWindow(collaboratorsOf(&system));
    Gui::MainWindowWinFrame frame(window);
    frame.setScreenAreas([] { return QList<QRect> { Desktop }; });
    frame.show();
    window->showDriveStatusPage();
    window->findChild<Gui::MenuBar*>(QStringLiteral("menu"))->button(Page::SmartParametersId)->click();

    const QImage shot = grabWidget(frame, QStringLiteral("main-window"));
    QCOMPARE(shot.size(), QSize(1280, 1024));
    QVERIFY(containsColor(shot, QColor(0, 10, 50), QRect(0, 0, 1280, 64)));
    QVERIFY(containsColor(shot, QColor(0, 36, 94), QRect(0, 64, 1280, 47)));
    QVERIFY(containsColor(shot, QColor(255, 255, 255), QRect(0, 0, 1280, 64)));
    QVERIFY(containsColor(shot, QColor(0, 0, 26), QRect(0, 1024 - 56, 1280, 56)));
    QVERIFY(containsColor(shot, QColor(0, 2, 63), QRect(0, 1024 - 56, 1280, 56)));
}

KESTRAVIN_GUI_TEST_MAIN(TestGuiMainWindow)
#include "tst_gui_mainwindow.moc"
