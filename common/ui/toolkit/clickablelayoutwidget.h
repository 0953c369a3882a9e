#pragma once

#include <QWidget>

namespace vantrel {

/// A group of widgets that acts as one button: a click anywhere on it, or Return or Space while it has the
/// focus.
class ClickableLayoutWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ClickableLayoutWidget(QWidget* parent = nullptr);
    void setObjectNames(const QString& base);

Q_SIGNALS:
    void clicked();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool m_pressed = false;
};

} // namespace vantrel
