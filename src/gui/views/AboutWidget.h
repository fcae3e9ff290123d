#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;
class QTextBrowser;

namespace Velmora::Gui {

// The about view: the program's name, version, build date and copyright, and the licence notices
// of the components it ships. The notices travel inside the program and are copied out to a
// folder of the user's, so that the links of the view can open them in the user's own viewer.
class AboutWidget : public QWidget
{
    Q_OBJECT

public:
    explicit AboutWidget(QWidget* parent = nullptr);

    QString licenseDirectory() const { return licenseDir; }

signals:
    void closeRequest();

private slots:
    void onLicenseLinkActivated(const QUrl& link);

private:
    void buildForm();
    void copyLicenses();
    void fillLicenses();

    QString licenseDir;

    QLabel* labelAppIcon = nullptr;
    QLabel* labelAppName = nullptr;
    QLabel* labelBuildDate = nullptr;
    QLabel* labelCopyrights = nullptr;
    QTextBrowser* textBrowserLicenses = nullptr;
    QPushButton* pushButtonClose = nullptr;
};

} // namespace Velmora::Gui
