#pragma once

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
    SmartController(const QString& firmwareVersion, QObject* parent = nullptr);
    ~SmartController() override;

    QString firmwareVersion() const { return m_firmwareVersion; }
    void setFirmwareVersion(const QString& firmwareVersion) { m_firmwareVersion = firmwareVersion; }

    virtual void addAttribute(const Velmora::Message::Smart_SmartAttribute& attribute) = 0;
    virtual void commitReadout();
    virtual double parameterValue(SmartParameter parameter, bool* ok) = 0;
    virtual SmartAttribute* attribute(unsigned id);
    virtual QList<SmartHistoryPoint*>* parameterHistory(SmartParameter parameter);

signals:
    void dataChanged();

protected:
    QMap<quint32, SmartAttribute*> m_attributes;
    QString m_firmwareVersion;
    QList<SmartHistoryPoint*> m_history;
};

// Chooses the controller class by the drive's SMART class letter; the drive becomes its parent.
SmartController* createSmartController(Velmora::System::Drive* drive);

} // namespace Velmora::Smart
