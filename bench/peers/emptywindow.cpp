// The peer of "window/on-screen": what any Qt program with one declarative view pays before it can show
// itself.
#include <QApplication>
#include <QMainWindow>
#include <QQuickWidget>

#include <cstdio>

namespace {

class Window : public QMainWindow
{
    bool event(QEvent* event) override
    {
        const bool handled = QMainWindow::event(event);
        if (event->type() == QEvent::UpdateRequest || event->type() == QEvent::Paint) {
            std::puts("painted");
            std::fflush(stdout);
        }
        return handled;
    }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Window window;
    window.setCentralWidget(new QQuickWidget(&window));
    window.resize(1280, 720);
    window.show();
    return application.exec();
}
