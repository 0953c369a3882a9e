// What is dropped on the list: rows of its own, media of the file browsers, files of this computer.
#include "common/import/dropsettler.h"
#include "common/import/mediaarrivals.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/views/arrivalstrip.h"
#include "common/views/mediapanelmodel.h"
#include "common/views/mediapanelwidget.h"
#include "common/views/slotlistview.h"

#include <QMimeData>
#include <QUrl>
#include <QVBoxLayout>

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
    const int end = beforeRow < rows ? numberAt(beforeRow) : last + 1;
    // The first number in the gap that holds no media; a search may hide some that do.
    int to = beforeRow > 0 ? numberAt(beforeRow - 1) + 1 : 1;
    const QModelIndex collection = m_library->collectionIndex(selectedCollection());
    while (to < end &&
           !m_library->index(to, 0, collection).data(MediaLibraryModel::UrlRole).toUrl().isEmpty())
        ++to;
    if (to < end && to != from && isEditable())
        m_manager->moveSlot(selectedCollection(), from, to);
}

void MediaPanelWidget::setDrops(MediaSlotDropHandler* handler, MediaArrivals* arrivals)
{
    m_drops = handler;
    m_arrivals = arrivals;
    m_strip = new ArrivalStrip(arrivals, this);
    static_cast<QVBoxLayout*>(layout())->addWidget(m_strip);
    m_strip->setCollection(selectedCollection());
    connect(m_view, &SlotListView::dropAimed, this, &MediaPanelWidget::showDrop);
    connect(m_view, &SlotListView::mediaDropped, this, &MediaPanelWidget::drop);
    updateEditable();
}

/// That behind the row above the gap.
int MediaPanelWidget::numberBefore(int row) const
{
    const QModelIndex above = m_model->index(row - 1, 0, m_view->rootIndex());
    return above.isValid() ? above.data(MediaLibraryModel::NumberRole).toInt() + 1 : 1;
}

void MediaPanelWidget::showDrop(qsizetype count, int beforeRow)
{
    const int first = DropSettler::freeRun(*m_manager, selectedCollection(), numberBefore(beforeRow),
                                           static_cast<int>(count));
    if (first < 0)
        m_view->showDrop(beforeRow, tr("No room in this collection"));
    else
        m_view->showDrop(rowOf(first), count == 1 ? tr("Add as %1").arg(first)
                                                  : tr("Add as %1 to %2").arg(first).arg(first + count - 1));
}

/// Before which a slot of the number would stand.
int MediaPanelWidget::rowOf(int number) const
{
    const QModelIndex root = m_view->rootIndex();
    int low = 0;
    for (int high = m_model->rowCount(root); low < high;) {
        const int middle = (low + high) / 2;
        if (m_model->index(middle, 0, root).data(MediaLibraryModel::NumberRole).toInt() < number)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

void MediaPanelWidget::drop(const QMimeData* data, int beforeRow)
{
    if (!isEditable())
        return;
    const int slot = numberBefore(beforeRow);
    if (!data->hasUrls()) {
        m_drops->dropMimeData(data, selectedCollection(), slot);
        return;
    }
    QStringList paths;
    for (const QUrl& url : data->urls())
        paths.append(url.toLocalFile());
    m_arrivals->add(paths, selectedCollection(), slot);
}

} // namespace vantrel
