#include "communicationweb/AdAvabilityResponse.h"
#include "communicationweb/ApplicationUpdateResponse.h"
#include "communicationweb/AuthorizationRequest.h"
#include "communicationweb/AuthorizationResponse.h"
#include "communicationweb/FirmwareResponse.h"
#include "communicationweb/SessionResponse.h"
#include "communicationweb/SupportRequest.h"
#include "communicationweb/SupportResponse.h"
#include "communicationweb/SupportedDriveEntry.h"
#include "communicationweb/SupportedDrivesResponse.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QPointer>
#include <QTest>

#include <memory>

using namespace Velmora::CommunicationWeb;

namespace {

std::unique_ptr<JsonMessage> messageNamed(const QString& name)
{
    if (name == QLatin1String("SessionResponse"))
        return std::make_unique<SessionResponse>();
    if (name == QLatin1String("AuthorizationRequest"))
        return std::make_unique<AuthorizationRequest>();
    if (name == QLatin1String("AuthorizationResponse"))
        return std::make_unique<AuthorizationResponse>();
    if (name == QLatin1String("FirmwareResponse"))
        return std::make_unique<FirmwareResponse>();
    if (name == QLatin1String("ApplicationUpdateResponse"))
        return std::make_unique<ApplicationUpdateResponse>();
    if (name == QLatin1String("AdAvabilityResponse"))
        return std::make_unique<AdAvabilityResponse>();
    if (name == QLatin1String("SupportRequest"))
        return std::make_unique<SupportRequest>();
    if (name == QLatin1String("SupportResponse"))
        return std::make_unique<SupportResponse>();
    return nullptr;
}

// Entries written "model|firmware|smartType".
QStringList entriesOf(const SupportedDrivesResponse& response)
{
    QStringList result;
    for (const SupportedDriveEntry* entry : response.entries())
        result.append(entry->model() + QLatin1Char('|') + entry->firmware() + QLatin1Char('|') + entry->smartType());
    return result;
}

} // namespace

class TestJsonMessage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }

    void readsProperties_data();
    void readsProperties();
    void writesEveryProperty_data();
    void writesEveryProperty();
    void logsWhatItSerializes();
    void readsTheSupportedModels_data();
    void readsTheSupportedModels();
    void dropsEntriesOfAnEarlierParse();
};

void TestJsonMessage::readsProperties_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QVariantMap>("properties");

    QTest::newRow("extra key ignored") << "SessionResponse" << R"({"session":"abc","extra":1})" << true
                                       << QVariantMap{{"session", "abc"}};
    QTest::newRow("missing key fills the rest") << "ApplicationUpdateResponse" << R"({"version":"1.2.0"})" << false
                                                << QVariantMap{{"version", "1.2.0"}, {"url", QString()}};
    QTest::newRow("all four keys") << "FirmwareResponse"
                                   << R"({"model":"X 240","currentFirmware":"1.0","version":"1.2","url":"https://f/x"})" << true
                                   << QVariantMap{{"model", "X 240"}, {"currentFirmware", "1.0"}, {"version", "1.2"}, {"url", "https://f/x"}};
    QTest::newRow("bool true") << "AuthorizationResponse" << R"({"authenticated":true})" << true
                               << QVariantMap{{"authenticated", true}};
    QTest::newRow("bool false") << "AuthorizationResponse" << R"({"authenticated":false})" << true
                                << QVariantMap{{"authenticated", false}};
    QTest::newRow("int from a number") << "SupportResponse" << R"({"id":4711})" << true << QVariantMap{{"id", 4711}};
    QTest::newRow("null counts as present") << "SessionResponse" << R"({"session":null})" << true << QVariantMap();
    QTest::newRow("wrong type is no error") << "SupportResponse" << R"({"id":{"n":1}})" << true << QVariantMap{{"id", 0}};
    QTest::newRow("number into text") << "AdAvabilityResponse" << R"({"file":12,"link":"https://l"})" << true
                                      << QVariantMap{{"file", "12"}, {"link", "https://l"}};
    QTest::newRow("syntax error") << "SessionResponse" << R"({"session":)" << false << QVariantMap{{"session", QString()}};
    QTest::newRow("array where an object belongs") << "SessionResponse" << R"([{"session":"abc"}])" << false
                                                   << QVariantMap{{"session", QString()}};
    QTest::newRow("empty text") << "SupportResponse" << QString() << false << QVariantMap{{"id", 0}};
    QTest::newRow("text cut at a zero byte") << "SessionResponse" << QString::fromLatin1("{\"session\":\"a\"}\0x", 17) << false
                                             << QVariantMap();
}

void TestJsonMessage::readsProperties()
{
    QFETCH(QString, message);
    QFETCH(QString, text);
    QFETCH(bool, result);
    QFETCH(QVariantMap, properties);

    std::unique_ptr<JsonMessage> object = messageNamed(message);
    QVERIFY(object);
    QCOMPARE(object->fromJson(text), result);
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        QCOMPARE(object->property(it.key().toLatin1().constData()), it.value());
}

void TestJsonMessage::writesEveryProperty_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("empty support request keeps its keys")
        << "SupportRequest" << QVariantMap() << QByteArray(R"({"captcha":"","diskSerialNumber":"","email":"","message":""})");
    QTest::newRow("support request")
        << "SupportRequest"
        << QVariantMap{{"message", "It \"hangs\""}, {"diskSerialNumber", "S1"}, {"email", "a@b.c"}, {"captcha", "x7Q"}}
        << QByteArray(R"({"captcha":"x7Q","diskSerialNumber":"S1","email":"a@b.c","message":"It \"hangs\""})");
    QTest::newRow("authorization request") << "AuthorizationRequest" << QVariantMap{{"session", "abc"}, {"hash", "00ff"}}
                                           << QByteArray(R"({"hash":"00ff","session":"abc"})");
    QTest::newRow("bool") << "AuthorizationResponse" << QVariantMap{{"authenticated", true}} << QByteArray(R"({"authenticated":true})");
    QTest::newRow("int") << "SupportResponse" << QVariantMap{{"id", 12}} << QByteArray(R"({"id":12})");
}

void TestJsonMessage::writesEveryProperty()
{
    QFETCH(QString, message);
    QFETCH(QVariantMap, properties);
    QFETCH(QByteArray, json);

    std::unique_ptr<JsonMessage> object = messageNamed(message);
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        QVERIFY(object->setProperty(it.key().toLatin1().constData(), it.value()));
    QCOMPARE(object->toJson().toJson(QJsonDocument::Compact), json);

    // What goes out reads back into a fresh message of the same class.
    std::unique_ptr<JsonMessage> copy = messageNamed(message);
    QVERIFY(copy->fromJson(object->toJson()));
    QCOMPARE(copy->toJson(), object->toJson());
}

void TestJsonMessage::logsWhatItSerializes()
{
    SessionResponse message;
    message.setSession(QStringLiteral("abc"));
    LogCapture log;
    const QString text = message.toString();
    QCOMPARE(text, QStringLiteral("{\n    \"session\": \"abc\"\n}\n"));
    QCOMPARE(log.messages(Velmora::Logger::Debug), QStringList{QStringLiteral("Serialized class: ") + text});
}

void TestJsonMessage::readsTheSupportedModels_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("entries");

    QTest::newRow("empty object skipped") << R"([{"model":"A","firmware":"1","smartType":"B"},{},{"model":"C","firmware":"2","smartType":"D"}])"
                                          << true << QStringList{"A|1|B", "C|2|D"};
    QTest::newRow("empty array") << "[]" << true << QStringList();
    QTest::newRow("object instead of array") << "{}" << false << QStringList();
    QTest::newRow("missing key") << R"([{"model":"A","firmware":"1"}])" << false << QStringList();
    QTest::newRow("missing key keeps earlier entries")
        << R"([{"model":"A","firmware":"1","smartType":"B"},{"model":"C"},{"model":"E","firmware":"3","smartType":"F"}])" << false
        << QStringList{"A|1|B"};
    QTest::newRow("non-objects skipped") << R"([1,"x",null,[],{"model":"A","firmware":"","smartType":"B","extra":0}])" << true
                                         << QStringList{"A||B"};
    QTest::newRow("syntax error") << R"([{"model":"A")" << false << QStringList();
}

void TestJsonMessage::readsTheSupportedModels()
{
    QFETCH(QString, text);
    QFETCH(bool, result);
    QFETCH(QStringList, entries);

    SupportedDrivesResponse response;
    QCOMPARE(response.fromJson(text), result);
    QCOMPARE(entriesOf(response), entries);
}

void TestJsonMessage::dropsEntriesOfAnEarlierParse()
{
    SupportedDrivesResponse response;
    QVERIFY(response.fromJson(QStringLiteral(R"([{"model":"A","firmware":"1","smartType":"B"}])")));
    QPointer<SupportedDriveEntry> first = response.entries().first();
    QVERIFY(!response.fromJson(QStringLiteral("{}")));
    QVERIFY(first.isNull());
    QVERIFY(response.entries().isEmpty());
}

KESTRAVIN_TEST_MAIN(TestJsonMessage)
#include "tst_jsonmessage.moc"
