#include "gui/ApplicationFonts.h"

#include <QDir>
#include <QFont>
#include <QFontDatabase>
#include <QSet>

// The resource file is compiled into a static library; nothing would pull it into the program
// unless it is named once. Q_INIT_RESOURCE may not stand inside a namespace.
static void initFontResourcesOnce()
{
    Q_INIT_RESOURCE(fonts);
}

namespace Velmora::Gui {

void initFontResources()
{
    initFontResourcesOnce();
}

QStringList registerApplicationFonts()
{
    initFontResources();

    static QStringList loaded;
    if (!loaded.isEmpty())
        return loaded;

    const QDir dir(QStringLiteral(":/fonts/"));
    const QStringList files =
        dir.entryList({QStringLiteral("*.otf"), QStringLiteral("*.ttf")}, QDir::Files, QDir::Name);
    QSet<QString> families;
    for (const QString& file : files) {
        const int id = QFontDatabase::addApplicationFont(dir.filePath(file));
        if (id < 0)
            continue;
        for (const QString& family : QFontDatabase::applicationFontFamilies(id)) {
            if (!families.contains(family)) {
                families.insert(family);
                loaded.append(family);
            }
        }
    }
    if (!loaded.isEmpty())
        mapLegacyFontNames();
    return loaded;
}

void mapLegacyFontNames()
{
    // The faces were once published as "Inter UI"; the weights had families of their own. Each
    // old name goes to the weight's own family where the font database offers one, else to the
    // family as a whole.
    const QString family = QStringLiteral("Inter");
    const QStringList known = QFontDatabase().families();
    const QPair<QString, QString> names[] = {
        {QStringLiteral("Inter UI"), family},
        {QStringLiteral("Inter UI Black"), QStringLiteral("Inter Black")},
        {QStringLiteral("Inter UI Semi Bold"), QStringLiteral("Inter Semi Bold")},
        {QStringLiteral("Inter UI Medium"), QStringLiteral("Inter Medium")},
    };
    for (const auto& [oldName, newName] : names)
        QFont::insertSubstitution(oldName, known.contains(newName) ? newName : family);
}

bool isFirstWindowFace(const QString& fileName)
{
    static const QStringList faces = {
        QStringLiteral("Inter-Regular.otf"), QStringLiteral("Inter-SemiBold.otf"), QStringLiteral("Inter-Black.otf")};
    return faces.contains(fileName);
}

} // namespace Velmora::Gui
