#pragma once

#include <QAbstractTableModel>

#include <memory>

namespace vantrel {

class GUIShowConfiguration;

/// What the server does with its show when it starts, as one editable row of four columns. Shared; main
/// thread.
class ServerConfigurationModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column : int {
        AutoSaveColumn = 0,           // bool
        AutoStartShowColumn = 1,      // string
        AutoStartPlayStateColumn = 2, // string: "play", "pause", "stop"
        AutoStartShowListColumn = 3,  // string list; the server keeps it as text joined by ","
    };

    explicit ServerConfigurationModel(QObject* parent = nullptr);
    ~ServerConfigurationModel() override;

    /// Null leaves the model without a row.
    void setShowConfiguration(std::shared_ptr<GUIShowConfiguration> configuration);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Adds the name to the list of shows unless it is there.
    void addShow(const QString& name);
    void deleteShow(const QString& name);

public Q_SLOTS:
    void onReset();

private:
    QStringList shows() const;

    std::shared_ptr<GUIShowConfiguration> m_configuration;
};

} // namespace vantrel
