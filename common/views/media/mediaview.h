#pragma once

#include <QWidget>

class QQuickWidget;

namespace vantrel {

class AbstractPlaylistProvider;
class CollectionPanes;
class CollectionSelectorModel;
class MediaLibraryModel;
class MediaLibraryProvider;
class Session;

/// The MEDIA tab: the collections, and the slots of the chosen one as pictures or as a table. Its declarative
/// part is made when the tab is shown first. The main window owns it; main thread only.
class MediaView : public QWidget
{
    Q_OBJECT

public:
    /// What the view works with; all of it must outlive the view.
    struct Sources
    {
        MediaLibraryModel* library = nullptr;
        MediaLibraryProvider* provider = nullptr;
        AbstractPlaylistProvider* playlists = nullptr; // null knows of no use of a slot
        Session* session = nullptr;                    // null has no server
    };

    explicit MediaView(const Sources& sources, QWidget* parent = nullptr);
    ~MediaView() override;

    /// Shows the collection, at once or when the view is shown.
    void selectCollection(int collectionNumber);

    /// Null before the view was shown.
    QQuickWidget* quickWidget() const { return m_view; }

Q_SIGNALS:
    void connectRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void load();
    void setContext();
    void followPlaylists();

    Sources m_sources;
    CollectionSelectorModel* m_collections = nullptr;
    CollectionPanes* m_panes = nullptr;
    QQuickWidget* m_view = nullptr;
    int m_wanted = -1;
};

} // namespace vantrel
