#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

namespace vantrel {

class NavigationBar;
class PlaylistEditor;
class Session;
class SingleMediaModel;
class StackedTabWidget;

/// What stands under a channel. On preview the playlist editor and all about the single media on the channel,
/// behind two tabs; a double click on an entry shows the latter unless the editor is pinned. On program its
/// playlist. Owned by ChannelWidget; main thread.
class PlaylistWidget : public ZTFrame
{
    Q_OBJECT

public:
    enum Tab : int { PlaylistEditorTab = 0, SingleMediaTab = 1 };

    /// session: must outlive this.
    PlaylistWidget(PlaybackViewMode mode, Session* session, QWidget* parent = nullptr);

    PlaybackViewMode mode() const { return m_mode; }
    /// The tab shown; -1 on program, which has none.
    int currentTab() const;
    PlaylistEditor* editor() const { return m_editor; }
    /// Slots into the playlist of preview, which comes to the front.
    void insertMedia(const QList<QString>& urls);
    /// The list stays in reach: it offers by itself only what can be done.
    void setUsable(bool usable);
    /// The height, in pixels, at which it is of use.
    int usefulHeight() const;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void handleEditorPinned(bool pinned);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildPreview(const Session& session);
    QWidget* createSingleMediaPage(const Session& session);

    PlaybackViewMode m_mode;
    StackedTabWidget* m_tabs = nullptr;
    NavigationBar* m_navigationBar = nullptr;
    PlaylistEditor* m_editor = nullptr;
    bool m_isPinned = false;
};

} // namespace vantrel
