#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

namespace vantrel {

/// Brings what a widget shows up to date: once for all changes of one turn of the event loop, and while
/// nobody sees the widget not before it is shown. Of the widget, whose child it is; main thread.
class SeenUpdate : public QObject
{
    Q_OBJECT

public:
    SeenUpdate(QWidget* widget, std::function<void()> update);

    void ask();
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void run();

    QWidget* m_widget;
    std::function<void()> m_update;
    QTimer m_soon;
    bool m_isDue = false;
};

} // namespace vantrel
