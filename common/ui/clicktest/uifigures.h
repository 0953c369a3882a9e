#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QObject>
#include <QTimer>

namespace vantrel {

/// Figures that the running interface keeps of itself for a robot: how long the main thread once stood still,
/// and how long without the time for which other programs of a busy machine had the processors, how many
/// preview pictures came, what processor time the main thread took. Costs a tick each millisecond, so it
/// lives only as long as the UI test server. Main thread.
class UiFigures : public QObject
{
    Q_OBJECT

public:
    explicit UiFigures(QObject* parent);

    /// Starts the longest stall and the number of pictures anew.
    void reset();
    /// Ends the watch for stalls, and with it the ticks, until the next reset.
    void rest() { m_tick.stop(); }
    QJsonObject toJson() const;

private:
    void tick();
    double waitedForProcessorMs();

    QTimer m_tick;
    QFile m_schedule; // the system's figures of the main thread
    QElapsedTimer m_sinceTick;
    double m_longestStallMs = 0;
    double m_longestOwnStallMs = 0;
    double m_waitedAtTick = 0;
    int m_previewPictures = 0;
};

} // namespace vantrel
