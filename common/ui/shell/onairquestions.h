#pragma once

#include <QObject>

#include <functional>

namespace vantrel {

class Session;

/// Asks before what an audience would notice: while program plays, or where it cannot be taken back. Each
/// question says what will happen. Owned by the main window.
class OnAirQuestions : public QObject
{
    Q_OBJECT

public:
    /// session: whose program it is. window: over which the questions open. Both must outlive this.
    OnAirQuestions(Session* session, QWidget* window);

    bool isProgramPlaying() const;
    /// The name of what program plays, in quotes; empty where it has none.
    QString programName() const;

    /// At once unless program plays.
    void beforeDisconnect(std::function<void()> act);
    /// Always.
    void beforeReboot(std::function<void()> act);

private:
    void ask(const QString& title, const QString& text, const QString& yes, const QString& name,
             std::function<void()> act);
    QString onAir() const;

    Session* m_session;
    QWidget* m_window;
};

} // namespace vantrel
