#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace Velmora::ServiceSim {

// Misbehaviour on request, from the scenario's "faults" object or the command line: answers that
// come late, never or with an error code, and a wire that carries garbage, splits frames, drops
// the connection or loses the whole service. Types are given by name ("SmartRequest") or number.
class FaultPlan
{
public:
    struct Failure {
        quint32 type = 0;
        int occurrence = 0; // 1 for the first request of the type; 0 for every one
        int code = 0;
    };
    // A drive that leaves the machine when the Nth request of a type arrives.
    struct Unplug {
        quint32 driveId = 0;
        quint32 type = 0;
        int occurrence = 1;
    };

    // Each returns false and sets `error` for a text it cannot read.
    bool addDelay(const QString& text, QString* error);   // "TYPE=MS"
    bool addSilence(const QString& text, QString* error); // "TYPE"
    bool addFailure(const QString& text, QString* error); // "TYPE=CODE" or "TYPE#N=CODE"
    bool addUnplug(const QString& text, QString* error);  // "DRIVE@TYPE" or "DRIVE@TYPE#N"
    bool setSplit(const QString& text, QString* error);   // a piece size in bytes, or "random"
    bool setVersion(const QString& text, QString* error); // "MAJOR.MINOR.PATCH"
    bool addFromJson(const QJsonObject& faults, QString* error);

    int delayFor(quint32 type) const { return m_delays.value(type, 0); }
    bool isSilenced(quint32 type) const { return m_silenced.contains(type); }
    std::optional<int> failureFor(quint32 type, int occurrence) const;
    std::optional<quint32> unplugFor(quint32 type, int occurrence) const;

    int garbageBytes = 0;       // bytes of garbage written before every frame
    int splitPieceSize = 0;     // frames leave in pieces of this size; 0 keeps them whole
    bool splitRandomly = false; // pieces of random size between 1 and a frame's length
    int dropAfterFrames = 0;    // a connection is closed after this many frames sent; 0 never
    int exitAfterRequests = 0;  // the process ends on this request, unanswered; 0 never
    QList<int> version;         // overrides the version answered, when set
    quint32 seed = 1;           // of the garbage bytes and random piece sizes

    static bool parseType(const QString& text, quint32* type);

private:
    QHash<quint32, int> m_delays;
    QSet<quint32> m_silenced;
    QList<Failure> m_failures;
    QList<Unplug> m_unplugs;
};

} // namespace Velmora::ServiceSim
