#include <QApplication>

#include "support/TestEnvironment.h"

#include "ads/AdsManager.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadFile.h"
#include "download/DownloadManager.h"
#include "gui/ApplicationFonts.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowWinFrame.h"
#include "gui/MenuBar.h"
#include "gui/pages/SettingsPage.h"
#include "gui/widgets/MenuBarButton.h"
#include "gui/widgets/MenuButton.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "performance/PerformanceCheck.h"
#include "rest/RestClient.h"
#include "settings/SettingsManager.h"
#include "system/Drive.h"
#include "system/System.h"
#include "system/SystemManager.h"
#include "update/ApplicationUpdate.h"
#include "update/FirmwareUpdate.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTranslator>

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

// The page on top of the stack.
QWidget* currentPage(const Gui::MainWindow& window)
{
    return window.findChild<QStackedWidget*>(QStringLiteral("contentStackedWidget"))->currentWidget();
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
    void menuEntriesShowTheirWholeCaption_data();
    void menuEntriesShowTheirWholeCaption();

    void driveComboLeavesOutUsbDrives_data();
    void driveComboLeavesOutUsbDrives();

    void dragWithoutWindowManager_data();
    void dragWithoutWindowManager();
    void zoomKeepsThePlaceBeforeIt();

    void unshowableAdNeverAppears_data();
    void unshowableAdNeverAppears();

    void updateButtonLeadsToSettings();
    void migrationLocksNavigation_data();
    void migrationLocksNavigation();

    void oldFamilyNamesReachTheBundledFaces_data();
    void oldFamilyNamesReachTheBundledFaces();
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
    QTest::newRow("firmware") << int(Page::FirmwareUpdateId) << "FIRMWARE UPDATE";
    QTest::newRow("settings") << int(Page::SettingsId) << "SETTINGS";
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

void TestGuiMainWindow::menuEntriesShowTheirWholeCaption_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("width");
    QTest::newRow("English, narrowest window") << QString() << 900;
    QTest::newRow("English, full size") << QString() << 1920;
    QTest::newRow("Polish, narrowest window") << "pl" << 900;
    QTest::newRow("Polish, 1366") << "pl" << 1366;
}

void TestGuiMainWindow::menuEntriesShowTheirWholeCaption()
{
    QFETCH(QString, language);
    QFETCH(int, width);
    QTranslator translator;
    if (!language.isEmpty())
        QVERIFY(translator.load(QStringLiteral("KESTRAVIN_") + language, QStringLiteral(KESTRAVIN_QM_DIR)));
    QCoreApplication::installTranslator(&translator);
    Gui::MenuBar menu;
    QCoreApplication::removeTranslator(&translator);
    auto* group = child<Gui::MenuBarButton>(menu, "ssdManagementButton");
    QMenu* dropDown = group->menu();

    // Opened at the narrowest window first, then at the row's: the drop-down follows; a choice closes it.
    for (int barWidth : { 900, width }) {
        menu.resize(barWidth, 47);
        menu.show();
        dropDown->popup(group->mapToGlobal(QPoint(0, group->height())));
        for (Page::PageId id : { Page::SsdStatusId, Page::SmartParametersId, Page::PerformanceTestId }) {
            QAbstractButton* entry = menu.button(id);
            const int textWidth = entry->fontMetrics().horizontalAdvance(entry->text());
            QVERIFY2(entry->width() - Gui::MenuButton::TextLeft >= textWidth, qPrintable(entry->text()));
            QVERIFY2(dropDown->rect().contains(entry->geometry()), qPrintable(entry->text()));
        }
        dropDown->hide();
    }
    dropDown->popup(group->mapToGlobal(QPoint(0, group->height())));
    menu.button(Page::SmartParametersId)->click();
    QVERIFY(!dropDown->isVisible());
}

void TestGuiMainWindow::driveComboLeavesOutUsbDrives_data()
{
    QTest::addColumn<QStringList>("typesBefore");
    QTest::addColumn<QStringList>("typesAfter");
    QTest::addColumn<QList<int>>("listedIds");
    QTest::addColumn<int>("shownId");
    // Drives get ids 1, 2, ... in the order of the types; those before exist when the window is made.
    QTest::newRow("known at start") << QStringList { "SATA", "NVMe" } << QStringList() << QList<int> { 1, 2 } << 1;
    QTest::newRow("usb in any case") << QStringList { "USB" } << QStringList { "usb", "SATA", "Usb bridge" }
                                     << QList<int> { 3 } << 3;
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

void TestGuiMainWindow::dragWithoutWindowManager_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("movement");
    QTest::addColumn<QRect>("expected");
    // The window starts at (100, 100), 1000 x 700.
    QTest::newRow("title area moves") << QPoint(400, 30) << QPoint(50, -40) << QRect(150, 60, 1000, 700);
    QTest::newRow("right border widens") << QPoint(997, 300) << QPoint(80, 0) << QRect(100, 100, 1080, 700);
    QTest::newRow("not below the minimum") << QPoint(0, 400) << QPoint(300, 0) << QRect(200, 100, 900, 700);
}

void TestGuiMainWindow::dragWithoutWindowManager()
{
    QFETCH(QPoint, press);
    QFETCH(QPoint, movement);
    QFETCH(QRect, expected);

    System::System system;
    Gui::MainWindowWinFrame frame(collaboratorsOf(&system));
    Gui::MainWindow* window = frame.mainWindow();
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

void TestGuiMainWindow::zoomKeepsThePlaceBeforeIt()
{
    System::System system;
    Gui::MainWindowWinFrame frame(collaboratorsOf(&system));
    const QRect screen(0, 0, 1366, 768);
    frame.setScreenAreas([screen] { return QList<QRect> { screen }; });
    const auto savedGeometry = [] { return Settings::SettingsManager::value("MainWindow", "Geometry").toRect(); };
    // The default size doesn't fit the screen: where nothing zooms the window, it still lies inside.
    frame.show();
    QVERIFY(screen.contains(savedGeometry()));

    frame.restore();
    frame.setGeometry(100, 60, 1000, 600);
    frame.setWindowState(Qt::WindowMaximized); // by the window manager (keyboard, snapping)
    QCOMPARE(savedGeometry(), QRect(100, 60, 1000, 600));

    // Dragged down by its title area, it comes back at that size, still held where it was grabbed.
    const QPoint grab(frame.width() / 2, 30);
    sendMouse(frame, QEvent::MouseButtonPress, grab, Qt::LeftButton);
    const QPoint end = frame.mapToGlobal(grab) + QPoint(40, 200);
    QMouseEvent move(QEvent::MouseMove, QPointF(), QPointF(), end, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(frame.findChild<Gui::MainWindow*>(), &move);
    QVERIFY(!frame.isMaximized());
    QCOMPARE(frame.size(), QSize(1000, 600));
    QCOMPARE(frame.mapFromGlobal(end), QPoint(500, 30));
}

void TestGuiMainWindow::unshowableAdNeverAppears_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<bool>("shown");
    QTest::newRow("picture") << "ad.png" << QByteArray("PNG") << true;
    QTest::newRow("unsupported type") << "ad.bmp" << QByteArray("BMP") << false;
    QTest::newRow("does not decode") << "ad.png" << QByteArray() << false;
}

void TestGuiMainWindow::unshowableAdNeverAppears()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, format);
    QFETCH(bool, shown);
    QTemporaryDir dir;
    const QString path = dir.filePath(fileName);
    QImage picture(300, 200, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    QFile written(path);
    QVERIFY(written.open(QIODevice::WriteOnly));
    QVERIFY(format.isEmpty() ? written.write(QByteArray(500, 'Z')) == 500 : picture.save(&written, format.constData()));
    written.close();

    ProgramParts parts;
    QSignalSpy offered(&parts.adsManager, &Ads::AdsManager::newAdAvailable);
    auto* file = new Download::AdvertisementFile(QStringLiteral("https://127.0.0.1:9/ad"), dir.path());
    file->setPath(path);
    parts.adsManager.onFileDownloaded(file);
    QCOMPARE(offered.count(), shown ? 1 : 0);

    // Asked to show it all the same, the window doesn't leave an empty advertisement over the page.
    Gui::MainWindow window(parts.collaborators());
    window.show();
    emit parts.adsManager.newAdAvailable(path, QUrl());
    QCOMPARE(child<QWidget>(window, "AdWidget")->isVisible(), shown);
    QCOMPARE(child<QWidget>(window, "contentScrollArea")->isVisible(), !shown);
}

void TestGuiMainWindow::updateButtonLeadsToSettings()
{
    ProgramParts parts;
    Gui::MainWindow window(parts.collaborators());
    auto* menu = child<Gui::MenuBar>(window, "menu");
    QSignalSpy triggered(menu, &Gui::MenuBar::menuTriggered);
    emit parts.applicationUpdate.applicationUpdateStatusChanged(Update::UpdateAvailable, QStringLiteral("1.2.0"));

    child<QPushButton>(window, "updateAvailableButton")->click();

    QVERIFY(qobject_cast<Gui::SettingsPage*>(currentPage(window)));
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

void TestGuiMainWindow::oldFamilyNamesReachTheBundledFaces_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("family");
    QTest::newRow("regular") << "Inter UI" << "Inter";
    QTest::newRow("semi-bold") << "Inter UI Semi Bold" << "Inter Semi Bold";
    QTest::newRow("black") << "Inter UI Black" << "Inter Black";
}

void TestGuiMainWindow::oldFamilyNamesReachTheBundledFaces()
{
    QFETCH(QString, name);
    QFETCH(QString, family);
    QCOMPARE(QFontInfo(QFont(name, 13)).family(), family);
}

KESTRAVIN_GUI_TEST_SUITE(TestGuiMainWindow)
#include "tst_gui_mainwindow.moc"
