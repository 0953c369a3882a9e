// What the media panel does with the slots that are chosen in it.

#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/edit/mediasloteditfunctional.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztmenu.h"
#include "common/views/mediapanelmodel.h"
#include "common/views/mediapanelwidget.h"
#include "common/views/slotclipboard.h"
#include "common/views/slotdrops.h"
#include "common/views/slotlistview.h"
#include "common/views/slotmove.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

#include <QAction>

#include <algorithm>
#include <array>

namespace vantrel {

void MediaPanelWidget::moveSlot(const QModelIndex& source, int beforeRow)
{
    const QModelIndex root = m_view->rootIndex();
    const auto numberAt = [this, &root](int row) {
        return m_model->index(row, 0, root).data(MediaLibraryModel::NumberRole).toInt();
    };
    const int from = source.data(MediaLibraryModel::NumberRole).toInt();
    const int rows = m_model->rowCount(root);
    const int last = m_manager->lastSlotInCollection(selectedCollection());
    // A place begins with a number that is free; the row above ends with one that is not.
    const auto isPlace = [this, &root](int row) {
        return !m_model->index(row, 0, root).data(MediaPanelModel::PlaceRole).toString().isEmpty();
    };
    const int end = beforeRow < rows ? numberAt(beforeRow) + (isPlace(beforeRow) ? 1 : 0) : last + 1;
    // The first number in the gap that holds no media; a search may hide some that do.
    int to = beforeRow > 0 ? numberAt(beforeRow - 1) + (isPlace(beforeRow - 1) ? 0 : 1) : 1;
    const QModelIndex collection = m_library->collectionIndex(selectedCollection());
    while (to < end &&
           !m_library->index(to, 0, collection).data(MediaLibraryModel::UrlRole).toUrl().isEmpty())
        ++to;
    if (to < end && to != from && isEditable())
        m_manager->moveSlot(selectedCollection(), from, to);
}

QList<int> MediaPanelWidget::selectedSlots() const
{
    QList<int> numbers;
    if (!m_view->selectionModel())
        return numbers;
    for (const QModelIndex& index : m_view->selectionModel()->selectedIndexes())
        numbers.append(index.data(MediaLibraryModel::NumberRole).toInt());
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

QList<QString> MediaPanelWidget::selectedMedia() const
{
    QList<QString> urls;
    for (const int number : selectedSlots())
        urls.append(media::MediaUtils::toSlotAddress(selectedCollection(), number));
    return urls;
}

void MediaPanelWidget::clearSelectedSlots()
{
    const QList<int> numbers = selectedSlots();
    if (!numbers.isEmpty() && isEditable())
        MediaSlotEditFunctional::clearSlots(selectedCollection(), numbers);
}

void MediaPanelWidget::showSlotMenu(const QPoint& position)
{
    const QModelIndex index = m_view->indexAt(position);
    if (!index.isValid())
        return;
    auto* menu = new ZTMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectNames(QStringLiteral("MediaPanel-slot-menu"));
    if (index.data(MediaPanelModel::PlaceRole).toString().isEmpty())
        addSlotEntries(menu, index);
    QAction* paste = menu->addEntry(QStringLiteral("paste"), tr("Paste"));
    paste->setShortcut(Hotkeys::current(QStringLiteral("paste")));
    paste->setEnabled(isEditable());
    connect(paste, &QAction::triggered, this,
            [this, kept = QPersistentModelIndex(index)] { pasteBehind(kept); });
    menu->popup(m_view->viewport()->mapToGlobal(position));
}

void MediaPanelWidget::addSlotEntries(ZTMenu* menu, const QModelIndex& index)
{
    const QPersistentModelIndex kept = index;
    QAction* cue = menu->addEntry(QStringLiteral("mc_play"), tr("Play on preview"));
    cue->setShortcut(Hotkeys::current(QStringLiteral("cue")));
    connect(cue, &QAction::triggered, this, [this, kept] { onActivated(kept); });
    QAction* insert = menu->addEntry(QStringLiteral("insert_after"), tr("Add to the playlist"));
    insert->setShortcut(Hotkeys::current(QStringLiteral("insert_media")));
    connect(insert, &QAction::triggered, this, [this] { Q_EMIT mediaInsertRequested(selectedMedia()); });
    menu->addSeparator();
    QAction* rename = menu->addEntry(QStringLiteral("edit"), tr("Rename"));
    rename->setShortcut(Hotkeys::current(QStringLiteral("rename")));
    connect(rename, &QAction::triggered, this, [this, kept] { m_view->edit(kept); });
    QMenu* scaling = menu->addMenu(tr("Scaling"));
    const auto current = static_cast<ScaleMode>(index.data(MediaLibraryModel::ScaleModeRole).toInt());
    const MediaAddress slot(selectedCollection(), index.data(MediaLibraryModel::NumberRole).toInt());
    static constexpr std::array modes{ScaleMode::Default,  ScaleMode::Fit,        ScaleMode::Clip,
                                      ScaleMode::Stretch,  ScaleMode::Centered,   ScaleMode::TopLeft,
                                      ScaleMode::TopRight, ScaleMode::BottomLeft, ScaleMode::BottomRight};
    for (const ScaleMode mode : modes) {
        QAction* action = scaling->addAction(scaleModeToPrettyString(mode));
        action->setCheckable(true);
        action->setChecked(mode == current);
        connect(action, &QAction::triggered, this,
                [slot, mode] { MediaSlotEditFunctional::setScalingMode(slot, mode); });
    }
    menu->addSeparator();
    QAction* clear = menu->addEntry(QStringLiteral("trash"), tr("Clear"));
    clear->setShortcut(Hotkeys::current(QStringLiteral("delete")));
    connect(clear, &QAction::triggered, this, &MediaPanelWidget::clearSelectedSlots);
    menu->addSeparator();
    QAction* move = menu->addEntry({}, tr("Move to ..."));
    move->setShortcut(Hotkeys::current(QStringLiteral("move_slots")));
    connect(move, &QAction::triggered, this, &MediaPanelWidget::askForMove, Qt::QueuedConnection);
    QAction* cut = menu->addEntry({}, tr("Cut"));
    cut->setShortcut(Hotkeys::current(QStringLiteral("cut")));
    connect(cut, &QAction::triggered, this, [this] { copySelected(true); });
    QAction* copy = menu->addEntry(QStringLiteral("copy"), tr("Copy"));
    copy->setShortcut(Hotkeys::current(QStringLiteral("copy")));
    connect(copy, &QAction::triggered, this, [this] { copySelected(false); });
    for (QAction* action : {insert, rename, scaling->menuAction(), clear, move, cut})
        action->setEnabled(isEditable());
}

void MediaPanelWidget::askForMove()
{
    const QList<int> numbers = selectedSlots();
    if (numbers.isEmpty() || !isEditable())
        return;
    // The question goes by its own collection, whatever number that gets meanwhile.
    const QDialog* dialog = askWhereToMove(m_drops, m_library, selectedCollection(), numbers, this);
    connect(
        dialog, &QDialog::finished, this, [this] { m_drops->setCollection(selectedCollection()); },
        Qt::QueuedConnection);
}

void MediaPanelWidget::copySelected(bool isCut)
{
    if (!isCut || isEditable())
        copySlots(*m_library, selectedCollection(), selectedSlots(), isCut);
}

/// On a place, or behind a slot.
void MediaPanelWidget::pasteBehind(const QModelIndex& index)
{
    if (!isEditable() || selectedCollection() < 0)
        return;
    const bool isPlace = !index.data(MediaPanelModel::PlaceRole).toString().isEmpty();
    const int number = index.isValid()
                           ? index.data(MediaLibraryModel::NumberRole).toInt()
                           : m_library->slotBefore(selectedCollection(), MediaCollection::slotIndexMax + 1);
    pasteSlots(m_drops, isPlace ? number : std::max(number, 0) + 1);
}

} // namespace vantrel
