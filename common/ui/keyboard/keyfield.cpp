#include "common/ui/keyboard/keyfield.h"

#include "common/session/settings/keymap.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionButton>

namespace vantrel {

using colors::getColor;

namespace {

/// Lengths that follow the height of the text, in pixels.
struct Caps
{
    explicit Caps(const QFontMetrics& metrics)
        : pad(metrics.height() / 3)
        , gap(metrics.height() / 4)
        , edge(qMax(1, metrics.height() / 12))
        , height(metrics.height() + 2 * edge + 2)
    {
    }

    int width(const QFontMetrics& metrics, const QString& text) const
    {
        return qMax(height, metrics.horizontalAdvance(text) + 2 * pad);
    }

    int pad;
    int gap;
    int edge; // by how much a cap stands out at its foot
    int height;
};

} // namespace

KeyField::KeyField(QWidget* parent)
    : PushButton(parent)
{
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { setRecording(!m_recording); });
}

void KeyField::setKey(const QKeySequence& key)
{
    m_key = key;
    update();
}

void KeyField::setRecording(bool recording)
{
    if (m_recording == recording)
        return;
    m_recording = recording;
    setDynamicStyle(this, "recording", recording);
    Q_EMIT recordingChanged(recording);
}

QString KeyField::hint() const
{
    return m_recording ? tr("Press a key...") : tr("No key");
}

QSize KeyField::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const Caps caps(metrics);
    // Wide enough for two modifiers and a letter, so that the fields of a list are alike.
    int width = 3 * caps.gap;
    for (const char* text : {"Ctrl", "Shift", "W"})
        width += caps.width(metrics, QLatin1String(text));
    width = qMax(width, metrics.horizontalAdvance(tr("Press a key...")) + 2 * caps.pad);
    return {width + 2 * caps.gap, caps.height + 4 * caps.edge + 6};
}

QSize KeyField::minimumSizeHint() const
{
    return sizeHint();
}

bool KeyField::event(QEvent* event)
{
    if (m_recording) {
        switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept();
            return true;
        case QEvent::KeyPress:
            record(*static_cast<QKeyEvent*>(event));
            event->accept();
            return true;
        case QEvent::KeyRelease:
            event->accept();
            return true;
        default:
            break;
        }
    }
    return PushButton::event(event);
}

void KeyField::record(const QKeyEvent& event)
{
    const QKeySequence key = Hotkeys::pressed(event);
    if (event.isAutoRepeat() || key.isEmpty())
        return;
    if (key == QKeySequence(Qt::Key_Escape))
        setRecording(false);
    else if (key == QKeySequence(Qt::Key_Backspace) || key == QKeySequence(Qt::Key_Delete))
        Q_EMIT keyPressed({});
    else
        Q_EMIT keyPressed(key);
}

void KeyField::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isPlain && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2)) {
        if (!event->isAutoRepeat())
            setRecording(true);
    } else if (isPlain && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        Q_EMIT moveRequested(key == Qt::Key_Up ? -1 : 1);
    } else {
        PushButton::keyPressEvent(event);
    }
}

void KeyField::focusOutEvent(QFocusEvent* event)
{
    setRecording(false);
    PushButton::focusOutEvent(event);
}

void KeyField::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, this);
    if (!m_recording && !m_key.isEmpty()) {
        paintCaps(painter);
        return;
    }
    const int pad = Caps(fontMetrics()).pad + Caps(fontMetrics()).gap;
    const colors::ColorCode colour = m_recording ? colors::Zt_orange : colors::Zt_white_50;
    painter.setPen(getColor(isEnabled() ? colour : colors::Button_text_disabled));
    painter.drawText(rect().adjusted(pad, 0, -pad, 0), Qt::AlignVCenter | Qt::AlignLeft, hint());
}

void KeyField::paintCaps(QPainter& painter) const
{
    const QFontMetrics metrics = fontMetrics();
    const Caps caps(metrics);
    painter.setRenderHint(QPainter::Antialiasing);
    int x = caps.pad;
    for (const QString& text : keyCaps(m_key)) {
        const QRectF foot(x + 0.5, (height() - caps.height) / 2 + 0.5, caps.width(metrics, text) - 1,
                          caps.height - 1);
        const QRectF face = foot.adjusted(0, 0, 0, -caps.edge);
        const double radius = metrics.height() / 5.0;
        painter.setPen(Qt::NoPen);
        painter.setBrush(getColor(colors::Slate_grey_500));
        painter.drawRoundedRect(foot, radius, radius);
        painter.setPen(getColor(colors::Slate_grey_400));
        painter.setBrush(getColor(colors::Slate_grey_600));
        painter.drawRoundedRect(face, radius, radius);
        painter.setPen(getColor(isEnabled() ? colors::White : colors::Button_text_disabled));
        painter.drawText(face, Qt::AlignCenter, text);
        x += caps.width(metrics, text) + caps.gap;
    }
}

} // namespace vantrel
