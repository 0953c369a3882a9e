#pragma once

#include <QObject>
#include <QTimer>

class QWidget;

namespace vantrel {

/// Tells that what is to stay free under pop-ups may lie elsewhere by now: a splitter was moved, a list has
/// taken the room of another. Owned by the window; main thread.
class UncoveredWatch : public QObject
{
    Q_OBJECT

public:
    explicit UncoveredWatch(QWidget* window);

    /// Looks anew at what there is.
    void follow();

Q_SIGNALS:
    /// Once for all that moves in one turn.
    void moved();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window;
    QTimer m_turn;
};

} // namespace vantrel
