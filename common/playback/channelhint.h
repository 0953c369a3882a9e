#pragma once

#include "tarn/media/enums.h"

#include <QWidget>

namespace vantrel {

/// What an empty channel says in the place of its picture: that nothing is on it, and how something gets
/// there. Lies over its parent and lets mouse and drops through. Owned by PlaybackWidget; main thread.
class ChannelHint : public QWidget
{
    Q_OBJECT

public:
    ChannelHint(PlaybackViewMode viewMode, QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString text() const;

    PlaybackViewMode m_viewMode;
};

} // namespace vantrel
