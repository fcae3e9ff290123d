#include "PictureMaker.h"

#include <QBuffer>
#include <QColor>
#include <QHash>
#include <QImage>
#include <QRandomGenerator>

namespace Velmora::BackendSim::PictureMaker {

namespace {

constexpr int GlyphWidth = 5;
constexpr int GlyphHeight = 7;

// Seven rows of five pixels a character.
const QHash<QChar, const char*>& glyphs()
{
    static const QHash<QChar, const char*> table{
        {QLatin1Char('A'), ".###.#...##...#######...##...##...#"},
        {QLatin1Char('B'), "####.#...##...#####.#...##...#####."},
        {QLatin1Char('C'), ".###.#...##....#....#....#...#.###."},
        {QLatin1Char('D'), "####.#...##...##...##...##...#####."},
        {QLatin1Char('E'), "######....#....####.#....#....#####"},
        {QLatin1Char('F'), "######....#....####.#....#....#...."},
        {QLatin1Char('G'), ".###.#...##....#.####...##...#.####"},
        {QLatin1Char('H'), "#...##...##...#######...##...##...#"},
        {QLatin1Char('I'), ".###...#....#....#....#....#...###."},
        {QLatin1Char('J'), "..###...#....#....#....#.#..#..##.."},
        {QLatin1Char('K'), "#...##..#.#.#..##...#.#..#..#.#...#"},
        {QLatin1Char('L'), "#....#....#....#....#....#....#####"},
        {QLatin1Char('M'), "#...###.###.#.##...##...##...##...#"},
        {QLatin1Char('N'), "#...###..##.#.##..###...##...##...#"},
        {QLatin1Char('O'), ".###.#...##...##...##...##...#.###."},
        {QLatin1Char('P'), "####.#...##...#####.#....#....#...."},
        {QLatin1Char('Q'), ".###.#...##...##...##.#.##..#..##.#"},
        {QLatin1Char('R'), "####.#...##...#####.#.#..#..#.#...#"},
        {QLatin1Char('S'), ".#####....#.....###.....#....#####."},
        {QLatin1Char('T'), "#####..#....#....#....#....#....#.."},
        {QLatin1Char('U'), "#...##...##...##...##...##...#.###."},
        {QLatin1Char('V'), "#...##...##...##...##...#.#.#...#.."},
        {QLatin1Char('W'), "#...##...##...##.#.##.#.###.###...#"},
        {QLatin1Char('X'), "#...##...#.#.#...#...#.#.#...##...#"},
        {QLatin1Char('Y'), "#...##...#.#.#...#....#....#....#.."},
        {QLatin1Char('Z'), "#####....#...#...#...#...#....#####"},
        {QLatin1Char('0'), ".###.#...##..###.#.###..##...#.###."},
        {QLatin1Char('1'), "..#...##....#....#....#....#...###."},
        {QLatin1Char('2'), ".###.#...#....#...#...#...#...#####"},
        {QLatin1Char('3'), "#####...#...#.....#.....##...#.###."},
        {QLatin1Char('4'), "...#...##..#.#.#..#.#####...#....#."},
        {QLatin1Char('5'), "######....####.....#....##...#.###."},
        {QLatin1Char('6'), "..##..#...#....####.#...##...#.###."},
        {QLatin1Char('7'), "#####....#...#...#...#....#....#..."},
        {QLatin1Char('8'), ".###.#...##...#.###.#...##...#.###."},
        {QLatin1Char('9'), ".###.#...##...#.####....#...#..##.."},
        {QLatin1Char(' '), "..................................."},
    };
    return table;
}

// Draws one character with its top-left corner at (x, y), each font pixel a square of `scale`.
void drawGlyph(QImage& image, QChar character, int x, int y, int scale, const QColor& color)
{
    const char* rows = glyphs().value(character.toUpper(), glyphs().value(QLatin1Char(' ')));
    for (int row = 0; row < GlyphHeight; ++row) {
        for (int column = 0; column < GlyphWidth; ++column) {
            if (rows[row * GlyphWidth + column] != '#')
                continue;
            for (int dy = 0; dy < scale; ++dy) {
                for (int dx = 0; dx < scale; ++dx) {
                    const int px = x + column * scale + dx;
                    const int py = y + row * scale + dy;
                    if (image.valid(px, py))
                        image.setPixelColor(px, py, color);
                }
            }
        }
    }
}

QByteArray encodePng(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

QString captchaAlphabet()
{
    return QStringLiteral("ABCDEFGHJKLMNPRSTUVWXYZ23456789");
}

QString randomCaptchaText(int length)
{
    const QString alphabet = captchaAlphabet();
    QString text;
    for (int i = 0; i < length; ++i)
        text.append(alphabet.at(QRandomGenerator::global()->bounded(alphabet.size())));
    return text;
}

QByteArray captchaPng(const QString& text)
{
    constexpr int scale = 4;
    constexpr int advance = (GlyphWidth + 2) * scale;
    QImage image(advance * text.size() + 2 * scale * 3, GlyphHeight * scale + 24, QImage::Format_RGB32);
    image.fill(QColor(236, 240, 244));
    auto* random = QRandomGenerator::global();

    // Speckles behind the letters; the letters themselves stay solid so that a person reads them.
    for (int i = 0; i < image.width() * image.height() / 12; ++i) {
        image.setPixelColor(random->bounded(image.width()), random->bounded(image.height()),
                            QColor(150 + random->bounded(80), 150 + random->bounded(80), 150 + random->bounded(80)));
    }
    for (int i = 0; i < text.size(); ++i) {
        const QColor ink(random->bounded(90), random->bounded(60), 60 + random->bounded(100));
        drawGlyph(image, text.at(i), scale * 3 + i * advance + random->bounded(-2, 3), 12 + random->bounded(-6, 7),
                  scale, ink);
    }
    return encodePng(image);
}

QByteArray advertisementPng(int variant)
{
    constexpr int width = 640;
    constexpr int height = 200;
    QImage image(width, height, QImage::Format_RGB32);
    // The program's own gradient, from cyan to violet, so the picture looks at home in it.
    const QColor from(0, 225, 255);
    const QColor to(160, 3, 218);
    for (int x = 0; x < width; ++x) {
        const double t = double(x) / (width - 1);
        const QColor color(int(from.red() + (to.red() - from.red()) * t),
                           int(from.green() + (to.green() - from.green()) * t),
                           int(from.blue() + (to.blue() - from.blue()) * t));
        for (int y = 0; y < height; ++y)
            image.setPixelColor(x, y, color);
    }
    const QString title = QStringLiteral("KESTRAVIN");
    const int scale = 8;
    const int titleWidth = title.size() * (GlyphWidth + 1) * scale;
    for (int i = 0; i < title.size(); ++i)
        drawGlyph(image, title.at(i), (width - titleWidth) / 2 + i * (GlyphWidth + 1) * scale, 40, scale, Qt::white);
    const QString number = QString::number(variant);
    for (int i = 0; i < number.size(); ++i)
        drawGlyph(image, number.at(i), width - 20 - (number.size() - i) * (GlyphWidth + 1) * 4, height - 40, 4, Qt::white);
    return encodePng(image);
}

} // namespace Velmora::BackendSim::PictureMaker
