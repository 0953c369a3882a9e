#include "common/ui/toolkit/dropnotice.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/spacing.h"

#include <QFont>
#include <QPainter>

namespace vantrel {

using colors::getColor;

void paintDropNotice(QPainter& painter, const QRect& part, DropNotice notice, const QFont& font,
                     const QString& words)
{
    const bool isOnAir = notice == DropNotice::OnAir;
    const QColor colour = getColor(isOnAir ? colors::Zt_red : colors::Green_green);
    painter.fillRect(part, getColor(colors::Zt_black_50));
    painter.setPen(QPen(colour, 4));
    painter.drawRect(part.adjusted(2, 2, -2, -2));
    QFont bold = font;
    bold.setWeight(QFont::Bold);
    painter.setFont(bold);
    const QMargins padding(spacing::loose, spacing::normal, spacing::loose, spacing::normal);
    constexpr int where = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    const QRect room = part.marginsRemoved(padding);
    const int below = painter.boundingRect(room, where, words).bottom() + padding.bottom();
    painter.fillRect(QRect(part.left(), part.top(), part.width(), below - part.top()), colour);
    painter.setPen(getColor(isOnAir ? colors::White : colors::Slate_grey_900));
    painter.drawText(room, where, words);
}

} // namespace vantrel
