#include "tests/ombra/display/virtualscreen.h"

#include "tests/ombra/display/xconnection.h"

namespace vantrel::test {

struct VirtualScreen::Connection : XConnection
{
    using XConnection::XConnection;
};

VirtualScreen::VirtualScreen(QSize size)
    : m_size(size)
{
}

VirtualScreen::~VirtualScreen()
{
    end();
}

bool VirtualScreen::start()
{
    m_server.setStandardErrorFile(QProcess::nullDevice());
    QStringList arguments{QStringLiteral("-displayfd"), QStringLiteral("1"),
                          QStringLiteral("-screen"),    QStringLiteral("0"),
                          QStringLiteral("-nolisten"),  QStringLiteral("tcp")};
    arguments.insert(4, QStringLiteral("%1x%2x24").arg(m_size.width()).arg(m_size.height()));
    if (!m_name.isEmpty())
        arguments.prepend(m_name);
    m_server.start(QStringLiteral("Xvfb"), arguments);
    while (!m_server.canReadLine()) {
        if (!m_server.waitForReadyRead(20000))
            return false;
    }
    m_name = u':' + QString::fromLatin1(m_server.readLine().trimmed());
    m_connection = std::make_unique<Connection>(m_name);
    return m_connection->display != nullptr;
}

void VirtualScreen::end()
{
    m_connection.reset();
    m_server.terminate();
    m_server.waitForFinished();
}

QImage VirtualScreen::grab() const
{
    return m_connection->grab(QRect(QPoint(), m_size));
}

} // namespace vantrel::test
