#include "common/views/playlist/cuesheet.h"

#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/session/settings/timeutils.h"
#include "util/clocktime.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDateTime>
#include <QFont>
#include <QHash>
#include <QLocale>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPixmap>
#include <QSaveFile>

#include <array>
#include <cmath>

namespace vantrel {

using media::MediaUtils;

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

CueSheet::CueSheet(const PlaylistModel& model, const QString& title)
    : m_title(shownText(title))
{
    QHash<QString, qsizetype> known;

    for (const Entry& entry : model.playlistProvider()->entries(model.playlistNumber())) {
        const auto [at, end] = known.equal_range(entry->slotUrl());
        const qsizetype medium = at != end ? *at : m_media.size();
        if (medium == m_media.size()) {
            m_media.append({entry, model.mediaName(*entry), model.shownDuration(*entry), {}});
            known.insert(entry->slotUrl(), medium);
        }
        m_rows.append({entry, medium});
    }
}

qsizetype CueSheet::takePictures(const PlaylistModel& model, bool ask)
{
    qsizetype missing = 0;
    for (Medium& medium : m_media) {
        if (!medium.picture.isNull())
            continue;
        medium.picture = model.knownThumbnail(*medium.entry).toImage();
        missing += medium.picture.isNull();
        if (ask && medium.picture.isNull())
            model.getThumbnail(*medium.entry);
    }
    return missing;
}

QString CueSheet::savePdf(const QString& fileName, const Progress& progress) const
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    QPdfWriter writer(&pdf);
    writer.setTitle(m_title);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
    writer.setResolution(72); // text and lines have none, and pictures keep their own
    if (!print(&writer, progress))
        return translated("it was ended");
    file.write(pdf.data());
    return file.commit() ? QString() : file.errorString();
}

bool CueSheet::print(QPagedPaintDevice* device, const Progress& progress) const
{
    QPainter painter;
    if (!painter.begin(device))
        return false;
    const Page page{&painter, device->pageLayout().paintRectPoints().size()};
    painter.scale(device->width() / page.size.width(), device->height() / page.size.height());
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(10);
    painter.setFont(font);
    const qsizetype onPage = std::max(1, int((page.size.height() - headHeight) / rowHeight));
    const int pages = std::max(1, int((m_rows.size() + onPage - 1) / onPage));
    for (int number = 1; number <= pages; ++number) {
        if ((progress && !progress(number, pages)) || (number > 1 && !device->newPage()))
            return false;
        printHead(page, number);
        const qsizetype first = (number - 1) * onPage;
        for (qsizetype row = first; row < std::min(first + onPage, m_rows.size()); ++row)
            printRow(page, m_rows[row], headHeight + qreal(row - first) * rowHeight);
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

void CueSheet::printRow(const Page& page, const Row& row, qreal y) const
{
    const GuiPlaylistEntry& entry = *row.entry;
    const Medium& medium = m_media[row.medium];
    page.write(0, y, QString::fromStdString(entry.address().toString(false)), true);
    page.write(1, y, timeText(entry.runtimeBefore()));
    if (!medium.picture.isNull()) {
        const QRectF room = page.cell(2, y).adjusted(0, 2, 0, -2);
        QRectF place(QPointF(), QSizeF(medium.picture.size()).scaled(room.size(), Qt::KeepAspectRatio));
        place.moveCenter(room.center());
        page.painter->drawImage(place, medium.picture);
    }
    page.write(3, y, medium.name);
    page.write(4, y, std::isfinite(medium.seconds) ? timeText(medium.seconds) : translated("Infinite"));
    const QString transition = MediaUtils::transitionTypeToHumanReadable(entry.transitionType());
    page.write(5, y,
               entry.transitionType() == TakeTransitionType::DirectCut
                   ? transition
                   : translated("%1, %2 s")
                         .arg(transition)
                         .arg(PlaylistModel::secondsText(entry.transitionDuration())));
    page.write(6, y, MediaUtils::endActionToHumanReadable(entry.endAction()));
    page.painter->setPen(QPen(QColor(0, 0, 0, 40), 0.5));
    page.painter->drawLine(QPointF(0, y + rowHeight), QPointF(page.size.width(), y + rowHeight));
    page.painter->setPen(Qt::black);
}

} // namespace vantrel
