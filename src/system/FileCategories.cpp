#include "system/FileCategories.h"

#include "logger/Logger.h"
#include "settings/SettingsManager.h"

#include <QtMath>

namespace Velmora::System {

namespace {

const char* const SettingsGroup = "FileCategories";

const char* const ProgramPaths = "Program Files,Program Files (x86),ProgramData";
const char* const SystemPaths = "Windows,swapfile.sys,pagefile.sys,hiberfil.sys,System Volume Information,Boot,EFI";
const char* const PictureExtensions =
    ".ase,.art,.blp,.bmp,.bti,.cd5,.cit,.cpt,.cr2tings,.csp,.cut,.dds,.dib,.djvu,.ai,.ps,.svg,.exif,.gif,.gpl,.grf,.icns,.ico,.jng,.jfif,.jpg,.jpeg,.jp2,.jps,.lbm,.max,.miff,.msp,.nitf,.3dm,.3ds,.obj,.thm,.eps,.otb,.pbm,.pc1,.pc2,.pc3,.pcf,.pcx,.pdn,.pgm,.pi1,.pi2,.pi3,.pict,.pct,.png,.pnm,.pns,.ppm,.psb,.psd,.pdd,.psp,.pspimage,.px,.pxm,.pxr,.qfx,.raw,.rle,.sct,.sgi,.rgb,.int,.bw,.tga,.targa,.icb,.vda,.vst,.pix,.tif,.tiff,.vtf,.xbm,.xcf,.xpm,.zif";
const char* const SoundExtensions =
    ".8svx,.16svx,.aiff,.aif,.aifc,.au,.bwf,.cdda,.wav,.ra,.flac,.la,.pac,.cda,.mpa,.ogg,.wpl,.ape,.ofr,.ofs,.off,.rka,.shn,.tak,.tta,.wv,.brstm,.dts,.dtshd,.dtsma,.ast,.aw,.psf,.amr,.mp1,.mp2,.mp3,.spx,.gsm,.wma,.aac,.mpc,.vqf,.ots,.swa,.vox,.voc,.dwd,.smp,.mod,.mt2,.s3m,.xm,.it,.nsf,.mid,.midi,.ly,.mus,.musx,.mxl,.mscx,.mscz,.sib,.niff,.ptb,.cust,.gym,.jam,.rmj,.sid,.spc,.m4a,.txm,.vgm,.ym,.aimppl,.asx,.ram,.xpl,.xspf,.zpl,.m3u,.pls,.als,.alc,.aup,.band,.cel,.cpr,.cwp,.drm,.dmkit,.ens,.grir,.logic,.mmr,.mx6hs,.npr,.omf,.omfi,.rin,.ses,.sfl,.sng,.stf,.snd,.syn,.flp,.vcls,.vsq,.vsqx,.dvr-ms,.wtv";
const char* const VideoExtensions =
    ".webm,.mkv,.vob,.ogv,.drc,.gifv,.mng,.avi,.mov,.qt,.wmv,.yuv,.srt,.rm,.rmvb,.amv,.mp4,.m4p,.mpe,.mpv,.mpg,.mpeg,.m2v,.m4v,.svi,.3gp,.3g2,.mxf,.roq,.nsv,.flv,.f4v,.f4p,.f4a,.f4b,.h264,.asf,.swf";
const char* const DocumentExtensions =
    ".0,.1st,.600,.602,.abw,.acl,.afp,.ami,.amigaguide,.ans,.asc,.aww,.ccf,.csv,.key,.odp,.pps,.ppt,.cwk,.dbk,.dita,.doc,.docm,.docx,.dot,.dotx,.egt,.epub,.ezw,.fdx,.ftm,.ftx,.gdoc,.html,.hwp,.hwpml,.log,.pptx,.ged,.keychain,.lwp,.mbp,.md,.me,.mcw,.mobi,.nb,.nbp,.neis,.odm,.odoc,.odt,.osheet,.ott,.omm,.pages,.pap,.pdax,.pdf,.quox,.wks,.msg,.indd,.radix,.rtf,.rpt,.sdw,.se,.stw,.sxw,.tex,.info,.troff,.txt,.uof,.uoml,.via,.wpd,.wps,.wpt,.wrd,.wrf,.wri,.xhtml,.xml,.xps,.dtd,.fla,.lua,.m,.sln,.vcxproj,.xcodeproj,.c,.class,.cpp,.cs,.h,.java,.sh,.swift,.vb,.asp,.aspx,.cer,.cfm,.pl,.css,.htm,.js,.jsp,.php,.py,.rss,.ods,.xlr,.xls,.xlsx";

// Equal within relative 1e-12, as far as progress reports go.
bool sameProgress(double a, double b)
{
    return qAbs(a - b) * 1000000000000.0 <= qMin(qAbs(a), qAbs(b));
}

void registerType()
{
    static const bool registered = [] {
        qRegisterMetaType<FileCategoriesData>("FileCategoriesData");
        qRegisterMetaType<FileCategoriesData>("Velmora::System::FileCategoriesData");
        qRegisterMetaTypeStreamOperators<FileCategoriesData>("FileCategoriesData");
        qRegisterMetaTypeStreamOperators<FileCategoriesData>("Velmora::System::FileCategoriesData");
        return true;
    }();
    Q_UNUSED(registered)
}

} // namespace

FileCategoriesData::FileCategoriesData()
{
    for (int category : categories())
        sizes.insert(category, 0);
}

QDataStream& operator<<(QDataStream& stream, const FileCategoriesData& data)
{
    stream << data.valid << data.takenAt;
    for (int category : categories())
        stream << static_cast<qint64>(data.sizes.value(category, 0));
    return stream;
}

QDataStream& operator>>(QDataStream& stream, FileCategoriesData& data)
{
    FileCategoriesData read;
    stream >> read.valid >> read.takenAt;
    for (int category : categories()) {
        qint64 size = 0;
        stream >> size;
        read.sizes[category] = size;
    }
    // A value of another shape leaves what was there.
    if (stream.status() == QDataStream::Ok)
        data = read;
    return stream;
}

QList<int> categories()
{
    using namespace FileCategory;
    return {Documents, Other, Pictures, Programs, Sound, System, Video};
}

QString categoryExtensions(int category)
{
    switch (category) {
    case FileCategory::Documents: return QLatin1String(DocumentExtensions);
    case FileCategory::Video: return QLatin1String(VideoExtensions);
    case FileCategory::Sound: return QLatin1String(SoundExtensions);
    case FileCategory::Pictures: return QLatin1String(PictureExtensions);
    default: return QString();
    }
}

QString categoryPaths(int category)
{
    switch (category) {
    case FileCategory::System: return QLatin1String(SystemPaths);
    case FileCategory::Programs: return QLatin1String(ProgramPaths);
    default: return QString();
    }
}

FileCategories::FileCategories(const QString& key, QObject* parent)
    : QObject(parent)
    , m_key(key)
{
    registerType();
    if (!m_key.isEmpty())
        restore();
}

void FileCategories::restore()
{
    const QVariant stored = Settings::SettingsManager::value(
        QLatin1String(SettingsGroup), m_key, QVariant::fromValue(FileCategoriesData()));
    if (stored.canConvert<FileCategoriesData>())
        m_data = stored.value<FileCategoriesData>();
    if (!m_data.valid)
        return;
    m_status = FileCategoryStatus::Complete;
    m_progress = 1.0;
    Logger::info(QString(), QStringLiteral("Restored valid file categories data for [%1] taken at [%2]")
                                .arg(m_key, m_data.takenAt.toString()));
}

QString FileCategories::categoryName(int category)
{
    switch (category) {
    case FileCategory::System: return tr("SYSTEM");
    case FileCategory::Programs: return tr("PROGRAMS");
    case FileCategory::Documents: return tr("DOCUMENTS");
    case FileCategory::Video: return tr("VIDEO");
    case FileCategory::Sound: return tr("SOUND");
    case FileCategory::Pictures: return tr("PICTURES");
    default: return tr("OTHER");
    }
}

QColor FileCategories::categoryColor(int category)
{
    const QColor start(0, 225, 255);
    const QColor end(160, 3, 218);
    const double t = qBound(0.0, category / 6.0, 1.0);
    const auto mix = [t](int from, int to) { return static_cast<int>(from * (1.0 - t) + to * t); };
    return QColor(mix(start.red(), end.red()), mix(start.green(), end.green()), mix(start.blue(), end.blue()), 255);
}

void FileCategories::setSize(int category, qint64 size)
{
    if (FileCategories::size(category) == size)
        return;
    m_data.sizes[category] = size;
    emit categoryDataChanged();
}

void FileCategories::setSizes(const QMap<int, qint64>& sizes)
{
    for (auto it = sizes.cbegin(); it != sizes.cend(); ++it)
        m_data.sizes[it.key()] = it.value();
    emit categoryDataChanged();
}

void FileCategories::clearSizes()
{
    for (int category : categories())
        m_data.sizes[category] = 0;
}

qint64 FileCategories::totalSize() const
{
    qint64 total = 0;
    for (int category : categories())
        total += size(category);
    return total;
}

void FileCategories::setStatus(int status, double progress)
{
    if (status == m_status && sameProgress(progress, m_progress))
        return;
    m_status = status;
    m_progress = qBound(0.0, progress, 1.0);

    if (status != FileCategoryStatus::Complete) {
        m_data.valid = false;
        emit categoryDataChanged();
        return;
    }
    m_data.valid = true;
    m_data.takenAt = QDateTime::currentDateTime();
    if (!m_key.isEmpty()) {
        Settings::SettingsManager::setValue(QLatin1String(SettingsGroup), m_key, QVariant::fromValue(m_data));
        Logger::info(QString(), QStringLiteral("Saved valid file categories data for %1").arg(m_key));
    }
    emit categoryDataChanged();
}

QVariant FileCategories::data(int category, int role) const
{
    if (role == 0)
        return categoryName(category);
    if (role == ColorRole)
        return categoryColor(category);
    return QVariant();
}

} // namespace Velmora::System
