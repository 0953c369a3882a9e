#pragma once

#include <QImage>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace vantrel::test {

/// A desktop with two screens that nobody sees, and the hand that sets them up. The thread that made it.
class VirtualDesktop
{
public:
    static constexpr QSize screen{640, 360};

    VirtualDesktop();
    ~VirtualDesktop();

    /// False where the machine cannot make one: then there is a sentence why.
    bool start();
    QString trouble() const { return m_trouble; }
    /// As DISPLAY names it.
    QString name() const { return m_name; }
    QString outputName(int output) const;
    /// Shows part of the desktop on an output, in a mode of that name; an empty name switches it off.
    bool light(int output, const char* mode, QPoint at);
    /// What the display there says of itself.
    void setEdid(int output, const QByteArray& edid);
    /// Stops it where it is, or has it go on.
    void hang(bool isHanging);
    void end();
    QString modeOf(int output) const;
    QImage grab(const QRect& area) const;
    /// Moves the window that stands there.
    void moveWindow(QPoint at, QPoint to);
    /// Whether the window that stands there has the keyboard, or would take it.
    bool takesKeys(QPoint at) const;

private:
    struct Connection;

    unsigned long windowAt(QPoint at) const; // 0 for none
    const QTemporaryDir m_folder;
    QString m_name, m_trouble;
    QProcess m_server;
    std::unique_ptr<Connection> m_connection;
};

} // namespace vantrel::test
