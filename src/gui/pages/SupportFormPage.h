#pragma once

#include "gui/Page.h"
#include "support/SupportManager.h"

#include <QList>
#include <QMetaObject>
#include <QString>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QScrollBar;
class QTimeLine;
class QTimer;

namespace Velmora::Support {
class SupportCaptcha;
}
namespace Velmora::System {
class System;
}

namespace Velmora::Gui {

// "TECHNICAL SUPPORT": the contact form. It checks that every field holds something and hands the
// ticket to the support manager; the manager's verdict and the captcha pictures come back
// asynchronously, so nothing here waits for the network.
class SupportFormPage : public Page
{
    Q_OBJECT

public:
    static constexpr int MaxMessageLength = 5000;
    // The mirrored scroll bar's fixed scale, whatever the length of the text.
    static constexpr int ScrollScale = 1000;
    static constexpr int ScrollGlideMs = 200;
    // How long the form waits for a captcha picture before it says that none came.
    static constexpr int CaptchaWaitMs = 10000;

    SupportFormPage(Velmora::Support::SupportManager* supportManager, Velmora::Support::SupportCaptcha* supportCaptcha,
        Velmora::System::System* system, QWidget* parent = nullptr);

private slots:
    void onFormTextChanged();
    void on_verticalScrollBar_sliderMoved(int position);
    void updateVerticalScrollBar();
    void scrollBarStartTracking();
    void scrollBarStopTracking();
    void onSupportRequest();
    void onSupportRequestStatusUpdate(Velmora::Support::SupportStatus status);
    void onCaptchaAvailable(QString filePath);
    void onDriveAdded(int driveId);
    void onDriveRemoved(int driveId);

private:
    void buildForm();
    void connectScrollSync();
    void rebuildDriveList();
    void showDriveFrame();
    void requestCaptcha();
    void onCaptchaWaitExpired();
    static QString statusText(Velmora::Support::SupportStatus status);

    QTimer* scrollSyncTimer = nullptr;
    QTimeLine* scrollBarTimeLine = nullptr;
    Velmora::Support::SupportManager* supportManager;
    Velmora::Support::SupportCaptcha* supportCaptcha;
    Velmora::System::System* system;
    QTimer* captchaWait = nullptr;
    // The three sources that start a synchronisation; cut while the user drags the handle.
    QList<QMetaObject::Connection> scrollSyncSources;

    QLabel* titleLabel = nullptr;
    QPlainTextEdit* supportFormMessage = nullptr;
    QScrollBar* verticalScrollBar = nullptr;
    QLabel* statusLabel = nullptr;
    QLabel* yourSSDLabel = nullptr;
    QLabel* yourEmailLabel = nullptr;
    QComboBox* comboBox_driveSelect = nullptr;
    QLineEdit* lineEdit_email = nullptr;
    QLabel* label = nullptr;
    QLabel* label_captcha = nullptr;
    QLineEdit* lineEdit_captcha = nullptr;
    QPushButton* pushButton_generateCaptcha = nullptr;
    QLabel* regulatoryLabel = nullptr;
    QPushButton* pushButton_contactSupport = nullptr;
};

} // namespace Velmora::Gui
