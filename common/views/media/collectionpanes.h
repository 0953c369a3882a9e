#pragma once

#include "common/views/collectionnumbers.h"
#include "common/views/media/slotgridmodel.h"

#include <QAbstractListModel>

#include <memory>
#include <vector>

namespace vantrel {

/// The collections that stand side by side in the MEDIA tab ("collectionPanes"), from left to right: each has
/// its slots, and one is what the keys and the list of collections mean. At least one. Kept in the settings.
/// Each stays with its collection when that gets another number. The view owns it; main thread only.
class CollectionPanes : public QAbstractListModel
{
    Q_OBJECT
    Q_MOC_INCLUDE("common/media/models/medialibrarymodel.h")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY currentChanged)
    /// The slots of the current one.
    Q_PROPERTY(vantrel::SlotGridModel* slotModel READ slotModel NOTIFY currentChanged)
    /// Grows with every change of what shows() tells.
    Q_PROPERTY(int revision READ revision NOTIFY shownChanged)

public:
    static constexpr int SlotModelRole = 257;
    static constexpr int most = 4;

    /// The library and the numbers must outlive this.
    CollectionPanes(MediaLibraryModel* library, CollectionNumbers& numbers, SlotGridModel::IsUsed isUsed,
                    QObject* parent = nullptr);
    ~CollectionPanes() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return static_cast<int>(m_panes.size()); }
    int current() const { return m_current; }
    void setCurrent(int pane);
    SlotGridModel* slotModel() const { return m_panes[static_cast<std::size_t>(m_current)].model.get(); }
    int revision() const { return m_revision; }

    /// Whether one of them shows the collection.
    Q_INVOKABLE bool shows(int collection) const;
    /// Shows the collection right of the current one, which it becomes; nothing where there are most already.
    Q_INVOKABLE void open(int collection);
    /// Nothing for the last one.
    Q_INVOKABLE void close(int pane);

public Q_SLOTS:
    /// What the playlists play has changed.
    void refreshUse();

Q_SIGNALS:
    void countChanged();
    void currentChanged();
    void shownChanged();
    /// The collection of the current pane has another number: whoever chose it is to choose that one.
    void currentRenumbered(int collection);

private:
    struct Pane
    {
        std::unique_ptr<SlotGridModel> model;
        CollectionNumbers::Number number;
    };

    Pane makePane(int collection);
    void follow(const SlotGridModel* model);
    void renumber();
    void noteShown();

    MediaLibraryModel* m_library;
    CollectionNumbers& m_numbers;
    SlotGridModel::IsUsed m_isUsed;
    std::vector<Pane> m_panes;
    int m_current = 0;
    int m_revision = 0;
};

} // namespace vantrel
