#pragma once

#include <QFont>
#include <QHash>
#include <QSize>
#include <QStaticText>
#include <QStringList>

class QFontMetricsF;
class QPainter;
class QRect;

namespace Velmora::System {

// The text of one box of a drive bar, made to fit the box: each line shows the fullest of its
// forms that is not wider than the box, and a line none of whose forms fits is left out, so that
// no word is ever cut by the frame. A replanning repaints every box of the bar, so the fitting
// and the shaping are redone only when the text, the room or the font has changed, and a box too
// narrow for any form shapes nothing at all.
class BoxCaption
{
public:
    // The forms of one line, the whole line first and the shortest last.
    using Line = QStringList;

    BoxCaption();

    // The forms of a line made of phrases (words that must not be split): the whole line, then
    // ever fewer phrases followed by an ellipsis. With `headStandsAlone` the last form is the
    // first phrase bare, as a drive letter says enough by itself.
    static Line elisions(const QStringList& phrases, bool headStandsAlone);

    void setLines(const QList<Line>& lines);
    // Draws what fits into `area` with the painter's font and pen, clipped to the area.
    void draw(QPainter& painter, const QRect& area, Qt::Alignment alignment);

    // Every line in its whole form, one under the other.
    QString fullText() const;
    // What the last drawing showed; empty when nothing fitted.
    QString shownText() const;
    bool isElided() const { return shownText() != fullText(); }

private:
    void fit(const QFontMetricsF& metrics, const QSize& room);
    qreal advance(const QFontMetricsF& metrics, const QString& text);

    QList<Line> m_lines;
    QStaticText m_shown;
    bool m_fitted = false;
    QSize m_room;
    QFont m_font;
    // Widths of forms measured before; the short forms of a box stay the same from one replanning
    // to the next, and looking them up is what spares a narrow box the shaping.
    QHash<QString, qreal> m_advances;
};

} // namespace Velmora::System
