#include "common/views/media/slotface.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/mediaicon.h"
#include "common/ui/style/smoothpicture.h"
#include "common/ui/style/stylesheet.h"
#include "tarn/media/mediaenums.h"

#include <QGuiApplication>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <algorithm>
#include <memory>
#include <utility>

namespace vantrel {

using colors::getColor;

namespace {

// The scale of distances that the declarative views have.
constexpr int tight = 4;
constexpr int normal = 8;
constexpr int radius = 4;
constexpr int rowEdge = 6;
// Lengths of the Medium layout, in pixels.
constexpr int numberWidth = 52;
constexpr int lengthWidth = 96;
constexpr int widthWithFiles = 560;
constexpr double fileStart = 0.55; // of the width of a row

QRect centred(const QSize& size, const QRect& in)
{
    return {QPoint(in.x() + (in.width() - size.width()) / 2, in.y() + (in.height() - size.height()) / 2),
            size};
}

void drawIcon(QPainter* painter, const QRect& place, const QString& name, colors::ColorCode colour)
{
    painter->drawPixmap(place.topLeft(), IconCache::pixmap(name, getColor(colour), place.size(),
                                                           painter->device()->devicePixelRatioF()));
}

void drawText(QPainter* painter, const QRect& place, const QFont& font, colors::ColorCode colour,
              const QString& text, Qt::Alignment alignment, Qt::TextElideMode elide)
{
    if (place.width() <= 0)
        return;
    painter->setFont(font);
    painter->setPen(getColor(colour));
    painter->drawText(place, alignment | Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(text, elide, place.width()));
}

/// The drawing that a face had before its last one, for the next face to draw into: where a whole view is
/// drawn anew, fresh memory for each would take longer than the drawing.
QImage& spareImage()
{
    static QImage image;
    return image;
}

} // namespace

SlotFace::SlotFace(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &SlotFace::changed, this, &SlotFace::drawAnew);
}

void SlotFace::drawAnew()
{
    m_isDrawn = false;
    update();
}

void SlotFace::itemChange(ItemChange change, const ItemChangeData& value)
{
    if (change == ItemDevicePixelRatioHasChanged)
        drawAnew();
    QQuickItem::itemChange(change, value);
}

/// A painted item would keep each drawing twice, once empty.
QSGNode* SlotFace::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    std::unique_ptr<QSGImageNode> node(static_cast<QSGImageNode*>(old));
    if (boundingRect().isEmpty())
        return nullptr;
    if (!node) {
        node.reset(window()->createImageNode());
        node->setOwnsTexture(true);
        m_isDrawn = false;
    }
    if (!m_isDrawn || node->rect() != boundingRect()) {
        QImage image = drawing();
        node->setTexture(window()->createTextureFromImage(image, QQuickWindow::TextureIsOpaque));
        node->setSourceRect(image.rect());
        spareImage() = std::exchange(m_image, std::move(image));
        node->setRect(boundingRect());
        m_isDrawn = true;
    }
    return node.release();
}

QImage SlotFace::drawing()
{
    const qreal ratio = window()->effectiveDevicePixelRatio();
    // Nothing shines through: what lies below need not be drawn.
    const QSize size = (this->size() * ratio).toSize();
    QImage image = std::exchange(spareImage(), {});
    if (image.size() != size)
        image = QImage(size, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(getColor(colors::Slate_grey_800));
    QPainter painter(&image);
    paint(&painter);
    return image;
}

int SlotFace::scaled(int pixels) const
{
    return vantrel::scaled(pixels, static_cast<FontSize>(m_textSize));
}

int SlotFace::textLength(const char* token) const
{
    return StyleSheet::length(QString::fromLatin1(token), static_cast<FontSize>(m_textSize));
}

QFont SlotFace::font(const char* token, bool isBold) const
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(textLength(token));
    font.setWeight(isBold ? QFont::DemiBold : QFont::Normal);
    return font;
}

SlotFace::Layout SlotFace::layout() const
{
    const int wide = qRound(width());
    const int high = qRound(height());
    const int icon = iconExtent(static_cast<FontSize>(m_textSize));
    const int markRoom = m_hasFaults ? icon + tight : 0;
    Layout at;
    if (m_isTable) {
        at.number = QRect(tight, 0, scaled(numberWidth), high);
        const int screenHeight = high - 4;
        at.screen = QRect(at.number.x() + at.number.width() + normal, 2, qRound(screenHeight * 16 / 9.0),
                          screenHeight);
        const int lengthRoom = scaled(lengthWidth);
        at.length = QRect(wide - lengthRoom - textLength("bar") - normal, 0, lengthRoom, high);
        if (wide >= scaled(widthWithFiles)) {
            const int x = qRound(wide * fileStart);
            at.file = QRect(x, 0, at.length.x() - x - normal, high);
        }
        const int x = at.screen.x() + at.screen.width() + normal;
        const int end = (at.file.isEmpty() ? at.length.x() : at.file.x()) - normal;
        at.name = QRect(x, 0, std::max(0, end - x - markRoom), high);
        at.mark = QRect(x + at.name.width() + tight, (high - icon) / 2, icon, icon);
        return at;
    }
    const int lineHeight = textLength("body") + 2 * textLength("pady") + rowEdge - tight;
    at.screen = QRect(2 * tight, 2 * tight, wide - 4 * tight, qRound((wide - 4 * tight) * 9 / 16.0));
    const int digits = QFontMetrics(font("body", true)).horizontalAdvance(QString::number(m_slot));
    at.number = QRect(2 * tight, at.screen.y() + at.screen.height() + tight, digits, lineHeight);
    const int x = at.number.x() + digits + normal;
    at.name = QRect(x, at.number.y(), std::max(0, wide - 2 * tight - x), lineHeight);
    at.length = QRect(at.number.x(), at.number.y() + lineHeight, wide - 4 * tight - markRoom, lineHeight);
    at.mark = QRect(wide - icon - 2 * tight, at.length.y() + (lineHeight - icon) / 2, icon, icon);
    return at;
}

QRectF SlotFace::namePlace() const
{
    return layout().name;
}

bool SlotFace::isNameCut() const
{
    return m_place.isEmpty() && QFontMetrics(font("body")).horizontalAdvance(m_name) > layout().name.width();
}

void SlotFace::paint(QPainter* painter)
{
    const Layout at = layout();
    paintBox(painter);
    if (!m_place.isEmpty())
        return paintPlace(painter, at);
    paintScreen(painter, at.screen);
    paintTexts(painter, at);
    if (m_hasFaults)
        drawIcon(painter, at.mark, QStringLiteral("error"),
                 m_isPlayable ? colors::Zt_orange : colors::Red_error);
}

/// What is selected, pointed at, and where the keys are.
void SlotFace::paintBox(QPainter* painter) const
{
    const bool hasEdge = m_isAimed || (m_isCurrent && m_hasKeys);
    if (!hasEdge && !m_isSelected && !m_isHovered)
        return;
    const int margin = m_isTable ? 1 : 2;
    const QRectF box = boundingRect().adjusted(
        margin + 0.5, margin + 0.5, -(m_isTable ? textLength("bar") + 1 : margin) - 0.5, -margin - 0.5);
    const QColor fill = getColor(m_isAimed || (m_isSelected && m_hasKeys) ? colors::Zt_orange_20
                                 : m_isSelected                           ? colors::Zt_white_15
                                 : m_isHovered                            ? colors::Zt_white_8
                                                                          : colors::Transparent);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(fill);
    painter->setPen(hasEdge ? QPen(getColor(m_isAimed ? colors::Zt_orange : colors::Zt_blue_lighter), 1)
                            : QPen(Qt::NoPen));
    drawRounded(*painter, box, radius);
    painter->setRenderHint(QPainter::Antialiasing, false);
}

/// Dim and without a picture: what can be dropped there is no slot yet.
void SlotFace::paintPlace(QPainter* painter, const Layout& at) const
{
    const QRect box =
        m_isTable ? QRect(tight, 3, qRound(width()) - textLength("bar") - 2 * tight, qRound(height()) - 6)
                  : at.screen;
    QPen dashes(getColor(m_isAimed ? colors::Zt_orange : colors::Zt_white_30), 1);
    dashes.setDashPattern({3, 3});
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(dashes);
    painter->setBrush(Qt::NoBrush);
    drawRounded(*painter, QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), radius);
    painter->setRenderHint(QPainter::Antialiasing, false);
    const colors::ColorCode ink = m_isAimed ? colors::White : colors::Zt_white_50;
    if (m_isTable) {
        const int numbers = QFontMetrics(font("body", true)).horizontalAdvance(m_place);
        const QRect place(2 * tight, 0, std::max(at.number.right() + 1 - 2 * tight, numbers),
                          box.bottom() + 3);
        drawText(painter, place, font("body", true), ink, m_place,
                 numbers < place.width() ? Qt::AlignRight : Qt::AlignLeft, Qt::ElideNone);
        const int x = std::max(at.screen.x(), place.right() + normal);
        drawText(painter, QRect(x, 0, box.right() - x - normal, place.height()), font("body"), ink, m_name,
                 Qt::AlignLeft, Qt::ElideRight);
        return;
    }
    const int lineHeight = at.number.height();
    const QRect line(box.x() + tight, box.center().y() - lineHeight, box.width() - 2 * tight, lineHeight);
    drawText(painter, line, font("body", true), ink, m_place, Qt::AlignHCenter, Qt::ElideRight);
    drawText(painter, line.translated(0, lineHeight), font("body"), ink, m_name, Qt::AlignHCenter,
             Qt::ElideRight);
}

void SlotFace::paintScreen(QPainter* painter, const QRect& screen)
{
    fillThrough(*painter, screen, getColor(colors::Zt_black_30));
    const auto thumbnail = m_thumbnail.value<QPixmap>();
    if (thumbnail.isNull()) {
        const int side = qRound(screen.height() * (m_isTable ? 0.6 : 0.4));
        drawIcon(painter, centred({side, side}, screen), mediaIcon(static_cast<MediaType>(m_kind)),
                 colors::Zt_white_50);
    } else {
        const qreal ratio = painter->device()->devicePixelRatioF();
        const QSize size = thumbnail.size().scaled(screen.size() * ratio, Qt::KeepAspectRatio);
        if (m_scaledFrom != thumbnail.cacheKey() || m_scaled.size() != size) {
            m_scaled = thumbnail.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            m_scaled.setDevicePixelRatio(ratio);
            m_scaledFrom = thumbnail.cacheKey();
        }
        painter->drawPixmap(centred(size / ratio, screen).topLeft(), m_scaled);
    }
    if (m_arrived >= 0)
        paintArrival(painter, screen);
    if (!m_isOnProgram && !m_isOnPreview)
        return;
    painter->setBrush(Qt::NoBrush);
    // Which channel has it, in that channel's colour.
    painter->setPen(QPen(getColor(m_isOnProgram ? colors::Zt_red : colors::Green_green), 2, Qt::SolidLine,
                         Qt::SquareCap, Qt::MiterJoin));
    painter->drawRect(screen.adjusted(1, 1, -1, -1));
}

void SlotFace::paintArrival(QPainter* painter, const QRect& screen) const
{
    const int margin = m_isTable ? 2 : normal;
    const int thickness = m_isTable ? 4 : 8;
    QRectF bar(screen.x() + margin, screen.y() + screen.height() - margin - thickness,
               screen.width() - 2 * margin, thickness);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(getColor(colors::Slate_grey_900));
    painter->drawRoundedRect(bar, thickness / 2.0, thickness / 2.0);
    bar.setWidth(bar.width() * std::min(1.0, m_arrived));
    painter->setBrush(getColor(colors::Zt_orange));
    painter->drawRoundedRect(bar, thickness / 2.0, thickness / 2.0);
    painter->setRenderHint(QPainter::Antialiasing, false);
}

void SlotFace::paintTexts(QPainter* painter, const Layout& at) const
{
    const auto side = m_isTable ? Qt::AlignRight : Qt::AlignLeft;
    const bool isArriving = m_arrived >= 0;
    drawText(painter, at.number, font("body", true),
             m_isOnProgram   ? colors::White // that red is too dark to be read
             : m_isOnPreview ? colors::Green_green
                             : colors::Zt_white_70,
             QString::number(m_slot), side, Qt::ElideNone);
    if (m_isNamed)
        drawText(painter, at.name, font("body"),
                 !m_isPlayable  ? colors::Zt_white_50
                 : m_isSelected ? colors::White
                                : colors::Zt_white_80,
                 m_name, Qt::AlignLeft, Qt::ElideRight);
    drawText(painter, at.file, font("body"), colors::Zt_white_70, m_file, Qt::AlignLeft, Qt::ElideMiddle);
    drawText(painter, at.length, font(m_isTable ? "body" : "caption"),
             isArriving ? colors::White : colors::Zt_white_70, m_length, side, Qt::ElideRight);
}

} // namespace vantrel
