#pragma once

#include <QImage>
#include <QProcess>
#include <QString>

#include <memory>

namespace vantrel::test {

/// A screen that nobody sees, and a look at what stands on it. The thread that made it.
class VirtualScreen
{
public:
    explicit VirtualScreen(QSize size);
    ~VirtualScreen();

    /// False where there is no program that makes such screens. After an end it has its name again.
    bool start();
    /// Ends it as a desktop ends, under the windows that stand on it.
    void end();
    /// As DISPLAY names it.
    QString name() const { return m_name; }
    QImage grab() const;

private:
    struct Connection;

    const QSize m_size;
    QString m_name;
    QProcess m_server;
    std::unique_ptr<Connection> m_connection;
};

} // namespace vantrel::test
