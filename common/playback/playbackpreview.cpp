#include "common/playback/playbackpreview.h"

#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"
#include "common/media/items/slotmimedata.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/opaque.h"
#include "common/ui/style/smoothpicture.h"
#include "common/ui/style/spacing.h"

#include <QDropEvent>
#include <QJsonObject>
#include <QMap>
#include <QPainter>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int newMediaTime = 500; // milliseconds; an unchanged picture comes again within half of that

struct PointSizes
{
    int title, detail;
};

const QMap<FontSize, PointSizes> pointSizes{{FontSize::Small, {16, 14}},
                                            {FontSize::Medium, {24, 18}},
                                            {FontSize::Large, {32, 24}},
                                            {FontSize::Huge, {44, 32}}};

/// The point size wanted, or the one at which the text fits the width (pixels), whichever is smaller.
qreal fittingPointSize(QFont font, int wanted, const QString& text, int width)
{
    font.setPointSize(wanted);
    const int needed = QFontMetrics(font).horizontalAdvance(text) + 2 * spacing::normal;
    return needed <= width ? wanted : std::max(1.0, double(wanted) * width / needed);
}

/// What a colour that can be seen through comes to on another.
QColor onGround(const QColor& colour, const QColor& ground)
{
    const auto mixed = [share = colour.alphaF()](float above, float below) {
        return below + (above - below) * share;
    };
    return QColor::fromRgbF(mixed(colour.redF(), ground.redF()), mixed(colour.greenF(), ground.greenF()),
                            mixed(colour.blueF(), ground.blueF()));
}

/// Of what is dragged the first is played. Null for what cannot be: a file of the desktop's, or a text.
std::shared_ptr<GuiMediaItem> firstItem(const QMimeData* data)
{
    if (const auto* own = qobject_cast<const SlotMimeData*>(data)) // of thousands no text is written
        return own->slot(own->addresses().first());
    const QList<QJsonObject> objects = jsonFromMimeData(data);
    return objects.isEmpty() ? nullptr : mediaItemFromMimeData(data, objects.first());
}

} // namespace

PlaybackPreview::PlaybackPreview(QWidget* parent)
    : ZTFrame(parent)
{
    setAcceptDrops(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Live picture"));
    setToolTip(tr("Drop media or a playlist here to play it"));
    followFontSize(this, [this](FontSize) { update(); });
    m_sinceFrame.start();
    m_oldMedia.setSingleShot(true);
    m_oldMedia.setInterval(newMediaTime);
    connect(&m_oldMedia, &QTimer::timeout, this, &PlaybackPreview::clearPicture);
}

void PlaybackPreview::setSource(const std::string& path, int streamIndex)
{
    if (path != m_source)
        clearPicture();
    m_source = path;
    m_streamIndex = streamIndex;
}

void PlaybackPreview::setResourceConstrained(bool constrained)
{
    if (constrained == m_resourceConstrained)
        return;
    m_resourceConstrained = constrained;
    update();
}

void PlaybackPreview::onFrame(const PreviewFrame& frame, const QPixmap& pixmap)
{
    if (frame.source != m_source || frame.frame.getStreamIndex() != m_streamIndex)
        return;
    m_pixmap = pixmap;
    m_sinceFrame.start();
    m_oldMedia.stop();
    update();
    if (pixmap.isNull() || pixmap.width() * m_shape.height() == pixmap.height() * m_shape.width())
        return;
    m_shape = pixmap.size();
    Q_EMIT shapeChanged();
}

void PlaybackPreview::expectNewMedia()
{
    if (m_pixmap.isNull())
        m_sinceFrame.start();
    else if (m_sinceFrame.elapsed() > newMediaTime)
        clearPicture();
    else
        m_oldMedia.start(); // pictures come: the next will be of it
}

void PlaybackPreview::clearPicture()
{
    m_pixmap = QPixmap();
    m_sinceFrame.start();
    m_oldMedia.stop();
    update();
}

void PlaybackPreview::setDragged(std::shared_ptr<GuiMediaItem> item)
{
    m_dragged = std::move(item);
    update();
    Q_EMIT dropTargetChanged();
}

int PlaybackPreview::heightForWidth(int width) const
{
    return qRound(double(width) * m_shape.height() / m_shape.width());
}

QSize PlaybackPreview::sizeHint() const
{
    return {400, 225};
}

QSize PlaybackPreview::minimumSizeHint() const
{
    return {160, 90};
}

QRectF PlaybackPreview::pictureRect() const
{
    QSizeF size = m_shape;
    size.scale(QSizeF(contentsRect().size()), Qt::KeepAspectRatio);
    QRectF picture(QPointF(), size);
    picture.moveCenter(QRectF(contentsRect()).center());
    return picture;
}

bool PlaybackPreview::event(QEvent* event)
{
    const bool handled = ZTFrame::event(event);
    keepOpaque(this, event);
    return handled;
}

void PlaybackPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // Around the picture the panel goes on, and a line: what is black belongs to the picture.
    const bool hasPicture = !m_resourceConstrained && !m_pixmap.isNull();
    const QRect picture = pictureRect().toRect();
    for (const QRect& around : QRegion(rect()) - (hasPicture ? picture : QRect()))
        painter.fillRect(around, colors::getColor(colors::Slate_grey_800));
    // Not as something to see through, which Qt's painter would share out among threads, as it does pictures.
    painter.setPen(onGround(colors::getColor(colors::Zt_white_15), colors::getColor(colors::Slate_grey_800)));
    painter.drawRect(pictureRect().toAlignedRect().adjusted(0, 0, -1, -1));
    if (m_resourceConstrained) {
        paintConstrained(painter);
    } else if (hasPicture) {
        drawSmoothly(painter, picture, m_pixmap);
    }
    if (!isEnabled()) // the last picture of a server that is gone
        painter.fillRect(pictureRect(), colors::getColor(colors::Zt_black_50));
}

void PlaybackPreview::paintConstrained(QPainter& painter) const
{
    const PointSizes sizes = pointSizes.value(currentFontSize());
    const QString title = tr("Preview not available");
    const QString detail = tr("All rendering resources busy");
    painter.setPen(colors::getColor(colors::Zt_white_80));
    QFont textFont = font();
    textFont.setPointSizeF(fittingPointSize(textFont, sizes.title, title, width()));
    painter.setFont(textFont);
    QRect titleRect;
    painter.drawText(rect(), Qt::AlignCenter, title, &titleRect);
    textFont.setPointSizeF(fittingPointSize(textFont, sizes.detail, detail, width()));
    painter.setFont(textFont);
    const QRect below(0, titleRect.bottom() + 1, width(), height() - titleRect.bottom() - 1);
    painter.drawText(below, Qt::AlignHCenter | Qt::AlignTop, detail);
}

void PlaybackPreview::dragEnterEvent(QDragEnterEvent* event)
{
    // No promise for what will not be played.
    setDragged(firstItem(event->mimeData()));
    if (isDropTarget())
        event->acceptProposedAction();
    else
        event->ignore();
}

void PlaybackPreview::dragLeaveEvent(QDragLeaveEvent* event)
{
    setDragged(nullptr);
    ZTFrame::dragLeaveEvent(event);
}

void PlaybackPreview::dropEvent(QDropEvent* event)
{
    const std::shared_ptr<GuiMediaItem> item = m_dragged;
    setDragged(nullptr);
    if (!item)
        return;
    Q_EMIT dragAndDropEntry(item);
    event->acceptProposedAction();
}

} // namespace vantrel
