#pragma once

#include "common/media/models/sortedlibrarymodel.h"

#include <QString>

namespace vantrel {

/// The slots of the media panel: those that hold media, and of them what the search text asks for.
class MediaPanelModel : public SortedLibraryModel
{
    Q_OBJECT

public:
    explicit MediaPanelModel(MediaLibraryModel* model, QObject* parent = nullptr);

    const QString& searchText() const { return m_searchText; }
    /// A part of a name or of a file's name, case ignored, or the beginning of a slot's number.
    void setSearchText(const QString& text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    QString m_searchText;
};

} // namespace vantrel
