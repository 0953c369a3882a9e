#pragma once

#include "common/media/library/turn.h"
#include "common/views/slotplace.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/ref.h"

#include <QAbstractListModel>

#include <compare>
#include <functional>
#include <vector>

namespace vantrel {

class MediaLibrary;
class MediaLibraryModel;

/// The slots of one collection that hold media and pass the filters, by number, for a declarative view; where
/// none are left out, what is free between and behind them stands there as places, which cannot be selected.
/// Follows the library's model, in turns of a few milliseconds. A number that holds another medium is another
/// row, so that no selection goes over to it. The view owns it; main thread only.
class SlotGridModel : public QAbstractListModel
{
    Q_OBJECT
    /// How many slots with media are shown.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// How many slots of the collection hold media.
    Q_PROPERTY(int total READ total NOTIFY countChanged)
    Q_PROPERTY(int collection READ collection WRITE setCollection NOTIFY collectionChanged)
    /// Whether the library has the collection, and its name.
    Q_PROPERTY(bool isThere READ isThere NOTIFY nameChanged)
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    /// A part of a name or of a file's name, case ignored, or the beginning of a slot's number.
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY filterChanged)
    /// Of media; below 0 for all.
    Q_PROPERTY(int kind READ kind WRITE setKind NOTIFY filterChanged)
    Q_PROPERTY(bool unusableOnly READ unusableOnly WRITE setUnusableOnly NOTIFY filterChanged)
    Q_PROPERTY(bool unusedOnly READ unusedOnly WRITE setUnusedOnly NOTIFY filterChanged)

public:
    enum Roles {
        KeyRole = 257, // the slot's number and its file as they were shown last: what a selection keeps
        SlotRole = 258,
        NameRole = 259,
        DurationRole = 260,
        ThumbnailRole = 261, // a QPixmap; nothing while there is none
        StateRole = 262,
        KindRole = 263,
        FaultsRole = 264,
        PlayableRole = 265,
        FileRole = 266,
        LastRole = 267,   // the last number of a place, or the slot's
        PlaceRole = 268,  // "5 – 20", of a place; empty for a slot with media
        SpokenRole = 269, // the place in words
    };

    /// Whether a playlist plays the slot.
    using IsUsed = std::function<bool(const MediaAddress&)>;

    /// The library must outlive this.
    explicit SlotGridModel(MediaLibraryModel* library, IsUsed isUsed, QObject* parent = nullptr);
    ~SlotGridModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    int count() const { return m_count; }
    int total() const { return m_total; }
    int collection() const { return m_collection; }
    void setCollection(int collection);
    bool isThere() const;
    QString name() const;
    const QString& searchText() const { return m_searchText; }
    void setSearchText(const QString& text);
    int kind() const { return m_kind; }
    void setKind(int kind);
    bool unusableOnly() const { return m_unusableOnly; }
    void setUnusableOnly(bool only);
    bool unusedOnly() const { return m_unusedOnly; }
    void setUnusedOnly(bool only);

    /// Of a place its first number; -1 for no such row.
    Q_INVOKABLE int slotAt(int row) const;
    /// Whether the row is one with media.
    Q_INVOKABLE bool isSlotAt(int row) const;
    /// The nearest row with media from there on, or before it; -1 for none.
    Q_INVOKABLE int nearestSlot(int row, bool isBefore) const;
    /// The number behind which what is dropped behind a row, or on a place, goes; 0 for no row.
    Q_INVOKABLE int numberBefore(int row) const;
    /// Of those rows.
    Q_INVOKABLE QList<int> slotsAt(const QList<int>& rows) const;
    /// The row of a slot with media; -1 where it is not shown.
    Q_INVOKABLE int rowOf(int slot) const;
    /// The row of the slot or of the place that has the number; -1 for none.
    Q_INVOKABLE int rowHolding(int slot) const;
    /// The first row whose slot has that number or a higher one; behind the last where there is none.
    Q_INVOKABLE int rowFrom(int slot) const;
    /// The slot whose number begins with the text, or the next from that row on whose name does; -1 for none.
    Q_INVOKABLE int findRow(const QString& text, int from) const;
    /// Where a view finds its picture; empty while there is none.
    QString pictureOf(int slot) const;
    /// The picture itself, asked for with what the server says of the file: whoever shows the one, tells of
    /// the other.
    QVariant thumbnailOf(int slot) const;
    /// Why the slot is not played, or not whole: a sentence a line, empty for one that plays.
    QString faultsOf(int slot) const;
    /// The row of the library's model, with the name in it; invalid for no such slot.
    QModelIndex sourceOf(int slot) const;

public Q_SLOTS:
    /// Looks through the collection again.
    void refresh();
    /// What the playlists play has changed.
    void refreshUse();

Q_SIGNALS:
    void countChanged();
    void collectionChanged();
    void nameChanged();
    void filterChanged();

private:
    struct Row
    {
        int first;
        int last;
        enum Kind { Media, Empty, Free } kind;

        friend auto operator<=>(const Row&, const Row&) = default;
    };
    using Rows = std::vector<Row>;

    void onDataChanged(const QModelIndex& first, const QModelIndex& last);
    void onLibraryAnew();
    void onRowsCame(const QModelIndex& parent);
    void leaveOthers(int first, int last);
    void replaceRows(int first, int last);
    QString keyOf(int slot) const;
    bool isAsShown(int slot) const;
    bool isFiltered() const;
    QVariant placeData(int row, int role) const;
    void lookAt(int slot);
    void scan();
    void take();
    bool takeByRow();
    QVariant sourceData(int slot, int role) const;
    bool holdsMedia(int slot) const;
    bool passes(int slot) const;
    void changeFilter();

    MediaLibraryModel* m_library;
    IsUsed m_isUsed;
    Ref<MediaLibrary> m_seen; // the slots of the collection as the rows have them
    Rows m_rows;              // ascending
    Rows m_found;
    Turn m_turn;
    int m_next = 0; // the slot at which the look goes on
    int m_holding = 0;
    int m_passing = 0;
    int m_count = 0;
    int m_total = 0;
    int m_collection = -1;
    QString m_searchText;
    int m_kind = -1;
    bool m_unusableOnly = false;
    bool m_unusedOnly = false;
};

} // namespace vantrel
