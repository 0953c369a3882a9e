#pragma once

#include <QObject>
#include <QTimer>

namespace vantrel {

/// A turn of the event loop for a piece of work that has been cut up. All of them in the process take their
/// turns one after the other, never two in the same one: each alone is short enough for the window, and
/// several together are not. The owner goes on by asking again. Main thread.
class Turn : public QObject
{
    Q_OBJECT

public:
    explicit Turn(QObject* parent = nullptr);
    ~Turn() override;

    /// Behind those that have asked already; nothing where it has.
    void ask();
    void stop();
    bool isAsked() const;

Q_SIGNALS:
    void come();

private:
    void take();

    QTimer m_timer; // runs while this is the next one
};

} // namespace vantrel
