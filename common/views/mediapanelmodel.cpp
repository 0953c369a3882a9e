#include "common/views/mediapanelmodel.h"

#include "common/media/models/medialibrarymodel.h"

#include <QUrl>

namespace vantrel {

MediaPanelModel::MediaPanelModel(MediaLibraryModel* model, QObject* parent)
    : SortedLibraryModel(model, parent)
{
}

void MediaPanelModel::setSearchText(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (m_searchText == trimmed)
        return;
    m_searchText = trimmed;
    invalidate(); // all at once: told row by row, a few matches among thousands take seconds
}

bool MediaPanelModel::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    if (!SortedLibraryModel::filterAcceptsRow(row, parent))
        return false;
    if (!parent.isValid())
        return true;
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    const QUrl url = index.data(MediaLibraryModel::UrlRole).toUrl();
    if (url.isEmpty() || m_searchText.isEmpty())
        return !url.isEmpty();
    // A lone "4" means no ".mp4": the extension counts only in a text that asks for one.
    const QString name = url.fileName();
    const QString file = m_searchText.contains(u'.') ? name : name.section(u'.', 0, -2);
    return QString::number(row).startsWith(m_searchText) ||
           index.data(MediaLibraryModel::NameRole).toString().contains(m_searchText, Qt::CaseInsensitive) ||
           file.contains(m_searchText, Qt::CaseInsensitive);
}

} // namespace vantrel
