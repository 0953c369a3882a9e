#include "common/views/playlist/cuesheet.h"

#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/session/settings/timeutils.h"
#include "util/clocktime.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFont>
#include <QLocale>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPixmap>

#include <array>
#include <cmath>

namespace vantrel {

using Column = PlaylistModel::Column;

namespace {

// In points, 72 an inch: the painter is scaled so that one unit is one.
constexpr qreal rowHeight = 30; // a picture of 16 by 9 in it
constexpr qreal headHeight = 48;
constexpr qreal gap = 6;
constexpr std::array shares{0.08, 0.11, 0.11, 0.32, 0.13, 0.15, 0.10}; // of the width

QString translated(const char* text)
{
    return QCoreApplication::translate("CueSheet", text);
}

QString timeText(double seconds)
{
    return std::isfinite(seconds) ? TimeUtils::formatClockTimeShort(clocktime::fromSeconds(seconds))
                                  : translated("open");
}

} // namespace

struct CueSheet::Page
{
    QPainter* painter;
    QSizeF size; // points

    QRectF cell(int column, qreal y) const
    {
        qreal left = 0;
        for (int i = 0; i < column; ++i)
            left += shares[size_t(i)] * size.width();
        return {left, y, shares[size_t(column)] * size.width() - gap, rowHeight};
    }
    void write(int column, qreal y, const QString& text, bool bold = false) const
    {
        QFont font = painter->font();
        font.setBold(bold);
        painter->setFont(font);
        const QRectF room = cell(column, y);
        painter->drawText(
            room, Qt::AlignVCenter | Qt::TextSingleLine,
            QFontMetricsF(font, painter->device()).elidedText(text, Qt::ElideRight, room.width()));
    }
};

CueSheet::CueSheet(const PlaylistModel* model, const QString& title)
    : m_model(model)
    , m_title(title)
{
}

bool CueSheet::savePdf(const QString& fileName) const
{
    QPdfWriter writer(fileName);
    writer.setTitle(m_title);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
    writer.setResolution(72); // text and lines have none, and pictures keep their own
    return print(&writer);
}

bool CueSheet::print(QPagedPaintDevice* device) const
{
    QPainter painter;
    if (!painter.begin(device))
        return false;
    const Page page{&painter, device->pageLayout().paintRectPoints().size()};
    painter.scale(device->width() / page.size.width(), device->height() / page.size.height());
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(10);
    painter.setFont(font);
    const int onPage = std::max(1, int((page.size.height() - headHeight) / rowHeight));
    for (int row = 0; row == 0 || row < m_model->rowCount(); ++row) {
        if (row % onPage == 0) {
            if (row > 0 && !device->newPage())
                return false;
            printHead(page, row / onPage + 1);
        }
        if (row < m_model->rowCount())
            printRow(page, row, headHeight + (row % onPage) * rowHeight);
    }
    return painter.end();
}

void CueSheet::printHead(const Page& page, int number) const
{
    QPainter& painter = *page.painter;
    const QFont normal = painter.font();
    QFont title = normal;
    title.setPixelSize(16);
    title.setBold(true);
    painter.setFont(title);
    painter.drawText(QRectF(0, 0, page.size.width() * 0.7, 24), Qt::AlignVCenter | Qt::TextSingleLine,
                     m_title);
    painter.setFont(normal);
    painter.drawText(QRectF(0, 0, page.size.width(), 24), Qt::AlignVCenter | Qt::AlignRight,
                     translated("%1, page %2")
                         .arg(QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat))
                         .arg(number));
    const std::array titles{"#", "Begins", "", "Media", "Duration", "Transition", "At the end"};
    for (int column = 0; column < int(titles.size()); ++column)
        page.write(column, headHeight - rowHeight + 2, translated(titles[size_t(column)]), true);
    painter.drawLine(QPointF(0, headHeight - 1), QPointF(page.size.width(), headHeight - 1));
    painter.setFont(normal);
}

void CueSheet::printRow(const Page& page, int row, qreal y) const
{
    const auto text = [this, row](int column) { return m_model->index(row, column).data().toString(); };
    const auto entry = m_model->getEntry(m_model->index(row, 0));
    if (!entry)
        return;
    page.write(0, y, text(Column::NumberColumn), true);
    page.write(1, y, timeText(entry->runtimeBefore()));
    const auto picture = m_model->index(row, Column::ThumbnailColumn).data().value<QPixmap>();
    if (!picture.isNull()) {
        const QRectF room = page.cell(2, y).adjusted(0, 2, 0, -2);
        QRectF place(QPointF(), QSizeF(picture.size()).scaled(room.size(), Qt::KeepAspectRatio));
        place.moveCenter(room.center());
        page.painter->drawPixmap(place, picture, QRectF(picture.rect()));
    }
    page.write(3, y, text(Column::MediaColumn));
    const double seconds = m_model->shownDuration(*entry);
    page.write(4, y, std::isfinite(seconds) ? timeText(seconds) : translated("Infinite"));
    const QString transition = text(Column::TransitionColumn);
    page.write(5, y,
               entry->transitionType() == TakeTransitionType::DirectCut
                   ? transition
                   : translated("%1, %2 s").arg(transition).arg(entry->transitionDuration(), 0, 'f', 1));
    page.write(6, y, text(Column::EndActionColumn));
    page.painter->setPen(QPen(QColor(0, 0, 0, 40), 0.5));
    page.painter->drawLine(QPointF(0, y + rowHeight), QPointF(page.size.width(), y + rowHeight));
    page.painter->setPen(Qt::black);
}

} // namespace vantrel
