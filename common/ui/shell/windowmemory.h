#pragma once

#include <QObject>
#include <QTimer>

class QMainWindow;

namespace vantrel {

/// Keeps in the settings how the operator left the window: its size and place, whole screen or not. Brings it
/// back at the next start, the whole of it, frame included, on the screen; where the operator moves it from
/// there, it stays. Owned by the window; main thread.
class WindowMemory : public QObject
{
    Q_OBJECT

public:
    /// Restores the window, which is not shown yet; without anything kept it takes the size given (pixels),
    /// as far as the screen has it.
    WindowMemory(QMainWindow* window, QSize usual);

    void toggleFullScreen();
    /// The tab that was open last, or the one given; kept from then on by keepTab().
    int tab(int usual) const;
    void keepTab(int tab);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void save();
    void fit();

    QMainWindow* m_window;
    QTimer m_rest;         // until a drag of the frame is over
    bool m_mustFit = true; // since it was shown
};

} // namespace vantrel
