// The yardstick of the start-up measurement: an empty Qt window of the main window's default size,
// so that the time to the main window can be read against what Qt itself needs to map one.
#include <QApplication>
#include <QWidget>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("BARE WINDOW"));
    window.resize(1280, 1024);
    window.show();
    return QApplication::exec();
}
