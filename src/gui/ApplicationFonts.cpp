#include "gui/ApplicationFonts.h"

#include <QDir>
#include <QFontDatabase>
#include <QSet>
#include <qpa/qplatformfontdatabase.h>

#include <fontconfig/fontconfig.h>

#include <system_error>
#include <future>

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
    //
    // The old name is an alias of that family, not a substitution, so that a lookup finds the family
    // at once. A substituted name is tried only after the old one has failed, and the failure has
    // fontconfig sort every font of the system as fallbacks, for every size and weight the first
    // window shows. (The database forgets aliases when it is rebuilt, which only removing an
    // application font does.)
    const QString family = QStringLiteral("Inter");
    const QStringList known = QFontDatabase().families();
    const QPair<QString, QString> names[] = {
        {QStringLiteral("Inter UI"), family},
        {QStringLiteral("Inter UI Black"), QStringLiteral("Inter Black")},
        {QStringLiteral("Inter UI Semi Bold"), QStringLiteral("Inter Semi Bold")},
        {QStringLiteral("Inter UI Medium"), QStringLiteral("Inter Medium")},
    };
    for (const auto& [oldName, newName] : names)
        QPlatformFontDatabase::registerAliasToFontFamily(known.contains(newName) ? newName : family, oldName);
}

namespace {
// A future, not a thread: one nobody waited for (a start that ends early) is waited for at exit
// instead of ending the process.
std::future<void>& fontConfigurationReader()
{
    static std::future<void> reader;
    return reader;
}
} // namespace

void startReadingFontConfiguration()
{
    std::future<void>& reader = fontConfigurationReader();
    if (reader.valid())
        return;
    try {
        // The font database's own call then finds the configuration loaded.
        reader = std::async(std::launch::async, [] { FcInit(); });
    } catch (const std::system_error&) {
        // Without a thread the font database reads it itself, as it would anyway.
    }
}

void waitForFontConfiguration()
{
    std::future<void>& reader = fontConfigurationReader();
    if (reader.valid())
        reader.get();
}

bool isFirstWindowFace(const QString& fileName)
{
    static const QStringList faces = {
        QStringLiteral("Inter-Regular.otf"), QStringLiteral("Inter-SemiBold.otf"), QStringLiteral("Inter-Black.otf")};
    return faces.contains(fileName);
}

} // namespace Velmora::Gui
