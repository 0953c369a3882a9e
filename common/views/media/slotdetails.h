#pragma once

#include "common/media/library/turn.h"
#include "common/media/models/singlemediamodel.h"
#include "common/views/media/shownslots.h"
#include "common/views/media/slotsummary.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace vantrel {

class MediaLibraryModel;
class SelectionModel;
class SlotGridModel;

/// What is known of the slots that are selected ("slotDetails"): all of one, of several what they come to,
/// counted in turns of a few milliseconds. The view owns it; main thread only.
class SlotDetails : public QObject
{
    Q_OBJECT
    Q_PROPERTY(vantrel::ShownSlots shown READ shown NOTIFY changed)

public:
    /// What it asks; all must outlive this, and whatever is not there is null.
    struct Sources
    {
        MediaLibraryModel* library = nullptr;
        MediaLibraryProvider* provider = nullptr;
        AbstractPlaylistProvider* playlists = nullptr;
        MediaDataAggregator* aggregator = nullptr;
    };

    explicit SlotDetails(const Sources& sources, QObject* parent = nullptr);

    const ShownSlots& shown() const { return m_shown; }
    /// Tells of what is selected there from now on, of slots that a SlotGridModel shows.
    Q_INVOKABLE void follow(vantrel::SelectionModel* selection);

Q_SIGNALS:
    void changed();

private:
    void followSlots();
    void onChange();
    void look();
    void showNone();
    void showOne();
    void showPicture(const QUrl& file);
    void count();
    QVariantList factsOfOne() const;
    QStringList twinsOf(const QUrl& file, int slot) const;

    Sources m_sources;
    SingleMediaModel m_one;
    QPointer<SelectionModel> m_selection;
    QPointer<SlotGridModel> m_slots; // among which is selected
    ShownSlots m_shown;
    QTimer m_soon; // what comes together is looked at once
    Turn m_turn;   // of counting
    SlotSummary m_summary;
    QList<int> m_rows; // that are counted
    qsizetype m_next = 0;
    bool m_isStale = false; // what is counted has changed meanwhile
};

} // namespace vantrel
