#pragma once

#include "common/session/settings/configuration.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/preview/frame.h"

#include <QElapsedTimer>
#include <QPixmap>
#include <QTimer>

#include <memory>
#include <string>

namespace vantrel {

class GuiMediaItem;

/// The live picture of a channel, as large as its frame allows. Takes drops of media to play. Owned by
/// PlaybackWidget; main thread.
class PlaybackPreview : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(bool resourceConstrained READ isResourceConstrained WRITE setResourceConstrained)

public:
    explicit PlaybackPreview(QWidget* parent = nullptr);

    /// The scene path and the stream whose frames are shown; before this none are.
    void setSource(const std::string& path, int streamIndex);
    void setResourceConstrained(bool constrained);
    bool isResourceConstrained() const { return m_resourceConstrained; }
    /// Every frame of the server; one of another source or stream is not for this widget.
    void onFrame(const PreviewFrame& frame, const QPixmap& pixmap);
    /// The picture shown last; null before the first.
    const QPixmap& pixmap() const { return m_pixmap; }
    /// Milliseconds since the last picture, or since one was expected.
    qint64 pictureAge() const { return m_sinceFrame.elapsed(); }
    /// Another medium is on the channel: a picture that does not follow it is not left under its name.
    void expectNewMedia();
    bool isDropTarget() const { return m_dragged != nullptr; }
    /// Where the picture stands in this widget.
    QRectF pictureRect() const;

    /// The height that shows the whole picture in such a width; that of 16 by 9 before the first picture.
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The picture has another shape than the one before.
    void shapeChanged();
    void dropTargetChanged();
    void dragAndDropEntry(std::shared_ptr<vantrel::GuiMediaItem> item);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setDragged(std::shared_ptr<GuiMediaItem> item);
    void clearPicture();
    void paintConstrained(QPainter& painter) const;

    std::string m_source;
    int m_streamIndex = -1;
    QPixmap m_pixmap;
    QElapsedTimer m_sinceFrame;
    QTimer m_oldMedia; // runs while the picture may be that of the medium before
    QSize m_shape{16, 9};
    bool m_resourceConstrained = false;
    std::shared_ptr<GuiMediaItem> m_dragged; // over the picture; read once, however long the drag goes on
};

} // namespace vantrel
