#pragma once

#include "tarn/media/channelenums.h"
#include "tarn/media/playenums.h"

#include <QString>
#include <QTimer>
#include <QWidget>

namespace vantrel {

class LevelMeter;
class PlaybackPreview;

/// What a channel's picture cannot say by itself: that it is old, that its medium cannot be played and why,
/// that it is sound alone, or what a drop would do. Lies over the picture, hides no more than a band of what
/// plays on, and lets mouse and drops through. Owned by PlaybackWidget; main thread.
class PictureNotice : public QWidget
{
    Q_OBJECT

public:
    PictureNotice(PlaybackViewMode viewMode, PlaybackPreview* preview);

    /// Whether there is a medium, whose pictures are then expected.
    void setHasMedia(bool hasMedia);
    /// Why the medium cannot be played; empty when it can.
    void setUnplayable(const QString& reason);
    /// What the server does with the medium: what was opened before it became unplayable plays on.
    void setState(SourcePlayState state);
    /// In the place of black: a note, and how loud it is.
    void setSoundOnly(bool soundOnly);
    LevelMeter* levels() const { return m_levels; }

    /// What stands over the picture now, as one text; empty when nothing does.
    QString text() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString ageText() const;
    bool isCovered() const;
    void showAge();
    void refresh();
    void place();
    void paintUnplayable(QPainter& painter, const QRectF& picture) const;
    void paintBand(QPainter& painter, const QRect& picture) const;
    void paintAge(QPainter& painter, const QRect& picture) const;
    void paintNote(QPainter& painter, const QRectF& picture) const;

    PlaybackViewMode m_viewMode;
    PlaybackPreview* m_preview;
    LevelMeter* m_levels;
    QTimer m_clock;
    QString m_unplayable;
    QString m_age;
    QString m_told;
    SourcePlayState m_state = SourcePlayState::Stop;
    bool m_hasMedia = false;
    bool m_soundOnly = false;
};

} // namespace vantrel
