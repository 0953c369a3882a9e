#pragma once

#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"

#include <QTemporaryDir>

#include <array>
#include <optional>

namespace vantrel::test {

/// How far the time that a running channel tells is from the picture that it shows. Two clips that show the
/// numbers of their frames play, one on each channel, with seeks and takes in between; time and picture are
/// read at the same moment, off the same drawing.
class DriftWatch
{
public:
    struct Channel
    {
        int readings = 0;
        int jumps = 0;  // by seeks and takes, as the pictures tell
        int worst = 0;  // frames, either way
        double sum = 0; // of the frames apart, for the mean
        int last = 0;   // frame that was shown
    };

    /// A server and an application with both channels running; false on failure.
    bool start();
    /// Reads both channels for so long (milliseconds), with two seeks on each and two takes; false on
    /// failure.
    bool watch(int milliseconds);
    const Channel& preview() const { return m_channels[0]; }
    const Channel& program() const { return m_channels[1]; }

private:
    /// Frames of the same moment.
    struct Reading
    {
        int told, shown;
    };
    /// Nothing while no single picture can be made out.
    std::optional<Reading> read(const QString& channel);
    void note(Channel& channel, const Reading& reading);
    bool seek(const QString& channel, double share);
    bool take();

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    std::array<Channel, 2> m_channels;
};

} // namespace vantrel::test
