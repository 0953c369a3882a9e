#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>

class QKeyEvent;
class QWidget;

namespace vantrel {

class Hotkeys;

/// One press of a key that acts on a channel is one action, however long it is held and however its contact
/// bounces: a window system may tell a held key as pairs of release and press, which look like new presses.
/// And the take reaches the player from every window of the application, dialogs included, unless what has
/// the focus takes the key for itself. Owned by the main window.
class PressGuard : public QObject
{
    Q_OBJECT

public:
    /// A press that follows the key's release by less, in milliseconds, is no new one.
    static constexpr qint64 bounce = 100;

    /// window: whose own shortcuts already hear the take.
    PressGuard(Hotkeys* hotkeys, QWidget* window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Key
    {
        bool isDown = false;
        bool isFresh = true; // of the last press
        qint64 downAt = -bounce;
        qint64 upAt = -bounce;
    };

    bool isGuarded(const QKeyEvent& event) const;
    qint64 timeOf(const QKeyEvent& event) const;
    bool isFresh(const QKeyEvent& event);
    bool isTakeElsewhere(QObject* watched, const QKeyEvent& event) const;

    Hotkeys* m_hotkeys;
    QWidget* m_window;
    QHash<int, Key> m_keys;
    QElapsedTimer m_clock; // for events that carry no time
};

} // namespace vantrel
