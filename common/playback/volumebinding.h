#pragma once

#include "tarn/json/path.h"

#include <QObject>
#include <QTimer>

class QUndoStack;

namespace vantrel {

class VolumeControlPopup;

/// Ties the fader of a channel to the scene. A move of the operator's is a command, which can be undone, and
/// all moves of one gesture are one. Its property "volume" is what the scene has, 0 to 1. Owned by
/// PlaybackWidget; main thread.
class VolumeBinding : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double volume READ volume WRITE setVolume)

public:
    VolumeBinding(VolumeControlPopup* popup, QUndoStack* stack, QObject* parent = nullptr);

    /// Of the playback whose volume it is; empty where there is none.
    void setPath(const Path& playbackPath) { m_path = playbackPath; }
    double volume() const { return m_volume; }
    void setVolume(double volume);

private:
    void onMoved();
    void endGesture();

    VolumeControlPopup* m_popup;
    QUndoStack* m_stack;
    Path m_path;
    double m_volume = 1.0;
    QTimer m_rest; // after which another move is another gesture
};

} // namespace vantrel
