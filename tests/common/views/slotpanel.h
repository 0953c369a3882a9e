#pragma once

#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/views/mediapanelmodel.h"
#include "common/views/mediapanelwidget.h"
#include "common/views/slotlistview.h"
#include "tests/support/mediamirror.h"

#include <QComboBox>
#include <QLineEdit>

namespace vantrel::test {

/// Keeps what is asked of it as text. Every slot is there.
class PanelManager : public ImplMediaCollectionManager
{
public:
    bool holdsCollection(int) const override { return true; }
    bool isSlotOccupied(int, int) const override { return true; }
    bool copyCollection(int, int) override { return true; }
    void moveSlot(int collection, int from, int to) override
    {
        asked.append(QStringLiteral("move %1/%2 to %3").arg(collection).arg(from).arg(to));
    }

    std::optional<bool> moveSlots(int collection, const QList<int>& from, int to) override
    {
        for (const int slot : from)
            moveSlot(collection, slot, to++);
        return true;
    }

    QStringList asked;
};

struct Panel
{
    explicit Panel(const Ref<MediaLibrary>& library)
        : mirror(library)
        , widget(&mirror.model, &mirror.provider, &manager)
        , view(widget.findChild<SlotListView*>(QStringLiteral("MediaPanel-slots-view")))
        , chooser(widget.findChild<QComboBox*>(QStringLiteral("MediaPanel-collection-chooser")))
        , search(widget.findChild<QLineEdit*>(QStringLiteral("MediaPanel-search")))
    {
        widget.setConnected(true);
        widget.resize(300, 600);
    }

    /// The numbers of the listed slots, and the places between them.
    QString listed() const
    {
        QStringList numbers;
        const QAbstractItemModel* model = view->model();
        for (int row = 0; model && row < model->rowCount(view->rootIndex()); ++row)
            numbers.append(textOf(model->index(row, 0, view->rootIndex())));
        return numbers.join(u' ');
    }
    static QString textOf(const QModelIndex& index)
    {
        const QString place = index.data(MediaPanelModel::PlaceRole).toString();
        return place.isEmpty() ? index.data().toString() : u'[' + place + u']';
    }
    QModelIndex row(int row) const
    {
        return view->model()->index(row, MediaLibraryModel::NameColumn, view->rootIndex());
    }

    PanelManager manager;
    MediaMirror mirror;
    MediaPanelWidget widget;
    SlotListView* view;
    QComboBox* chooser;
    QLineEdit* search;
};

} // namespace vantrel::test
