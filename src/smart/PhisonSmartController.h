#pragma once

#include "smart/SmartController.h"

namespace Velmora::Smart {

// The default family, for every drive whose SMART class is not known. Some of its firmwares
// report attributes in a form of their own, which is put right as they arrive.
class PhisonSmartController : public SmartController
{
    Q_OBJECT

public:
    PhisonSmartController(const QString& firmwareVersion, QObject* parent = nullptr);

    void addAttribute(const Velmora::Message::Smart_SmartAttribute& attribute) override;
    double parameterValue(SmartParameter parameter, bool* ok) override;

private:
    QByteArray correctedData(quint32 id, QByteArray data) const;
};

} // namespace Velmora::Smart
