#pragma once

#include "tarn/discovery/networklocator.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

namespace vantrel {

class LocatorThread;

/// The servers found on the network, by address: column 0 the address, column 1 the version. The search runs
/// for as long as the model lives.
class LocatorModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit LocatorModel(QObject* parent);
    ~LocatorModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Takes the peers over; the model is reset only when they differ from the present ones in more than
    /// order.
    void setPeers(std::vector<NetworkPeer> peers);

public Q_SLOTS:
    void onPeersUpdated();

private:
    std::unique_ptr<LocatorThread> m_thread;
    std::vector<NetworkPeer> m_peers;
};

} // namespace vantrel
