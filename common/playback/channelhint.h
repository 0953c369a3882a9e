#pragma once

#include "tarn/media/channelenums.h"

#include <QWidget>

namespace vantrel {

class Hotkeys;
class PlaybackPreview;

/// What an empty channel says in the place of its picture: that nothing is on it, and how something gets
/// there. Lies over the picture and lets mouse and drops through. Owned by PlaybackWidget; main thread.
class ChannelHint : public QWidget
{
    Q_OBJECT

public:
    /// hotkeys: names the key that cues; must outlive this, or null where there are no keys.
    ChannelHint(PlaybackViewMode viewMode, const Hotkeys* hotkeys, PlaybackPreview* preview);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString text() const;

    PlaybackViewMode m_viewMode;
    const Hotkeys* m_hotkeys;
    PlaybackPreview* m_preview;
};

} // namespace vantrel
