#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>

namespace Velmora::ServiceSim {

// The S.M.A.R.T. attribute table of one simulated drive. Each read-out moves the counters that
// the scenario lets grow (data written, power-on hours), by their step, as a drive in use does.
class SmartTable
{
public:
    struct Attribute {
        quint32 id = 0;
        quint32 current = 100;
        quint32 worst = 100;
        quint32 threshold = 0;
        quint32 status = 0;
        quint64 raw = 0;    // the 48-bit raw value
        quint64 growth = 0; // added to `raw` after each read-out
    };

    // From the scenario: [{"Id": 241, "Current": 100, "Worst": 100, "Threshold": 0, "raw": 8812,
    // "growth": 3}, ...]; "raw" is a number or a text such as "0x2C0035".
    static bool fromJson(const QJsonArray& attributes, SmartTable* table, QString* error);

    bool isEmpty() const { return m_attributes.isEmpty(); }
    const QList<Attribute>& attributes() const { return m_attributes; }
    const Attribute* attribute(quint32 id) const;

    // Moves the growing counters on by one read-out.
    void advance();

    // The six raw bytes as hexadecimal text, least significant byte first, as the service sends them.
    static QString rawText(quint64 raw);

private:
    QList<Attribute> m_attributes;
};

} // namespace Velmora::ServiceSim
