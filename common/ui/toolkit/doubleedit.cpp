#include "common/ui/toolkit/doubleedit.h"

#include "common/session/settings/configuration.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <cmath>
#include <limits>

namespace vantrel {

namespace {

/// A drag of this many pixels is one step.
constexpr double pixelsPerStep = 4.0;

double rounded(double value, int decimals)
{
    const double scale = std::pow(10.0, decimals);
    const double result = std::round(value * scale) / scale;
    return std::isfinite(result) ? result : value;
}

} // namespace

DoubleEdit::DoubleEdit(QWidget* parent)
    : DoubleEdit(-std::numeric_limits<double>::max(), std::numeric_limits<double>::max(), QString(), parent)
{
}

DoubleEdit::DoubleEdit(double minimum, double maximum, const QString& unit, QWidget* parent)
    : ZTEdit(parent)
    , m_minimum(minimum)
    , m_maximum(qMax(minimum, maximum))
    , m_unit(unit)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setContextMenuPolicy(Qt::NoContextMenu);
    setCursor(Qt::SizeHorCursor);
    m_value = qBound(m_minimum, 0.0, m_maximum);
    showValue();
}

void DoubleEdit::setRange(double minimum, double maximum)
{
    m_minimum = minimum;
    m_maximum = qMax(minimum, maximum);
    setValue(m_value);
}

void DoubleEdit::setUnit(const QString& unit)
{
    m_unit = unit;
    showValue();
}

void DoubleEdit::setDecimals(int decimals)
{
    m_decimals = qBound(0, decimals, 9);
    showValue();
}

void DoubleEdit::setValue(double value)
{
    if (std::isnan(value))
        return;
    const double limited = qBound(m_minimum, value, m_maximum);
    const bool changed = limited != m_value;
    m_value = limited;
    if (!m_typing)
        showValue();
    if (changed)
        Q_EMIT valueChanged(m_value);
}

void DoubleEdit::edit(double value)
{
    const double before = m_value;
    setValue(value);
    if (m_value != before)
        Q_EMIT valueEdited(m_value);
}

void DoubleEdit::showValue()
{
    const QString number = locale().toString(m_value, 'f', m_decimals);
    setText(m_unit.isEmpty() ? number : number + u' ' + m_unit);
}

void DoubleEdit::startTyping()
{
    if (isReadOnly() || m_typing)
        return;
    m_typing = true;
    setText(locale().toString(m_value, 'f', m_decimals));
    selectAll();
    setCursor(Qt::IBeamCursor);
}

void DoubleEdit::commit()
{
    if (!m_typing)
        return;
    m_typing = false;
    setCursor(Qt::SizeHorCursor);
    QString typed = text().trimmed();
    if (!m_unit.isEmpty() && typed.endsWith(m_unit))
        typed.chop(m_unit.size());
    const bool isShown = typed == locale().toString(m_value, 'f', m_decimals);
    if (const auto number = isShown ? std::nullopt : parsed(typed.trimmed()))
        edit(rounded(*number, m_decimals));
    showValue();
}

/// By the locale, else with a point, else with a comma: both stand on keypads everywhere.
std::optional<double> DoubleEdit::parsed(const QString& text) const
{
    bool ok = false;
    double number = locale().toDouble(text, &ok);
    if (!ok)
        number = QLocale::c().toDouble(text, &ok);
    if (!ok)
        number = QLocale::c().toDouble(QString(text).replace(u',', u'.'), &ok);
    return ok && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

void DoubleEdit::focusInEvent(QFocusEvent* event)
{
    ZTEdit::focusInEvent(event);
    if (event->reason() != Qt::MouseFocusReason)
        startTyping();
}

void DoubleEdit::focusOutEvent(QFocusEvent* event)
{
    commit();
    ZTEdit::focusOutEvent(event);
    deselect();
}

void DoubleEdit::keyPressEvent(QKeyEvent* event)
{
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const double steps = shift ? 10.0 : 1.0;
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (!isReadOnly()) {
            commit();
            const double direction = event->key() == Qt::Key_Up ? 1.0 : -1.0;
            edit(rounded(m_value + direction * steps * m_step, m_decimals));
            startTyping();
        }
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        commit();
        ZTEdit::keyPressEvent(event);
        if (hasFocus()) // who listens may have taken it
            startTyping();
        return;
    case Qt::Key_Escape:
        if (m_typing && text() != locale().toString(m_value, 'f', m_decimals)) {
            m_typing = false;
            startTyping();
            return;
        }
        event->ignore();
        return;
    default:
        if (!event->text().isEmpty() && event->text().at(0).isPrint())
            startTyping();
        ZTEdit::keyPressEvent(event);
    }
}

void DoubleEdit::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !m_typing && !isReadOnly()) {
        m_pressed = true;
        m_dragging = false;
        m_dragStart = event->globalPosition().toPoint();
        m_dragValue = m_value;
        return;
    }
    ZTEdit::mousePressEvent(event);
}

void DoubleEdit::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_pressed) {
        ZTEdit::mouseMoveEvent(event);
        return;
    }
    const int pixels = event->globalPosition().toPoint().x() - m_dragStart.x();
    if (!m_dragging && qAbs(pixels) < QApplication::startDragDistance())
        return;
    m_dragging = true;
    double target = m_dragValue + pixels / pixelsPerStep * m_step;
    if (configurationValue(DRAGGER_ROUND_TO_STEP_SIZE).toBool())
        target = std::round(target / m_step) * m_step;
    edit(target);
}

void DoubleEdit::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_pressed) {
        ZTEdit::mouseReleaseEvent(event);
        return;
    }
    m_pressed = false;
    if (!m_dragging)
        startTyping();
    m_dragging = false;
}

void DoubleEdit::wheelEvent(QWheelEvent* event)
{
    if (hasFocus() && !isReadOnly() && event->angleDelta().y() != 0) {
        commit();
        edit(rounded(m_value + (event->angleDelta().y() > 0 ? m_step : -m_step), m_decimals));
        startTyping();
        return;
    }
    event->ignore();
}

QSize DoubleEdit::sizeHint() const
{
    QSize size = ZTEdit::sizeHint();
    const QString widest = QStringLiteral("0000") + (m_unit.isEmpty() ? QString() : u' ' + m_unit);
    size.setWidth(fontMetrics().horizontalAdvance(widest) +
                  m_decimals * fontMetrics().horizontalAdvance(u'0') + 28);
    return size;
}

} // namespace vantrel
