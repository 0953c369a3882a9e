#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"

namespace vantrel {

class NavigationBar;
class Session;
class SingleMediaModel;
class StackedTabWidget;

/// What stands under a channel. On preview the playlist editor and all about the single media on the channel,
/// behind two tabs; on program its playlist. Owned by ChannelWidget; main thread.
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
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildPreview(const Session& session);
    void buildProgram();
    QWidget* createPlaylistPage();
    QWidget* createSingleMediaPage(const Session& session);

    PlaybackViewMode m_mode;
    StackedTabWidget* m_tabs = nullptr;
    NavigationBar* m_navigationBar = nullptr;
};

} // namespace vantrel
