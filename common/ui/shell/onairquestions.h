#pragma once

#include <QObject>

#include <functional>

namespace vantrel {

class ConfirmationDialog;
class Session;

/// Asks before what an audience would notice: while program plays or holds a picture, or where it cannot be
/// taken back. Each question says what will happen. Owned by the main window.
class OnAirQuestions : public QObject
{
    Q_OBJECT

public:
    /// session: whose program it is. window: over which the questions open. Both must outlive this.
    OnAirQuestions(Session* session, QWidget* window);

    /// Paused and held at the end are on air as well; stopped is black.
    bool isProgramOnAir() const;
    /// The name of what program plays, in quotes; empty where it has none.
    QString programName() const;

    /// At once unless program is on air.
    void beforeDisconnect(std::function<void()> act);
    /// Always.
    void beforeReboot(std::function<void()> act);

    /// What another show does to program: sentences with a blank behind them, empty where program is not
    /// on air.
    QString beforeAnotherShow() const;
    /// The same of an import that leaves the players alone, and of a show that is cleared.
    QString beforeImport() const;
    QString beforeClear() const;

    /// A question with its yes. over: null for the window.
    ConfirmationDialog* ask(const QString& title, const QString& text, const QString& yes,
                            const QString& name, std::function<void()> act, QWidget* over = nullptr);

private:
    bool isPlaying() const;
    QString onAir() const;

    Session* m_session;
    QWidget* m_window;
};

} // namespace vantrel
