#pragma once

#include <QMimeData>
#include <QPointer>
#include <QWidget>

#include <memory>

class QDrag;

namespace vantrel {

/// A drag that the robot leads itself. Where there is no screen the platform ends each drag as soon as it
/// begins; what was dragged is then brought to the widgets under the robot's mouse by the same events. One at
/// a time; main thread.
class ClickTestDrag
{
public:
    /// Takes over a drag that a mouse event has just begun, if one has.
    void takeOver();
    bool isGoingOn() const { return m_data != nullptr; }
    /// target: what is under the mouse; may be null.
    void move(QWidget* target, const QPoint& global);
    /// Lets go: a drop where the last move was accepted.
    void end(QWidget* target, const QPoint& global);

private:
    void leave();

    std::unique_ptr<QMimeData> m_data;
    Qt::DropActions m_actions;
    QPointer<QWidget> m_over;
    bool m_isAccepted = false;
};

} // namespace vantrel
