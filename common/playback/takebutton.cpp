#include "common/playback/takebutton.h"

#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/toolkit/uncovered.h"

#include <QApplication>
#include <QFocusEvent>
#include <QGraphicsDropShadowEffect>
#include <QLabel>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantrel {

TakeButton::TakeButton(QWidget* parent)
    : QPushButton(parent)
    , m_sizes({{FontSize::Small, {60, 73}},
               {FontSize::Medium, {80, 95}},
               {FontSize::Large, {120, 142}},
               {FontSize::Huge, {160, 190}}})
    , m_bar(new QWidget(this))
    , m_label(new QLabel(tr("TAKE"), this))
    , m_takenLabel(new QLabel(m_label->text(), m_bar))
    , m_shadow(new QGraphicsDropShadowEffect(this))
{
    neverCover(this);
    setObjectName(QStringLiteral("Take"));
    setHotkeyTip(this, tr("Perform take"), {QStringLiteral("take")});
    setAccessibleName(tr("Take"));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAutoDefault(false);

    m_bar->setObjectName(QStringLiteral("TakeProgressBar"));
    m_bar->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_bar->setAttribute(Qt::WA_StyledBackground);
    m_bar->hide();
    m_label->setObjectName(QStringLiteral("TakeLabel"));
    m_label->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_label->setAlignment(Qt::AlignCenter);

    // Over the bar the text is another's, which its mask uncovers with it: one colour cannot be read on both.
    m_takenLabel->setObjectName(QStringLiteral("TakeProgressLabel"));
    m_takenLabel->setAlignment(Qt::AlignCenter);
    m_bar->raise();

    m_shadow->setBlurRadius(18);
    m_shadow->setColor(QColor(245, 169, 54, 94));
    m_shadow->setOffset(0, 2);
    setGraphicsEffect(m_shadow);

    connect(this, &QPushButton::pressed, this, &TakeButton::onPressed);
    connect(this, &QPushButton::released, this, &TakeButton::onReleased);
    if (const Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, &TakeButton::onStyleChange);
    updateSizes(currentFontSize());
}

void TakeButton::setTakeProgress(double progress)
{
    const double clamped = std::isnan(progress) ? 0.0 : std::clamp(progress, 0.0, 1.0);
    if (clamped == m_takeProgress)
        return;
    m_takeProgress = clamped;
    updateProgressBar();
}

void TakeButton::onPressed()
{
    setParts("pressed", true);
    m_shadow->setEnabled(false);
}

void TakeButton::onReleased()
{
    setParts("pressed", false);
    m_shadow->setEnabled(true);
}

void TakeButton::onStyleChange(ConfigurationOption option, const QVariant& value)
{
    if (option == TEXT_SIZE)
        updateSizes(stepped(fontSizeFrom(value)));
}

void TakeButton::setColumnStep(ColumnStep step)
{
    m_step = step;
    updateSizes(stepped(currentFontSize()));
}

FontSize TakeButton::stepped(FontSize size) const
{
    return m_step == ColumnStep::Narrow && size == FontSize::Huge ? FontSize::Large : size;
}

void TakeButton::updateSizes(FontSize size)
{
    for (QLabel* label : {m_label, m_takenLabel})
        setDynamicStyle(label, "fontsize", toString(size));
    m_size = m_sizes.value(size);
    setFixedSize(m_size);
}

void TakeButton::updateProgressBar()
{
    const int width = m_bar->width();
    const int shown = std::min(static_cast<int>(std::lround(width * m_takeProgress)), width);
    m_bar->setVisible(shown > 0);
    if (shown > 0)
        m_bar->setMask(QRegion(m_bar->x(), m_bar->y(), shown, m_bar->height()));
}

void TakeButton::enterEvent(QEnterEvent* event)
{
    setParts("hover", true);
    QPushButton::enterEvent(event);
}

void TakeButton::leaveEvent(QEvent* event)
{
    setParts("hover", false);
    QPushButton::leaveEvent(event);
}

void TakeButton::focusInEvent(QFocusEvent* event)
{
    const bool byKeyboard =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    setDynamicStyle(this, "keyboardfocus", byKeyboard);
    setDynamicStyle(m_bar, "keyboardfocus", byKeyboard);
    QPushButton::focusInEvent(event);
}

void TakeButton::focusOutEvent(QFocusEvent* event)
{
    setDynamicStyle(this, "keyboardfocus", false);
    setDynamicStyle(m_bar, "keyboardfocus", false);
    QPushButton::focusOutEvent(event);
}

void TakeButton::resizeEvent(QResizeEvent* event)
{
    QPushButton::resizeEvent(event);
    m_bar->setGeometry(rect());
    m_label->setGeometry(rect());
    m_takenLabel->setGeometry(m_bar->rect());
    updateProgressBar();
}

/// The second click of a double one is no second take: it would undo the first.
void TakeButton::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_pressedAt = event->timestamp();
    event->accept();
}

/// Nor is the third one of a contact that bounces or of an angry hand, which comes as a press of its own.
void TakeButton::mousePressEvent(QMouseEvent* event)
{
    const quint64 before = std::exchange(m_pressedAt, event->timestamp());
    const auto tooSoon = static_cast<quint64>(QApplication::doubleClickInterval());
    if (before > 0 && m_pressedAt >= before && m_pressedAt - before < tooSoon)
        event->accept();
    else
        QPushButton::mousePressEvent(event);
}

void TakeButton::setParts(const char* property, bool value)
{
    setDynamicStyle(m_bar, property, value);
    setDynamicStyle(m_label, property, value);
}

} // namespace vantrel
