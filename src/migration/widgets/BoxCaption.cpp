#include "migration/widgets/BoxCaption.h"

#include <QFontMetricsF>
#include <QPainter>

namespace Velmora::System {

namespace {

const QChar Ellipsis(0x2026);
// A box remembers the widths of its short forms and of a few whole ones; more would only hold
// the texts of replannings long gone.
constexpr int RememberedWidths = 32;

// A static text breaks lines only at the Unicode separator.
QString shownForm(const QStringList& lines)
{
    return lines.join(QChar::LineSeparator);
}

int linesThatFit(const QFontMetricsF& metrics, int height)
{
    return metrics.height() > 0 ? int(height / metrics.height()) : 0;
}

} // namespace

BoxCaption::BoxCaption()
{
    m_shown.setTextFormat(Qt::PlainText);
    m_shown.setPerformanceHint(QStaticText::AggressiveCaching);
}

BoxCaption::Line BoxCaption::elisions(const QStringList& phrases, bool headStandsAlone)
{
    Line forms;
    if (phrases.isEmpty())
        return forms;
    forms.append(phrases.join(QLatin1Char(' ')));
    for (int kept = phrases.size() - 1; kept >= 1; --kept)
        forms.append(phrases.mid(0, kept).join(QLatin1Char(' ')) + Ellipsis);
    if (headStandsAlone && phrases.size() > 1)
        forms.last() = phrases.first();
    return forms;
}

void BoxCaption::setLines(const QList<Line>& lines)
{
    if (lines == m_lines)
        return;
    m_lines = lines;
    m_fitted = false;
}

void BoxCaption::draw(QPainter& painter, const QRect& area, Qt::Alignment alignment)
{
    if (painter.font() != m_font) {
        m_font = painter.font();
        m_advances.clear();
        m_fitted = false;
    }
    if (!m_fitted || area.size() != m_room)
        fit(QFontMetricsF(m_font, painter.device()), area.size());
    if (m_shown.text().isEmpty())
        return;

    const QSizeF size = m_shown.size();
    double left = area.left();
    if (alignment & Qt::AlignHCenter)
        left += (area.width() - size.width()) / 2;
    const double top = area.top() + (area.height() - size.height()) / 2;
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.drawStaticText(QPointF(left, top), m_shown);
    painter.restore();
}

QString BoxCaption::fullText() const
{
    QStringList whole;
    for (const Line& line : m_lines) {
        if (!line.isEmpty())
            whole.append(line.first());
    }
    return whole.join(QLatin1Char('\n'));
}

QString BoxCaption::shownText() const
{
    QString text = m_shown.text();
    return text.replace(QChar::LineSeparator, QLatin1Char('\n'));
}

void BoxCaption::fit(const QFontMetricsF& metrics, const QSize& room)
{
    m_fitted = true;
    m_room = room;
    // A line whose shortest form is too wide is out; for a narrow box that is every line, told by
    // widths already known.
    QList<const Line*> fitting;
    for (const Line& line : qAsConst(m_lines)) {
        if (!line.isEmpty() && advance(metrics, line.last()) <= room.width())
            fitting.append(&line);
    }
    fitting = fitting.mid(0, linesThatFit(metrics, room.height()));

    QStringList shown;
    if (fitting.size() == m_lines.size()) {
        // The whole text is measured as the static text that will draw it: a wide box, the usual
        // case, is shaped once.
        for (const Line* line : qAsConst(fitting))
            shown.append(line->first());
        if (shownForm(shown) != m_shown.text())
            m_shown.setText(shownForm(shown));
        if (m_shown.size().width() <= room.width())
            return;
        shown.clear();
    }
    for (const Line* line : qAsConst(fitting)) {
        for (const QString& form : *line) {
            if (advance(metrics, form) <= room.width()) {
                shown.append(form);
                break;
            }
        }
    }
    if (shownForm(shown) != m_shown.text())
        m_shown.setText(shownForm(shown));
}

qreal BoxCaption::advance(const QFontMetricsF& metrics, const QString& text)
{
    const auto known = m_advances.constFind(text);
    if (known != m_advances.cend())
        return *known;
    if (m_advances.size() >= RememberedWidths)
        m_advances.clear();
    return *m_advances.insert(text, metrics.horizontalAdvance(text));
}

} // namespace Velmora::System
