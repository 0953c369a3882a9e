#include "common/session/link/connectionprovider.h"

#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"

namespace vantrel {

ConnectionProvider::ConnectionProvider(QObject* parent)
    : QObject(parent)
{
    Session* session = Session::instance();
    if (session && session->connectionHandler())
        connect(session->connectionHandler(), &ConnectionHandler::connectionAddr, this,
                &ConnectionProvider::onAddressChange);
}

void ConnectionProvider::onAddressChange(const QString& address)
{
    m_hostAddress = address;
    Q_EMIT hostAddressChanged();
}

} // namespace vantrel
