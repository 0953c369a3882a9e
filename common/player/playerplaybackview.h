#pragma once

#include <QModelIndex>
#include <QWidget>

class QStackedWidget;

namespace vantrel {

class MediaPanelWidget;
class PlayerKeys;
class Session;
class WidgetMapper;
class ZTLabel;
class ZTSplitter;

/// The player tab: the media library on the left and a ChannelWidget for each channel of the server. Without
/// one it says what to do. Owned by the main window; main thread.
class PlayerPlaybackView : public QWidget
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit PlayerPlaybackView(Session* session, QWidget* parent = nullptr);

    /// The tree index of the channels ("/device/channels").
    void setModel(const QModelIndex& channels);

    MediaPanelWidget* mediaPanel() const { return m_panel; }

public Q_SLOTS:
    /// Plays a slot of the media library on preview.
    void handleMediaDirectPlay(const QModelIndex& index);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum Page { EmptyPage, ChannelPage };

    /// Divides the width between the media panel and the channels, until the operator does.
    void shareWidth();
    QWidget* createEmptyState();
    QWidget* createChannelArea();
    void connectSession();
    void onWidgetAdded(QWidget* widget, const QModelIndex& index);
    void onWidgetRemoved(QWidget* widget);
    void prepareChannel();
    void updateState();
    void setStale(bool stale);
    void onHealthChanged();
    QString blockedReason() const;
    void updateUsable();

    Session* m_session;
    MediaPanelWidget* m_panel = nullptr;
    WidgetMapper* m_mapper;
    ZTSplitter* m_splitter;
    QStackedWidget* m_stack;
    ZTLabel* m_emptyTitle = nullptr;
    ZTLabel* m_emptyHint = nullptr;
    QWidget* m_channels = nullptr;
    PlayerKeys* m_keys = nullptr; // none where there are no hotkeys
    int m_channelCount = 0;
    int m_panelWidth = -1;     // as the operator divided it; without, it follows the room
    bool m_isStale = false;    // from the loss of the server until its state has come anew
    bool m_isPrepared = false; // a channel's widget was built for the first connection
};

} // namespace vantrel
