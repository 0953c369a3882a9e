#pragma once

#include "common/session/settings/serverports.h"
#include "tarn/discovery/networklocator.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

namespace vantrel {

class LocatorThread;

/// The servers found on the network, by address. The search runs for as long as the model lives. A server
/// whose link has another port than the one that is connected to can be seen and not be chosen, and says why
/// in the place of its program: its other ports are told by nobody.
class LocatorModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { AddressColumn, VersionColumn, NameColumn, ProgramColumn, ColumnCount };

    explicit LocatorModel(QObject* parent, quint16 searchPort = discovery::port);
    ~LocatorModel() override;

    /// The port of the link that an address is connected to; the product's at first.
    void setLinkPort(quint16 port);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Takes the peers over; the model is reset only when they differ from the present ones in more than
    /// order.
    void setPeers(std::vector<NetworkPeer> peers);

public Q_SLOTS:
    void onPeersUpdated();

private:
    QString text(const NetworkPeer& peer, int column) const;
    /// Empty when it is the port that is connected to.
    QString otherPort(const NetworkPeer& peer) const;

    std::unique_ptr<LocatorThread> m_thread;
    std::vector<NetworkPeer> m_peers;
    quint16 m_linkPort = ServerPorts().link;
};

} // namespace vantrel
