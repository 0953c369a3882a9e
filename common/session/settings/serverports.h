#pragma once

#include <QtGlobal>

namespace vantrel {

/// The TCP ports of the server's services and of the local UI test server. The defaults are the product's;
/// only the launcher's options change them.
struct ServerPorts
{
    quint16 http = 80;
    quint16 link = 11060;
    quint16 preview = 11061;
    quint16 ftp = 21;
    quint16 uiTest = 13370;
};

} // namespace vantrel
