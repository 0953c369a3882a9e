#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/preview/frame.h"

#include <QElapsedTimer>
#include <QList>
#include <QPixmap>
#include <QTimer>

namespace vantrel {

class ElidedLabel;
class GUIPlayback;
class OutputCanvas;
class OutputModel;
class ScalingTile;
class SeenUpdate;
class Session;
class ZTLabel;

/// What one output carries now, live, and what each scaling would do to it. Owned by the MappingPreview; main
/// thread.
class OutputPicture : public ZTFrame
{
    Q_OBJECT

public:
    /// index: 0 or 1; session and model must outlive this.
    OutputPicture(int index, Session* session, OutputModel* model, QWidget* parent = nullptr);

    OutputCanvas* canvas() const { return m_canvas; }
    void onFrame(const PreviewFrame& frame, const QPixmap& pixmap);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makeTiles();
    void labelTiles();
    void followMedia();
    void refresh();
    void refreshMedium();
    void refreshTilePictures();
    void checkAge();
    void propose(const ScalingTile* tile, bool looked);
    void showProposal();
    void choose(const ScalingTile* tile);
    QString notice() const;
    GUIPlayback* playback() const;
    QVariant value(int column) const;

    const int m_index;
    Session* m_session;
    OutputModel* m_model;
    ZTLabel* m_target = nullptr;
    ElidedLabel* m_title = nullptr;
    OutputCanvas* m_canvas;
    ElidedLabel* m_medium;
    QList<ScalingTile*> m_tiles;
    const ScalingTile* m_proposed = nullptr; // that is looked at
    QString m_scaling;                       // in force, the slot's own where it has one
    bool m_isOwnScaling = false;
    QString m_mediumText;
    QSizeF m_mediaSize;
    QUrl m_mediaUrl;
    QPixmap m_picture;
    QElapsedTimer m_sincePicture;
    QElapsedTimer m_sinceTiles;
    QTimer m_ageCheck;
    SeenUpdate* m_refresh;
};

} // namespace vantrel
