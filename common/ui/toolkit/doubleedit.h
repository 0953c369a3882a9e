#pragma once

#include "common/ui/toolkit/ztedit.h"

#include <QPoint>

#include <optional>

namespace vantrel {

/// A number with a unit in one field: type it, step it with the arrow keys (Shift: ten steps), or drag it
/// sideways. Whatever is entered is limited to the range. A drag rounds to multiples of the step when the
/// option DRAGGER_ROUND_TO_STEP_SIZE is on. What is typed counts on Return or when the focus leaves; nonsense
/// and Escape bring the last value back.
class DoubleEdit : public ZTEdit
{
    Q_OBJECT
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit DoubleEdit(QWidget* parent = nullptr);
    DoubleEdit(double minimum, double maximum, const QString& unit, QWidget* parent = nullptr);

    double value() const { return m_value; }
    double minimum() const { return m_minimum; }
    double maximum() const { return m_maximum; }
    /// The unlimited range at first; maximum below minimum counts as minimum.
    void setRange(double minimum, double maximum);
    void setUnit(const QString& unit);
    /// Decimals shown; 1 at first. Typed values are rounded to them.
    void setDecimals(int decimals);
    /// What a key, or a notch of the wheel, changes; 0.1 at first.
    void setStep(double step) { m_step = step; }

public Q_SLOTS:
    /// Limits to the range; a value that is no number is ignored.
    void setValue(double value);
    /// Takes what is typed, as when the focus leaves. Text that stands as it was shown changes nothing, not
    /// even the decimals that it does not show.
    void commit();

Q_SIGNALS:
    /// Any change of the value.
    void valueChanged(double value);
    /// A change by the operator alone, after valueChanged.
    void valueEdited(double value);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    QSize sizeHint() const override;

private:
    void startTyping();
    void showValue();
    std::optional<double> parsed(const QString& text) const;
    void edit(double value);

    double m_value = 0.0;
    double m_minimum;
    double m_maximum;
    int m_decimals = 1;
    double m_step = 0.1;
    QString m_unit;
    bool m_typing = false;
    bool m_pressed = false;
    bool m_dragging = false;
    QPoint m_dragStart;
    double m_dragValue = 0.0;
};

} // namespace vantrel
