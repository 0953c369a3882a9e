#include "common/playback/picturenotice.h"

#include "common/playback/levelmeter.h"
#include "common/playback/playbackpreview.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/dropnotice.h"

#include <QEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace vantrel {

using colors::getColor;

namespace {

constexpr int checkInterval = 200;  // milliseconds
constexpr qint64 freshFor = 1000;   // milliseconds
constexpr double levelsShare = 0.5; // of the picture's width
constexpr int noteExtent = 64;      // pixels at the medium text size
constexpr int bandShare = 3;        // of the picture's height, at most one part

/// The words in lines of the width (pixels), the last of them elided where there are more than so many.
QString inLines(const QString& words, const QFont& font, int width, int most)
{
    QTextLayout layout(words, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() + 1 == most) {
            lines.append(QFontMetrics(font).elidedText(words.mid(line.textStart()), Qt::ElideRight, width));
            break;
        }
        lines.append(words.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines.join(u'\n');
}

} // namespace

PictureNotice::PictureNotice(PlaybackViewMode viewMode, PlaybackPreview* preview)
    : QWidget(preview)
    , m_viewMode(viewMode)
    , m_preview(preview)
    , m_levels(new LevelMeter(viewMode, this))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(preview->rect());
    preview->installEventFilter(this);
    m_levels->hide();
    connect(preview, &PlaybackPreview::dropTargetChanged, this, &PictureNotice::refresh);
    connect(preview, &PlaybackPreview::shapeChanged, this, &PictureNotice::place);
    m_clock.setInterval(checkInterval);
    connect(&m_clock, &QTimer::timeout, this, &PictureNotice::showAge);
    m_clock.start();
    hide();
}

/// Hidden it costs the pictures below it nothing.
void PictureNotice::refresh()
{
    m_told = text();
    setVisible(m_soundOnly || !m_told.isEmpty());
    m_levels->setVisible(m_soundOnly && !isCovered());
    m_preview->setAccessibleDescription(m_told.simplified());
    update();
}

void PictureNotice::setHasMedia(bool hasMedia)
{
    m_hasMedia = hasMedia;
    showAge();
}

void PictureNotice::setUnplayable(const QString& reason)
{
    if (reason == m_unplayable)
        return;
    m_unplayable = reason;
    refresh();
}

void PictureNotice::setState(SourcePlayState state)
{
    if (state == m_state)
        return;
    m_state = state;
    refresh();
}

void PictureNotice::setSoundOnly(bool soundOnly)
{
    if (soundOnly == m_soundOnly)
        return;
    m_soundOnly = soundOnly;
    place();
    refresh();
}

QString PictureNotice::ageText() const
{
    const qint64 age = m_preview->pictureAge();
    if (!m_hasMedia || age < freshFor)
        return {};
    return m_preview->pixmap().isNull() ? tr("No picture from the server")
                                        : tr("Picture is %1 s old").arg(age / 1000);
}

void PictureNotice::showAge()
{
    m_age = ageText();
    if (text() != m_told)
        refresh();
}

bool PictureNotice::isCovered() const
{
    return !m_unplayable.isEmpty() && (m_state == SourcePlayState::Stop || m_preview->pixmap().isNull());
}

QString PictureNotice::text() const
{
    if (m_preview->isDropTarget())
        return m_viewMode == Program ? tr("Let go: on air now, cut") : tr("Let go: cued on preview");
    if (m_unplayable.isEmpty())
        return m_age;
    if (isCovered())
        return tr("This medium cannot be played.") + u'\n' + m_unplayable;
    QString state = m_viewMode == Program ? tr("Held on air.") : tr("Held on preview.");
    if (!m_age.isEmpty()) // then nobody knows
        state = m_age + u'.';
    else if (m_state == SourcePlayState::Play)
        state = tr("Plays on.");
    return state + u' ' + m_unplayable;
}

bool PictureNotice::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_preview && event->type() == QEvent::Resize) {
        setGeometry(m_preview->rect());
        place();
    }
    return QWidget::eventFilter(watched, event);
}

void PictureNotice::place()
{
    const QRectF picture = m_preview->pictureRect();
    const QSize size(qRound(picture.width() * levelsShare), m_levels->sizeHint().height());
    m_levels->setGeometry(QRect(QPoint(qRound(picture.center().x()) - size.width() / 2,
                                       qRound(picture.bottom()) - size.height() - spacing::loose),
                                size));
}

void PictureNotice::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF picture = m_preview->pictureRect();
    if (m_preview->isDropTarget())
        return paintDropNotice(
            painter, rect(), m_viewMode == Program ? DropNotice::OnAir : DropNotice::Preview, font(), m_told);
    if (isCovered())
        return paintUnplayable(painter, picture);
    if (m_soundOnly)
        paintNote(painter, picture);
    const bool isOld = !m_age.isEmpty();
    if (isOld && !m_preview->pixmap().isNull() && m_preview->isEnabled()) // a disabled one is dimmed already
        painter.fillRect(picture, getColor(colors::Zt_black_50));
    if (!m_unplayable.isEmpty())
        paintBand(painter, picture.toRect());
    else if (isOld)
        paintAge(painter, picture.toRect());
}

void PictureNotice::paintUnplayable(QPainter& painter, const QRectF& picture) const
{
    painter.fillRect(picture, getColor(colors::Zt_black_80));
    const int side = iconExtent(currentFontSize()) * 2;
    QRect box = picture.toRect().adjusted(spacing::loose, spacing::normal, -spacing::loose, -spacing::normal);
    const QRect bounds = painter.boundingRect(box, Qt::AlignHCenter | Qt::TextWordWrap, text());
    const int top = std::max(box.top(), box.center().y() - (side + spacing::normal + bounds.height()) / 2);
    painter.drawPixmap(box.center().x() - side / 2, top,
                       IconCache::pixmap(QStringLiteral("error"), getColor(colors::Red_error),
                                         QSize(side, side), devicePixelRatioF()));
    box.setTop(top + side + spacing::normal);
    painter.setPen(getColor(colors::White));
    painter.drawText(box, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text());
}

/// However long the words are, the picture stays to be seen.
void PictureNotice::paintBand(QPainter& painter, const QRect& picture) const
{
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    const QFontMetrics metrics(bold);
    const QMargins padding(spacing::normal, spacing::tight, spacing::normal, spacing::tight);
    const QRect room = picture.marginsRemoved(padding);
    const int most = std::max(1, (picture.height() / bandShare - 2 * spacing::tight) / metrics.lineSpacing());
    const QString words = inLines(text(), bold, room.width(), most);
    painter.setFont(bold);
    constexpr int where = Qt::AlignHCenter | Qt::AlignTop;
    const int below = painter.boundingRect(room, where, words).bottom() + padding.bottom();
    const QRect band(picture.topLeft(), QPoint(picture.right(), below));
    painter.fillRect(band, getColor(colors::Zt_spot_color));
    painter.setPen(getColor(colors::Slate_grey_900));
    painter.drawText(room, where, words);
}

void PictureNotice::paintAge(QPainter& painter, const QRect& picture) const
{
    const QMargins padding(spacing::normal, spacing::tight, spacing::normal, spacing::tight);
    const QRect room = picture.marginsRemoved(padding * 2);
    const QRect words = painter.boundingRect(room, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_age);
    painter.fillRect(words.marginsAdded(padding), getColor(colors::Very_dark_navy_blue));
    painter.setPen(getColor(colors::Zt_spot_color));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_age);
}

void PictureNotice::paintNote(QPainter& painter, const QRectF& picture) const
{
    painter.fillRect(picture, getColor(colors::Slate_grey_900));
    const int room = static_cast<int>(picture.height()) - m_levels->height() - 4 * spacing::loose;
    const int side = std::clamp(scaled(noteExtent, currentFontSize()), 16, std::max(16, room));
    const QPoint centre = picture.center().toPoint();
    painter.drawPixmap(centre.x() - side / 2, centre.y() - side / 2 - m_levels->height() / 2,
                       IconCache::pixmap(QStringLiteral("audio"), getColor(colors::Zt_white_70),
                                         QSize(side, side), devicePixelRatioF()));
}

} // namespace vantrel
