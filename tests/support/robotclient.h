#pragma once

#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <memory>

class QTcpSocket;

namespace vantrel::test {

/// Drives a running halcyra through its UI test server, by object name, as an operator would. Blocking; each
/// request waits for its reply with a limit.
class RobotClient
{
public:
    RobotClient();
    ~RobotClient();

    bool connectTo(quint16 port);
    /// The reply to a raw request; empty when none came within 10 s.
    QJsonArray ask(const QJsonObject& request);

    /// The widget, menu action or cell of that name; empty when there is none.
    QJsonObject find(const QString& objectName);
    /// Waits until the named thing is visible; empty after the limit.
    QJsonObject waitFor(const QString& objectName, int msLimit = 15000);
    QString text(const QString& objectName);

    bool click(const QString& objectName);
    bool doubleClick(const QString& objectName);
    /// A point of the widget at a share of its width, 0 to 1, and at half its height; empty when there is
    /// none.
    QJsonObject pointOf(const QString& objectName, double share);
    /// A mouse operation ("click", "drag_start", "drag_move", ...) at the place of what was found.
    bool mouse(const QString& operation, const QJsonObject& target);
    bool mouseAt(const QString& operation, const QString& objectName, double share)
    {
        return mouse(operation, pointOf(objectName, share));
    }
    /// A cell of an item view, "<view>-row<row>-col<column>", once it is there.
    bool doubleClickCell(const QString& view, int row, int column, int msLimit = 15000);
    bool clickCell(const QString& view, int row, int column);
    QJsonArray cells(const QString& view);
    /// Clicks the entry of an open menu.
    bool clickMenuEntry(const QString& menu, const QString& text);
    void key(const QString& keyName);
    void type(const QString& text);

    /// What the named widget shows now, and the texts of the labels in it by their names.
    struct Drawing
    {
        QImage picture; // null when it is not there
        QJsonObject texts;
    };
    Drawing draw(const QString& objectName);
    QImage grab(const QString& objectName) { return draw(objectName).picture; }
    /// Figures that the application keeps of itself: "longestStallMs" of the main thread, "longestOwnStallMs"
    /// without waiting for other programs, "previewPictures" since the start or the last reset,
    /// "mainThreadCpuMs" since the start.
    QJsonObject figures(bool reset = false);
    /// Ends the watch for stalls until the next reset: it costs a tick each millisecond.
    void restFigures();

private:
    QJsonObject waitForCell(const QString& view, int row, int column, int msLimit);

    std::unique_ptr<QTcpSocket> m_socket;
};

} // namespace vantrel::test
