#pragma once

#include <QObject>

class QKeyEvent;
class QWidget;

namespace vantrel {

/// Decides what Space is for in the main window: it presses the button that has the focus only when the focus
/// came by Tab. After a click the operator's hand is on the mouse, and Space belongs to the transport.
class KeyboardFocus : public QObject
{
    Q_OBJECT

public:
    /// Watches the whole application for as long as it lives; the rule holds in the window alone.
    explicit KeyboardFocus(QWidget* window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onFocusIn(Qt::FocusReason reason);
    bool isPlainSpace(const QKeyEvent* event) const;

    QWidget* m_window;
    bool m_byTab = false;
};

} // namespace vantrel
