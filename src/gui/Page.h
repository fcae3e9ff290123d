#pragma once

#include <QWidget>

namespace Velmora::Gui {

// Base of every page the main window shows in its stack. It adds nothing but a paint that honours
// the stylesheet, and the identifiers of the window's destinations.
class Page : public QWidget
{
    Q_OBJECT

public:
    enum PageId {
        HomeId = 0,
        SsdManagementId = 1,
        SsdStatusId = 2,
        SmartParametersId = 3,
        PerformanceTestId = 4,
        AdditionalFeaturesId = 5,
        FirmwareUpdateId = 6,
        DataMigrationId = 7,
        SettingsId = 8,
        TechnicalSupportId = 9
    };
    Q_ENUM(PageId)

    explicit Page(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Velmora::Gui
