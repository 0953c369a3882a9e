#include "common/views/slotdelegate.h"

#include "common/import/mediaarrivals.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/net/mediastateprovider.h"
#include "common/session/settings/timeutils.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/mediaicon.h"
#include "common/ui/style/smoothpicture.h"
#include "common/views/mediapanelmodel.h"
#include "tarn/media/mediaenums.h"
#include "util/clocktime.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>

#include <algorithm>
#include <cmath>

namespace vantrel {

using colors::getColor;

namespace {

constexpr int margin = 8;  // between the parts of a row
constexpr int padding = 6; // above and below them
constexpr int lineGap = 2;
constexpr int leastPicture = 28; // wide: less is a speck
constexpr qreal radius = 4;

QFont captionFont(const QFont& font)
{
    QFont caption = font;
    if (font.pixelSize() > 0)
        caption.setPixelSize(std::max(9, qRound(font.pixelSize() * 0.86)));
    else
        caption.setPointSizeF(font.pointSizeF() * 0.86);
    return caption;
}

QFont nameFont(const QFont& font)
{
    QFont name = font;
    name.setWeight(QFont::Medium);
    return name;
}

int textHeight(const QFont& font)
{
    return QFontMetrics(nameFont(font)).height() + lineGap + QFontMetrics(captionFont(font)).height();
}

/// A channel's mark on a slot: its name, its colours and what it does.
struct Mark
{
    QString text;
    colors::ColorCode colour = colors::Transparent;
    colors::ColorCode background = colors::Transparent;
    colors::ColorCode ink = colors::White; // of what stands on the colour
    QString icon;
};

std::optional<Mark> markOf(MediaState state)
{
    const auto program = [](const char* icon) {
        return Mark{QStringLiteral("PGM"), colors::Red_red, colors::Zt_red_10, colors::White,
                    QString::fromLatin1(icon)};
    };
    const auto preview = [](const char* icon) {
        return Mark{QStringLiteral("PRW"), colors::Green_green, colors::Zt_green_10, colors::Slate_grey_900,
                    QString::fromLatin1(icon)};
    };
    switch (state) {
    case MediaState::ProgramPlay:
        return program("mc_play");
    case MediaState::ProgramPause:
        return program("mc_pause");
    case MediaState::ProgramStop:
        return program("mc_stop");
    case MediaState::PreviewPlay:
        return preview("mc_play");
    case MediaState::PreviewPause:
        return preview("mc_pause");
    case MediaState::PreviewStop:
        return preview("mc_stop");
    default:
        return std::nullopt;
    }
}

/// The picture cut to a rounded box, rendered once for each size.
QPixmap boxed(const QPixmap& picture, const QSize& size, qreal ratio)
{
    const QString key = QStringLiteral("slot-%1-%2x%3-%4")
                            .arg(picture.cacheKey())
                            .arg(size.width())
                            .arg(size.height())
                            .arg(ratio);
    QPixmap box;
    if (QPixmapCache::find(key, &box))
        return box;
    const QSize pixels = size * ratio;
    const QPixmap scaled = picture.scaled(pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    box = QPixmap(pixels);
    box.fill(Qt::transparent);
    QPainter painter(&box);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(box.rect(), 3 * ratio, 3 * ratio);
    painter.fillPath(path, Qt::black);
    painter.setClipPath(path);
    painter.drawPixmap((pixels.width() - scaled.width()) / 2, (pixels.height() - scaled.height()) / 2,
                       scaled);
    painter.end();
    box.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, box);
    return box;
}

QString lengthText(const QModelIndex& index)
{
    if (index.data(MediaLibraryModel::HasInfiniteDurationRole).toBool())
        return index.data(MediaLibraryModel::DurationRole).toString();
    const double length = index.data(MediaLibraryModel::OutpointRole).toDouble() -
                          index.data(MediaLibraryModel::InpointRole).toDouble();
    const auto type = static_cast<MediaType>(index.data(MediaLibraryModel::KnownTypeRole).toInt());
    if (length <= 0 && type == MediaType::ImageFile)
        return SlotDelegate::tr("Image");
    return TimeUtils::formatClockTimeShort(clocktime::fromSeconds(std::max(0.0, length)));
}

void paintBackground(QPainter* painter, const QStyleOptionViewItem& option, const std::optional<Mark>& mark)
{
    const QRectF row = QRectF(option.rect).adjusted(2.5, 1.5, -2.5, -1.5);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    if (mark) {
        painter->setBrush(getColor(mark->background));
        drawRounded(*painter, row, radius);
        painter->setBrush(getColor(mark->colour));
        drawRounded(*painter, QRectF(row.left(), row.top(), 3, row.height()), 1.5);
    }
    if (selected || option.state.testFlag(QStyle::State_MouseOver)) {
        // A channel's colour stays what it is: selected, its row gets the accent as a frame.
        painter->setBrush(getColor(selected && !mark ? colors::Zt_orange_20 : colors::Zt_white_4));
        if (selected && mark)
            painter->setPen(QPen(getColor(colors::Zt_orange), 1));
        drawRounded(*painter, row, radius);
        painter->setPen(Qt::NoPen);
    }
    if (option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Active)) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(getColor(colors::Zt_blue_lighter), 1));
        drawRounded(*painter, row, radius);
        painter->setPen(Qt::NoPen);
    }
}

void paintThumbnail(QPainter* painter, const QRect& rect, const QModelIndex& index)
{
    const qreal ratio = painter->device()->devicePixelRatioF();
    const auto picture = index.data(MediaLibraryModel::KnownThumbnailRole).value<QPixmap>();
    if (!picture.isNull()) {
        painter->drawPixmap(rect.topLeft(), boxed(picture, rect.size(), ratio));
        return;
    }
    painter->setBrush(getColor(colors::Zt_black_30));
    drawRounded(*painter, rect, 3);
    const auto type = static_cast<MediaType>(index.data(MediaLibraryModel::KnownTypeRole).toInt());
    const int side = rect.height() * 3 / 5;
    const QPixmap icon =
        IconCache::pixmap(mediaIcon(type), getColor(colors::Zt_white_50), QSize(side, side), ratio);
    painter->drawPixmap(rect.center() - QPoint(side / 2, side / 2), icon);
}

/// Draws the mark at the right end of the line and returns how much it took. Where that leaves less than the
/// given width to the text beside it, its colour and icon say enough.
int paintMark(QPainter* painter, const QRect& line, const QFont& font, const Mark& mark, int textWidth)
{
    QFont bold = font;
    bold.setWeight(QFont::DemiBold);
    const QFontMetrics metrics(bold);
    const int side = metrics.height() - 2;
    const int whole = side + metrics.horizontalAdvance(mark.text) + 10;
    const bool isShort = whole + margin + textWidth > line.width();
    const int width = isShort ? side + 6 : whole;
    const QRect chip(line.right() - width + 1, line.top(), width, line.height());
    painter->setBrush(getColor(mark.colour));
    painter->drawRoundedRect(chip, 3, 3);
    const QPixmap icon = IconCache::pixmap(mark.icon, getColor(mark.ink), QSize(side, side),
                                           painter->device()->devicePixelRatioF());
    painter->drawPixmap(chip.left() + 3, chip.center().y() - side / 2, icon);
    if (!isShort) {
        painter->setFont(bold);
        painter->setPen(getColor(mark.ink));
        painter->drawText(chip.adjusted(side + 5, 0, -3, 0), Qt::AlignVCenter | Qt::AlignLeft, mark.text);
        painter->setPen(Qt::NoPen);
    }
    return width + (isShort ? margin / 2 : margin);
}

/// Draws what is wrong with a file that does not play, or not whole.
int paintWarning(QPainter* painter, const QRect& line, MediaState state)
{
    if (state != MediaState::NotPlayable && state != MediaState::PlayableWithCaveats)
        return 0;
    const int side = line.height();
    const auto colour = state == MediaState::NotPlayable ? colors::Red_error : colors::Zt_orange;
    const QPixmap icon = IconCache::pixmap(QStringLiteral("error"), getColor(colour), QSize(side, side),
                                           painter->device()->devicePixelRatioF());
    painter->drawPixmap(line.right() - side + 1, line.top(), icon);
    return side + margin;
}

/// The length, or why it does not play.
void paintDetails(QPainter* painter, const QRect& line, const QFont& font, const QString& length,
                  colors::ColorCode ink, const QStringList& faults)
{
    painter->setFont(font);
    if (!faults.isEmpty()) {
        painter->setPen(getColor(colors::Zt_white_70));
        painter->drawText(line, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(faults.constFirst(), Qt::ElideRight, line.width()));
        return;
    }
    painter->setPen(getColor(ink));
    painter->drawText(line, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, length);
}

} // namespace

struct SlotDelegate::Layout
{
    QRect number;
    QRect thumbnail;
    QRect name;
    QRect details;
    bool isStacked = false; // the picture below the number
};

SlotDelegate::Layout SlotDelegate::layoutOf(const QStyleOptionViewItem& option,
                                            const QModelIndex& index) const
{
    Layout layout;
    const QRect row = option.rect.adjusted(margin, padding, -margin, -padding);
    // As wide as the last number of the collection: all rows line up, and small collections waste nothing.
    const QAbstractItemModel* model = index.model();
    const int last = model->index(model->rowCount(index.parent()) - 1, 0, index.parent())
                         .data(MediaLibraryModel::NumberRole)
                         .toInt();
    const int digits = std::max<int>(2, static_cast<int>(QString::number(last).size()));
    const int numberWidth = QFontMetrics(option.font).horizontalAdvance(u'0') * digits;
    layout.number = QRect(row.left() + 2, row.top(), numberWidth, row.height());
    // The name comes first: in a narrow panel the picture gives way.
    const int room =
        row.width() - numberWidth - 3 * margin - QFontMetrics(option.font).averageCharWidth() * 14;
    int width = std::min(row.height() * 16 / 9, room);
    if (width < leastPicture) {
        // Below the number, which then takes the smaller font: no text is the narrower for it.
        layout.isStacked = true;
        const int top = QFontMetrics(captionFont(option.font)).height();
        width = std::min((row.height() - top) * 16 / 9, std::max(leastPicture, row.width() / 4));
        layout.number = QRect(row.left(), row.top(), width, top);
        layout.thumbnail = QRect(row.left(), row.top() + top, width, width * 9 / 16);
    } else {
        const int height = width * 9 / 16;
        layout.thumbnail =
            QRect(layout.number.right() + margin + 1, row.center().y() - height / 2 + 1, width, height);
    }
    const int left = layout.thumbnail.right() + 1 + margin + (layout.isStacked ? 0 : 2);
    const int nameHeight = QFontMetrics(nameFont(option.font)).height();
    const int top = row.center().y() - textHeight(option.font) / 2;
    layout.name = QRect(left, top, row.right() - left, nameHeight);
    layout.details = QRect(left, layout.name.bottom() + 1 + lineGap, row.right() - left,
                           QFontMetrics(captionFont(option.font)).height());
    return layout;
}

QList<QRect> SlotDelegate::textPlaces(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const Layout layout = layoutOf(option, index);
    return {layout.number, layout.name, layout.details};
}

void SlotDelegate::paintPlace(QPainter* painter, const QRect& row, const QFont& font, const QString& text,
                              bool isAimed)
{
    const QRect box = row.adjusted(3, 3, -3, -3);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(getColor(isAimed ? colors::Zt_orange : colors::Zt_white_30), 1, Qt::DashLine));
    drawRounded(*painter, QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), radius);
    painter->setFont(font);
    painter->setPen(getColor(isAimed ? colors::White : colors::Zt_white_50));
    const QRect line = box.adjusted(margin, 0, -margin, 0);
    painter->drawText(line, Qt::AlignVCenter | Qt::AlignLeft,
                      QFontMetrics(font).elidedText(text, Qt::ElideRight, line.width()));
    painter->restore();
}

void SlotDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const
{
    if (const QString place = index.data(MediaPanelModel::PlaceRole).toString(); !place.isEmpty()) {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        paintBackground(painter, option, std::nullopt);
        painter->restore();
        return paintPlace(painter, option.rect, option.font, place, false);
    }
    const QStyleOptionViewItem& row = option; // the base's form of it would ask for the picture each time
    if (m_fetching)
        index.data(Qt::DecorationRole); // asks for the picture, which comes with a change of the row
    const int role = m_fetching ? MediaLibraryModel::StateRole : MediaLibraryModel::KnownStateRole;
    const auto state = static_cast<MediaState>(index.data(role).toInt());
    std::optional<Mark> mark = markOf(state);
    if (mark && m_stale) { // what it was last, and nobody knows what it is
        mark->background = colors::Zt_white_4;
        mark->colour = colors::Slate_grey_500;
        mark->ink = colors::White;
    }
    const Layout layout = layoutOf(row, index);
    const QFont caption = captionFont(row.font);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    paintBackground(painter, row, mark);
    paintThumbnail(painter, layout.thumbnail, index);

    // What is dim on the panel would be lost on a row that has a colour.
    const bool selected = row.state.testFlag(QStyle::State_Selected);
    const bool coloured = mark || selected || row.state.testFlag(QStyle::State_MouseOver);
    const colors::ColorCode dim = coloured ? colors::Zt_white_70 : colors::Zt_white_50;
    painter->setFont(layout.isStacked ? caption : row.font);
    painter->setPen(getColor(dim));
    painter->drawText(layout.number, layout.isStacked ? Qt::AlignCenter : Qt::AlignRight | Qt::AlignVCenter,
                      QString::number(index.data(MediaLibraryModel::NumberRole).toInt()));
    painter->setPen(Qt::NoPen);
    const QString arriving = m_arrivals && !m_arrivals->isEmpty()
                                 ? m_arrivals->textOf(index.data(MediaLibraryModel::UrlRole).toUrl())
                                 : QString();
    const QString length = arriving.isEmpty() ? lengthText(index) : arriving;
    // The length of what does not play helps nobody; why it does not, does.
    const QStringList faults = arriving.isEmpty() && state == MediaState::NotPlayable
                                   ? index.data(MediaLibraryModel::KnownFaultsRole).toStringList()
                                   : QStringList();
    const int lengthWidth = QFontMetrics(caption).horizontalAdvance(length);
    const int taken = mark                 ? paintMark(painter, layout.details, caption, *mark, lengthWidth)
                      : arriving.isEmpty() ? paintWarning(painter, layout.details, state)
                                           : 0;

    const bool bright = mark || selected;
    const QFont name = nameFont(row.font);
    painter->setFont(name);
    painter->setPen(state == MediaState::NotPlayable
                        ? getColor(dim)
                        : getColor(bright ? colors::White : colors::Zt_white_80));
    painter->drawText(layout.name, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                      QFontMetrics(name).elidedText(index.data(MediaLibraryModel::NameRole).toString(),
                                                    Qt::ElideRight, layout.name.width()));
    const QRect details = layout.details.adjusted(0, 0, -taken, 0);
    const bool hasRoom = lengthWidth <= details.width(); // a part of a time would tell another time
    paintDetails(painter, details, caption, hasRoom ? length : QString(), dim, faults);
    painter->restore();
}

QSize SlotDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    Q_UNUSED(index);
    return {160, textHeight(option.font) + 2 * padding + 2};
}

void SlotDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const
{
    const Layout layout = layoutOf(option, index);
    // Over both lines, and opaque by its style: nothing shows through what is typed.
    editor->setGeometry(layout.name.left() - 4, option.rect.top() + 2, layout.name.width() + 8,
                        option.rect.height() - 4);
}

} // namespace vantrel
