#include "common/playback/channelhint.h"

#include "common/playback/playbackpreview.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/colors.h"

#include <QEvent>
#include <QPainter>

namespace vantrel {

namespace {

constexpr int margin = 16; // pixels

} // namespace

ChannelHint::ChannelHint(PlaybackViewMode viewMode, const Hotkeys* hotkeys, PlaybackPreview* preview)
    : QWidget(preview)
    , m_viewMode(viewMode)
    , m_hotkeys(hotkeys)
    , m_preview(preview)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(preview->rect());
    preview->installEventFilter(this);
    if (hotkeys)
        connect(hotkeys, &Hotkeys::mappingChanged, this, qOverload<>(&QWidget::update));
}

QString ChannelHint::text() const
{
    if (m_viewMode == Preview) {
        const QString key = m_hotkeys ? keyText(m_hotkeys->mapping(QStringLiteral("cue"))) : QString();
        const QString title = tr("Nothing is cued");
        return title + u'\n' +
               (key.isEmpty() ? tr("Double-click media in the library to cue it.")
                              : tr("Double-click media in the library, or select it and press %1, to cue it.")
                                    .arg(key));
    }
    return tr("Nothing is on air") + u'\n' + tr("TAKE brings what is on preview here.");
}

bool ChannelHint::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_preview && event->type() == QEvent::Resize)
        setGeometry(m_preview->rect());
    return QWidget::eventFilter(watched, event);
}

void ChannelHint::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(colors::getColor(colors::Zt_white_70));
    painter.drawText(m_preview->pictureRect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, text());
}

} // namespace vantrel
