#include <QApplication>

#include "BackendTestSupport.h"
#include "SimulatorProcess.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "gui/MainWindow.h"
#include "gui/MenuBar.h"
#include "rest/RestClient.h"
#include "rest/TrustedAuthority.h"
#include "smart/SmartManager.h"
#include "support/SupportCaptcha.h"
#include "support/SupportManager.h"
#include "support/SupportServiceHandler.h"
#include "support/TestEnvironment.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Velmora;

class TestSupportForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void ticketSentFromTheForm();
    void longMessageIsCut_data();
    void longMessageIsCut();
    void emptyFieldTurnsOnlyItsFrameRed_data();
    void emptyFieldTurnsOnlyItsFrameRed();

private:
    template <typename T> T* field(const char* name) const { return m_page->findChild<T*>(QString::fromLatin1(name)); }
    QString pendingCaptcha() { return m_admin->get(m_backend->admin(QStringLiteral("captcha"))).json()["text"].toString(); }

    QTemporaryDir m_certificates;
    std::unique_ptr<BackendProcess> m_backend;
    std::unique_ptr<TrustedClient> m_admin;
    std::unique_ptr<SimulatorProcess> m_simulator;
    Support::SupportCaptcha* m_captcha = nullptr;
    std::unique_ptr<Gui::MainWindow> m_window;
    QWidget* m_page = nullptr;
};

void TestSupportForm::initTestCase()
{
    QString error;
    QVERIFY2(BackendProcess::makeCertificates(m_certificates.path(), &error), qPrintable(error));
    m_backend = std::make_unique<BackendProcess>(m_certificates.path(), QStringList { QStringLiteral("--quiet") });
    QVERIFY2(m_backend->start(), qPrintable(m_backend->log()));
    m_admin = std::make_unique<TrustedClient>(m_certificates.filePath(QStringLiteral("ca.pem")));
    QVERIFY(REST::addTrustedAuthority(m_certificates.filePath(QStringLiteral("ca.pem"))));
    m_simulator = std::make_unique<SimulatorProcess>();
    QVERIFY2(m_simulator->start(), qPrintable(m_simulator->errorOutput()));

    auto* client = new Communication::NamedPipeClient(this);
    client->setServerName(m_simulator->name());
    auto* dispatcher = new Communication::Dispatcher(this);
    connect(client, &Communication::NamedPipeClient::connectedToServer, dispatcher, &Communication::Dispatcher::clientConnected);
    connect(client, &Communication::NamedPipeClient::messageReceived, dispatcher, &Communication::Dispatcher::dispatchMessage);
    connect(dispatcher, &Communication::Dispatcher::sendMessageToClient, client, &Communication::NamedPipeClient::sendMessage);
    auto* system = new System::System(this);
    auto* systemManager = new System::SystemManager(system, this);
    auto* smartManager = new Smart::SmartManager(system, this);
    auto* serviceHandler = new Support::SupportServiceHandler(this);
    for (Communication::Handler* handler : QList<Communication::Handler*> { systemManager, smartManager, serviceHandler })
        dispatcher->registerHandler(handler);
    auto* rest = new REST::RestClient(m_backend->api(QString()), nullptr, this);
    auto* authorization = new CommunicationWeb::TarnAuthorizationService(rest, this);
    m_captcha = new Support::SupportCaptcha(new Download::DownloadManager(nullptr, this), rest->baseUrl(), this);

    Gui::MainWindow::Collaborators collaborators;
    collaborators.system = system;
    collaborators.supportManager = new Support::SupportManager(systemManager, smartManager, serviceHandler, rest, authorization, this);
    collaborators.supportCaptcha = m_captcha;
    m_window = std::make_unique<Gui::MainWindow>(collaborators);
    m_window->resize(1366, 768);
    m_window->show();
    client->connectToServer();
    QTRY_COMPARE_WITH_TIMEOUT(system->driveIds().size(), 4, 10000);
}

void TestSupportForm::init()
{
    if (!m_page)
        return;
    field<QPlainTextEdit>("supportFormMessage")->setPlainText(QStringLiteral("Slow writes"));
    field<QLineEdit>("lineEdit_email")->setText(QStringLiteral("user@example.org"));
    field<QLineEdit>("lineEdit_captcha")->setText(QStringLiteral("ABCDE"));
    field<QComboBox>("comboBox_driveSelect")->setCurrentIndex(1);
    for (QWidget* widget : m_page->findChildren<QWidget*>(QRegularExpression(QStringLiteral("_|Message"))))
        widget->setStyleSheet(QString());
}

void TestSupportForm::ticketSentFromTheForm()
{
    QElapsedTimer opening;
    opening.start();
    m_window->findChild<Gui::MenuBar*>(QStringLiteral("menu"))->button(Gui::Page::TechnicalSupportId)->click();
    QApplication::processEvents();
    qInfo("TECHNICAL SUPPORT opened and painted in %lld ms", opening.elapsed());
    m_page = m_window->findChild<QWidget*>(QStringLiteral("SupportFormPage"));
    QVERIFY(m_page && m_page->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!field<QLabel>("label_captcha")->pixmap(Qt::ReturnByValue).isNull(), 5000);
    // Only the scenario's BRANTEL drives 0 and 1: not drive 2 of another maker nor the USB stick 3.
    auto* drives = field<QComboBox>("comboBox_driveSelect");
    QCOMPARE(QVariantList({ drives->count(), drives->itemData(0), drives->itemData(1), drives->itemData(2) }),
        QVariantList({ 3, -1, 0, 1 }));
    init();
    auto* captcha = field<QLineEdit>("lineEdit_captcha");
    auto* status = field<QLabel>("statusLabel");
    QSignalSpy pictures(m_captcha, &Support::SupportCaptcha::captchaAvailable);

    captcha->setText(pendingCaptcha() + QStringLiteral("X"));
    field<QPushButton>("pushButton_contactSupport")->click();
    QCOMPARE(status->text(), QStringLiteral("SENDING REQUEST"));
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QStringLiteral("INVALID CAPTCHA"), 10000);
    QVERIFY(captcha->text().isEmpty());
    // The rejected ticket used up its captcha: a text pending again is that of a fresh picture.
    QTRY_COMPARE_WITH_TIMEOUT(pictures.count(), 1, 5000);
    captcha->setText(pendingCaptcha());
    field<QPushButton>("pushButton_contactSupport")->click();
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QStringLiteral("SUPPORT REQUEST SENT"), 10000);
    const QJsonArray tickets = m_admin->get(m_backend->admin(QStringLiteral("tickets"))).json().array();
    QCOMPARE(tickets.size(), 1);
    QCOMPARE(tickets[0]["message"].toString(), QStringLiteral("Slow writes"));
    QCOMPARE(tickets[0]["email"].toString(), QStringLiteral("user@example.org"));
    QCOMPARE(tickets[0]["diskSerialNumber"].toString(), QStringLiteral("BC3S2241A0093"));
    QTRY_COMPARE_WITH_TIMEOUT(pictures.count(), 2, 5000);

    QFile page(QDir::temp().filePath(QStringLiteral("captcha.php")));
    QVERIFY(page.open(QIODevice::WriteOnly) && page.write("<html>500 Internal Server Error</html>") > 0);
    page.close();
    emit m_captcha->captchaAvailable(page.fileName());
    QCOMPARE(field<QLabel>("label_captcha")->text(), QStringLiteral("CAPTCHA NOT AVAILABLE"));
}

void TestSupportForm::longMessageIsCut_data()
{
    QTest::addColumn<int>("typed");
    QTest::addColumn<int>("pasted");
    QTest::newRow("5,001 pasted") << 0 << 5001;
    QTest::newRow("pasted after typing") << 4990 << 20;
}

void TestSupportForm::longMessageIsCut()
{
    QFETCH(int, typed);
    QFETCH(int, pasted);
    auto* message = field<QPlainTextEdit>("supportFormMessage");
    message->setPlainText(QString(typed, QLatin1Char('a')));
    message->moveCursor(QTextCursor::End);
    message->insertPlainText(QString(pasted, QLatin1Char('b'))); // what a paste does
    QCOMPARE(message->toPlainText(), QString(typed, QLatin1Char('a')) + QString(5000 - typed, QLatin1Char('b')));
    QCOMPARE(message->textCursor().position(), 5000);
}

void TestSupportForm::emptyFieldTurnsOnlyItsFrameRed_data()
{
    QTest::addColumn<QString>("emptied");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("blank");
    QTest::newRow("address") << "lineEdit_email" << QByteArray("text") << QVariant("");
    QTest::newRow("captcha") << "lineEdit_captcha" << QByteArray("text") << QVariant("");
    QTest::newRow("message of blanks") << "supportFormMessage" << QByteArray("plainText") << QVariant(" \n\t ");
    QTest::newRow("drive") << "comboBox_driveSelect" << QByteArray("currentIndex") << QVariant(0);
}

void TestSupportForm::emptyFieldTurnsOnlyItsFrameRed()
{
    QFETCH(QString, emptied);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, blank);
    QVERIFY(m_page->findChild<QWidget*>(emptied)->setProperty(property, blank));

    field<QPushButton>("pushButton_contactSupport")->click();
    // Shown in place of "SENDING REQUEST", which a ticket under way would have set at once.
    QCOMPARE(field<QLabel>("statusLabel")->text(), QStringLiteral("FIELDS MUST CONTAIN CORRECT DATA"));
    for (const char* name : { "supportFormMessage", "lineEdit_email", "lineEdit_captcha", "comboBox_driveSelect" })
        QVERIFY2(field<QWidget>(name)->styleSheet().contains(QLatin1String("red")) == (emptied == QLatin1String(name)), name);
}

KESTRAVIN_GUI_TEST_MAIN(TestSupportForm)
#include "tst_supportform.moc"
