#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

namespace Velmora::Message {
class Smart_SmartAttribute;
}

namespace Velmora::System {
class Drive;
}

namespace Velmora::Smart {

// The eight vendor-neutral questions put to a drive's SMART controller. The values are fixed.
enum SmartParameter {
    BadSectors = 0,
    PowerOnHours = 1,
    PowerCycles = 2,
    MaxEraseCount = 3,
    AvgEraseCount = 4,
    Temperature = 5,
    LifeRemaining = 6,
    GBWritten = 7
};

class SmartAttribute;

struct SmartHistoryPoint {
    double value;
    QDateTime time;
};

// Stores a drive's latest SMART attributes and answers the vendor-neutral questions in the dialect
// of the drive's controller chip. One per drive, owned by it.
class SmartController : public QObject
{
    Q_OBJECT

public:
    // Enough for a little over four days at the default read interval, and bounded for a program
    // that sits in the tray for months.
    static constexpr int HistorySize = 400;

    SmartController(const QString& firmwareVersion, QObject* parent = nullptr);
    ~SmartController() override;

    QString firmwareVersion() const { return m_firmwareVersion; }
    void setFirmwareVersion(const QString& firmwareVersion) { m_firmwareVersion = firmwareVersion; }

    // Takes one attribute of a Smart message; its Data is the raw value as hexadecimal text, kept
    // as it comes unless a family corrects what its firmware reports.
    virtual void addAttribute(const Velmora::Message::Smart_SmartAttribute& attribute);
    // Closes a read-out: records the written-data figure in the history and tells the readers.
    virtual void commitReadout();
    // A parameter whose attribute the drive did not deliver is 0.0 with *ok false; ok may be null.
    virtual double parameterValue(SmartParameter parameter, bool* ok) = 0;
    virtual SmartAttribute* attribute(unsigned id);
    // Newest first. Only GBWritten has a history; every other parameter gives null.
    virtual QList<SmartHistoryPoint*>* parameterHistory(SmartParameter parameter);

signals:
    void dataChanged();

protected:
    enum RawForm { Raw48, Raw32, Lo16, Hi16, Byte0 };

    // Replaces the attribute of the same id; `data` are the decoded raw bytes, low byte first.
    void storeAttribute(const Velmora::Message::Smart_SmartAttribute& attribute, const QByteArray& data);
    static QByteArray decodedData(const Velmora::Message::Smart_SmartAttribute& attribute);

    // The raw form of an attribute, or 0.0 with *ok false when the drive did not deliver it.
    double rawValue(unsigned id, RawForm form, bool* ok);
    // Remaining life from an average erase count against the rated number of erase cycles,
    // rounded half away from zero and kept within 0..100.
    double lifeFromEraseCount(unsigned id, double maxEraseCount, bool* ok);
    // The parameters every family reads alike; anything else is not supported.
    double commonParameterValue(SmartParameter parameter, bool* ok);
    static double notSupported(bool* ok);

    QMap<quint32, SmartAttribute*> m_attributes;
    QString m_firmwareVersion;
    QList<SmartHistoryPoint*> m_history;
};

// Chooses the controller class by the drive's SMART class letter; the drive becomes its parent.
SmartController* createSmartController(Velmora::System::Drive* drive);

} // namespace Velmora::Smart
