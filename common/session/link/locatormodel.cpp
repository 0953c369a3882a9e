#include "common/session/link/locatormodel.h"

#include "common/media/address/showntext.h"
#include "common/session/link/locatorthread.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>
#include <tuple>

namespace vantrel {

namespace {

/// A tip that is plain text, whatever stands in it.
QString asTip(const QString& text)
{
    return QStringLiteral("<p>") + text.toHtmlEscaped() + QStringLiteral("</p>");
}

QString attribute(const NetworkPeer& peer, const char* name)
{
    const auto found = peer.attributes.find(name);
    return found == peer.attributes.end() ? QString() : shownText(QString::fromStdString(found->second));
}

/// As numbers, so that 10.0.0.9 stands before 10.0.0.10.
bool isBefore(const NetworkPeer& one, const NetworkPeer& other)
{
    boost::system::error_code ignored; // what is no address stands first
    const auto key = [&ignored](const NetworkPeer& peer) {
        return std::tuple<boost::asio::ip::address, const std::string&, const discovery::Attributes&>(
            boost::asio::ip::make_address(peer.address, ignored), peer.address, peer.attributes);
    };
    return key(one) < key(other);
}

} // namespace

LocatorModel::LocatorModel(QObject* parent, quint16 searchPort)
    : QAbstractTableModel(parent)
    , m_thread(std::make_unique<LocatorThread>(searchPort))
{
    connect(m_thread.get(), &LocatorThread::updated, this, &LocatorModel::onPeersUpdated);
    m_thread->start();
}

LocatorModel::~LocatorModel()
{
    m_thread->requestInterruption();
    m_thread->wait();
}

void LocatorModel::setLinkPort(quint16 port)
{
    beginResetModel();
    m_linkPort = port;
    endResetModel();
}

int LocatorModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_peers.size());
}

int LocatorModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString LocatorModel::otherPort(const NetworkPeer& peer) const
{
    const QString port = attribute(peer, "link");
    return port == QString::number(m_linkPort) ? QString() : port;
}

QString LocatorModel::text(const NetworkPeer& peer, int column) const
{
    switch (column) {
    case AddressColumn:
        return QString::fromStdString(peer.address);
    case VersionColumn:
        return attribute(peer, "version");
    case NameColumn:
        return attribute(peer, "name");
    default:
        break;
    }
    if (const QString port = otherPort(peer); !port.isEmpty())
        return tr("not by these ports: its link has %1").arg(port);
    const QString program = attribute(peer, "program");
    const QString state = attribute(peer, "state");
    return program.isEmpty()                  ? QString()
           : state == QStringLiteral("pause") ? tr("%1 (paused)").arg(program)
           : state == QStringLiteral("stop")  ? tr("%1 (stopped)").arg(program)
                                              : program;
}

QVariant LocatorModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const NetworkPeer& peer = m_peers[static_cast<std::size_t>(index.row())];
    const QString shown = text(peer, index.column());
    if (role == Qt::ToolTipRole && !otherPort(peer).isEmpty())
        return asTip(tr("Its link has port %1. Start Halcyra with the ports of this server to connect to it.")
                         .arg(otherPort(peer)));
    if (shown.isEmpty())
        return {};
    return role == Qt::DisplayRole   ? QVariant(shown)
           : role == Qt::ToolTipRole ? QVariant(asTip(shown))
                                     : QVariant();
}

QVariant LocatorModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    const QString names[ColumnCount] = {tr("Address"), tr("Version"), tr("Name"), tr("On program")};
    return section >= 0 && section < ColumnCount ? names[section] : QVariant();
}

Qt::ItemFlags LocatorModel::flags(const QModelIndex& index) const
{
    const bool isOther =
        index.isValid() && !otherPort(m_peers[static_cast<std::size_t>(index.row())]).isEmpty();
    return isOther ? Qt::ItemNeverHasChildren : QAbstractTableModel::flags(index);
}

void LocatorModel::setPeers(std::vector<NetworkPeer> peers)
{
    std::ranges::sort(peers, isBefore);
    if (peers == m_peers)
        return;
    beginResetModel();
    m_peers = std::move(peers);
    endResetModel();
}

void LocatorModel::onPeersUpdated()
{
    setPeers(m_thread->peers());
}

} // namespace vantrel
