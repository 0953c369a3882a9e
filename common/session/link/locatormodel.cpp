#include "common/session/link/locatormodel.h"

#include "common/media/address/showntext.h"
#include "common/session/link/locatorthread.h"

#include <algorithm>

namespace vantrel {

LocatorModel::LocatorModel(QObject* parent)
    : QAbstractTableModel(parent)
    , m_thread(std::make_unique<LocatorThread>())
{
    connect(m_thread.get(), &LocatorThread::updated, this, &LocatorModel::onPeersUpdated);
    m_thread->start();
}

LocatorModel::~LocatorModel()
{
    m_thread->requestInterruption();
    m_thread->wait();
}

int LocatorModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_peers.size());
}

int LocatorModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant LocatorModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const NetworkPeer& peer = m_peers[static_cast<std::size_t>(index.row())];
    if (index.column() == 0)
        return QString::fromStdString(peer.address);
    const auto version = peer.attributes.find("version");
    return version == peer.attributes.end() ? QVariant() : shownText(QString::fromStdString(version->second));
}

QVariant LocatorModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return section == 0 ? tr("Address") : section == 1 ? tr("Version") : QVariant();
}

void LocatorModel::setPeers(std::vector<NetworkPeer> peers)
{
    std::ranges::sort(peers, {}, &NetworkPeer::address);
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
