#include "smart/SmartManager.h"

#include "logger/Logger.h"
#include "message/Payload.h"
#include "settings/SettingsManager.h"
#include "settings/StoredValue.h"
#include "smart/SmartAttribute.h"
#include "smart/SmartController.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"

#include <google/protobuf/util/json_util.h>

#include <QTimer>

namespace Velmora::Smart {

namespace {

const QString SettingsGroup = QStringLiteral("SMART");
const QString ReadIntervalKey = QStringLiteral("ReadInterval");

} // namespace

SmartManager::SmartManager(System::System* system, QObject* parent)
    : Handler(parent)
    , m_system(system)
    , m_readTimer(new QTimer(this))
{
    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Velmora::Message::Message::Smart});

    connect(m_system, &System::System::driveAdded, this, qOverload<int>(&SmartManager::requestSmartAttributes));
    connect(m_readTimer, &QTimer::timeout, this, qOverload<>(&SmartManager::requestSmartAttributes));
    // Emitted under the settings lock: onSettingsChanged lives on the arguments alone.
    connect(Settings::SettingsManager::instance(), &Settings::SettingsManager::settingsChanged, this,
        &SmartManager::onSettingsChanged);
}

void SmartManager::clientConnected()
{
    updateSmartReadTimer();
}

void SmartManager::updateSmartReadTimer()
{
    applyReadInterval(Settings::storedInt(SettingsGroup, ReadIntervalKey, DefaultReadInterval));
}

void SmartManager::onSettingsChanged(QString group, QString key, QVariant value)
{
    if (group == SettingsGroup && key == ReadIntervalKey)
        applyReadInterval(value.toInt());
}

void SmartManager::applyReadInterval(int interval)
{
    m_readTimer->stop();
    // Whoever touches the interval sees fresh values at once, also when switching the cycle off.
    requestSmartAttributes();
    if (interval < 1) {
        Logger::debug(QString(), QStringLiteral("Disable cyclic readouts."));
        return;
    }
    Logger::debug(QString(),
        QStringLiteral("Change cyclic readout interval %1 -> %2").arg(m_readTimer->interval()).arg(interval));
    m_readTimer->setInterval(interval);
    m_readTimer->start();
}

void SmartManager::requestSmartAttributes()
{
    const QList<int> ids = m_system->driveIds();
    for (int driveId : ids)
        requestSmartAttributes(driveId);
}

void SmartManager::requestSmartAttributes(int driveId)
{
    Logger::debug(QString(), QStringLiteral("Request SMART attributes for drive %1").arg(driveId));
    m_request.Clear();
    m_request.set_driveid(quint32(driveId));
    m_request.set_allattributes(true);
    sendRequest();
}

void SmartManager::requestSmartAttribute(int attributeId)
{
    const QList<int> ids = m_system->driveIds();
    for (int driveId : ids)
        requestSmartAttribute(driveId, attributeId);
}

void SmartManager::requestSmartAttribute(int driveId, int attributeId)
{
    Logger::debug(QString(), QStringLiteral("Request SMART attribute %1 for drive %2").arg(attributeId).arg(driveId));
    m_request.Clear();
    m_request.set_driveid(quint32(driveId));
    m_request.set_allattributes(false);
    m_request.set_attributeid(quint32(attributeId));
    sendRequest();
}

void SmartManager::sendRequest()
{
    emit sendMessage(Velmora::Message::Message::SmartRequest, Velmora::Message::toPayload(m_request));
}

void SmartManager::handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload)
{
    if (type != Velmora::Message::Message::Smart) {
        Logger::error(QString(),
            QStringLiteral("Unexpected message type: %1.").arg(Velmora::Message::Message::typeName(type)));
        return;
    }

    // A payload that does not parse counts as an answer with default fields.
    Velmora::Message::Smart message;
    message.ParseFromArray(payload.constData(), payload.size());

    switch (message.errorcode()) {
    case Velmora::Message::Smart::SUCCESS:
        updateSmartAttributes(int(message.driveid()), message.attributes());
        break;
    case Velmora::Message::Smart::NO_DRIVE:
        Logger::error(QString(), QStringLiteral("Unable to read SMART attributes, wrong DriveId."));
        break;
    case Velmora::Message::Smart::NO_ATTRIBUTE:
        Logger::error(QString(), QStringLiteral("Unable to read SMART attributes, no such attribute."));
        break;
    default:
        Logger::error(QString(), QStringLiteral("Unknown error code."));
        break;
    }
    // Error answers replace the last good one too: the report shows what the service said last.
    m_lastMessages.insert(message.driveid(), message);
}

void SmartManager::updateSmartAttributes(int driveId,
    google::protobuf::RepeatedPtrField<Velmora::Message::Smart_SmartAttribute> attributes)
{
    System::Drive* drive = m_system->drive(driveId);
    if (!drive) {
        Logger::error(QString(),
            QStringLiteral("Cannot update S.M.A.R.T. atributes. Drive %1 does not exist.").arg(driveId));
        return;
    }
    // Other makers' attributes mean something else; their controllers stay empty.
    if (!System::SupportedDrivesManager::isSupportedDrive(*drive))
        return;
    SmartController* controller = drive->smartController();
    if (!controller)
        return;

    for (const Velmora::Message::Smart_SmartAttribute& received : attributes) {
        controller->addAttribute(received);
        // What is logged is what the controller keeps, after any firmware correction.
        const SmartAttribute* stored = controller->attribute(received.id());
        if (!stored || !Logger::isEnabled(Logger::Debug))
            continue;
        Logger::debug(QString(), QStringLiteral("SMART attribute: %1 %2 %3 %4 %5 %6")
                                     .arg(stored->id())
                                     .arg(stored->current())
                                     .arg(stored->worst())
                                     .arg(stored->threshold())
                                     .arg(stored->status())
                                     .arg(QString::fromLatin1(stored->data().toHex())));
    }
    controller->commitReadout();
}

QString SmartManager::smartReportJson() const
{
    google::protobuf::util::JsonPrintOptions options;
    options.add_whitespace = true;
    options.always_print_primitive_fields = true;
    options.always_print_enums_as_ints = false;
    options.preserve_proto_field_names = true;

    QString text = QStringLiteral("{\n\"SMART\": [");
    for (auto it = m_lastMessages.cbegin(); it != m_lastMessages.cend(); ++it) {
        std::string json;
        google::protobuf::util::MessageToJsonString(it.value(), &json, options);
        text += QString::fromStdString(json);
        text += QLatin1Char(',');
    }
    // Drops the last comma; with no message it takes the bracket, and the support report has
    // always carried that text for a machine without answers.
    text.chop(1);
    text += QStringLiteral("\n]\n}");
    return text;
}

} // namespace Velmora::Smart
