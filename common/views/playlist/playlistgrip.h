#pragma once

#include "common/ui/toolkit/ztlabel.h"

#include <QPoint>

namespace vantrel {

class PlaylistModel;

/// By this a whole playlist is dragged: the one that the model shows, which outlives the grip. Main thread.
class PlaylistGrip : public ZTLabel
{
    Q_OBJECT

public:
    explicit PlaylistGrip(const PlaylistModel* model, QWidget* parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void drag();

    const PlaylistModel* m_model;
    QPoint m_pressed;
};

} // namespace vantrel
