#include "common/views/arrivalstrip.h"

#include "common/ui/style/colors.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

using colors::getColor;

namespace {

constexpr qsizetype mostLines = 4;
constexpr int padding = 4;
constexpr int bar = 2; // pixels, of the progress below a line

} // namespace

ArrivalStrip::ArrivalStrip(const MediaArrivals* arrivals, QWidget* parent)
    : ZTFrame(parent)
    , m_arrivals(arrivals)
{
    setObjectName(QStringLiteral("MediaPanel-arrivals"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setToolTip(tr("Files on their way to the server, which become slots here. The FILES tab stops them"));
    connect(arrivals, &MediaArrivals::changed, this, &ArrivalStrip::refresh);
    refresh();
}

void ArrivalStrip::setCollection(int collection)
{
    m_collection = collection;
    refresh();
}

void ArrivalStrip::refresh()
{
    const qsizetype before = std::min(m_shown.size(), mostLines);
    m_shown.clear();
    for (const MediaArrivals::Arrival& arrival : m_arrivals->arrivals()) {
        if (arrival.collection == m_collection)
            m_shown.append(arrival);
    }
    setVisible(!m_shown.isEmpty());
    setAccessibleName(m_shown.isEmpty() ? QString()
                                        : tr("Arriving: %1 files, %2 first at %3 %")
                                              .arg(m_shown.size())
                                              .arg(m_shown.constFirst().name)
                                              .arg(std::lround(m_shown.constFirst().progress * 100)));
    if (std::min(m_shown.size(), mostLines) != before)
        updateGeometry();
    update();
}

int ArrivalStrip::lineHeight() const
{
    return fontMetrics().height() + padding + bar;
}

QSize ArrivalStrip::sizeHint() const
{
    return {160, static_cast<int>(std::min(m_shown.size(), mostLines)) * lineHeight() + padding};
}

void ArrivalStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QRect line(padding, padding / 2, width() - 2 * padding, lineHeight());
    const bool isTooMany = m_shown.size() > mostLines;
    const qsizetype lines = isTooMany ? mostLines - 1 : m_shown.size();
    for (qsizetype i = 0; i < lines; ++i) {
        paintLine(painter, line, m_shown.at(i));
        line.translate(0, lineHeight());
    }
    if (!isTooMany)
        return;
    painter.setPen(getColor(colors::Zt_white_70));
    painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeft, tr("%1 more").arg(m_shown.size() - lines));
}

void ArrivalStrip::paintLine(QPainter& painter, const QRect& line,
                             const MediaArrivals::Arrival& arrival) const
{
    const QRect text = line.adjusted(0, 0, 0, -bar - 1);
    const QString state = tr("arriving %1 %").arg(std::lround(arrival.progress * 100));
    const int width = fontMetrics().horizontalAdvance(tr("arriving %1 %").arg(100));
    painter.setPen(getColor(colors::Zt_white_70));
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine, state);
    painter.setPen(getColor(colors::Zt_white_80));
    const int room = text.width() - width - 2 * padding;
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     fontMetrics().elidedText(arrival.name, Qt::ElideMiddle, room));
    const QRect track(line.left(), line.bottom() - bar, line.width(), bar);
    painter.fillRect(track, getColor(colors::Zt_white_8));
    painter.fillRect(QRect(track.topLeft(), QSize(qRound(track.width() * arrival.progress), bar)),
                     getColor(colors::Zt_orange));
}

void ArrivalStrip::changeEvent(QEvent* event)
{
    ZTFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
}

} // namespace vantrel
