#include "tests/support/driftwatch.h"

#include "tests/support/numberedclip.h"

#include <QElapsedTimer>
#include <QImage>
#include <QTest>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <utility>

namespace vantrel::test {

namespace {

constexpr int fps = 25;
constexpr int length = 120 * fps; // frames of each clip
const QString slotsView = QStringLiteral("MediaPanel-slots-view");
constexpr std::array channelNames{"Preview", "Program"};

QRect rectOf(const QJsonObject& found)
{
    const QStringList parts = found["rect"].toString().split(',');
    return parts.size() == 4 ? QRect(parts[0].toInt(), parts[1].toInt(), parts[2].toInt(), parts[3].toInt())
                             : QRect();
}

/// "00:01:02.480" as the number of a frame.
std::optional<int> frameOfTime(const QString& text)
{
    const QStringList parts = text.split(':');
    if (parts.size() != 3)
        return std::nullopt;
    const double seconds = parts[0].toInt() * 3600 + parts[1].toInt() * 60 + parts[2].toDouble();
    return static_cast<int>(std::floor(seconds * fps + 0.01));
}

} // namespace

bool DriftWatch::start()
{
    if (!makeNumberedClip(m_media.filePath(QStringLiteral("1.mp4")), QColor(220, 0, 0), length) ||
        !makeNumberedClip(m_media.filePath(QStringLiteral("2.mp4")), QColor(0, 0, 220), length))
        return false;
    m_ombra.setMediaFolder(m_media.path());
    if (!m_ombra.start() || !m_app.start(AppProcess::connectTo(m_ombra.ports())) ||
        !m_robot.connectTo(m_app.uiTestPort()) ||
        !m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")) ||
        !m_robot.click(QStringLiteral("TakeControls-Current-Button")))
        return false;
    const auto cue = [this](int slot) {
        return m_robot.doubleClickCell(slotsView, slot, 0) &&
               QTest::qWaitFor([this] { return read(QStringLiteral("Preview")).has_value(); }, 10000);
    };
    return cue(0) && m_robot.click(QStringLiteral("TakeControls-Take-Button")) &&
           QTest::qWaitFor([this] { return read(QStringLiteral("Program")).has_value(); }, 10000) &&
           m_robot.click(QStringLiteral("Program-PlaybackWidget-Header-Lock")) && cue(1);
}

std::optional<DriftWatch::Reading> DriftWatch::read(const QString& channel)
{
    const QString whole = channel + QStringLiteral("-PlaybackWidget");
    const QRect picture = rectOf(m_robot.find(whole + QStringLiteral("-PreviewWidget")));
    const QRect widget = rectOf(m_robot.find(whole));
    const RobotClient::Drawing drawing = m_robot.draw(whole);
    const std::optional<int> shown =
        frameNumberOf(drawing.picture.copy(picture.translated(-widget.topLeft())));
    const std::optional<int> told =
        frameOfTime(drawing.texts[whole + QStringLiteral("-PlaybackTimecodes-Playhead")].toString());
    return shown && told ? std::optional(Reading{*told, *shown}) : std::nullopt;
}

void DriftWatch::note(Channel& channel, const Reading& reading)
{
    const int apart = std::abs(reading.told - reading.shown);
    ++channel.readings;
    channel.worst = std::max(channel.worst, apart);
    channel.sum += apart;
    if (std::abs(reading.shown - std::exchange(channel.last, reading.shown)) > 2 * fps)
        ++channel.jumps;
}

bool DriftWatch::seek(const QString& channel, double share)
{
    return m_robot.mouseAt(QStringLiteral("click"), channel + QStringLiteral("-PlaybackWidget-SeekSlider"),
                           share);
}

/// What is on air changes places with what is cued, which goes on playing then.
bool DriftWatch::take()
{
    return m_robot.click(QStringLiteral("TakeControls-Take-Button")) &&
           m_robot.click(QStringLiteral("Preview-PlaybackControls-Play"));
}

bool DriftWatch::watch(int milliseconds)
{
    const QString preview = QStringLiteral("Preview"), program = QStringLiteral("Program");
    const std::array<std::function<bool()>, 6> events{
        [&] { return seek(preview, 0.6); }, [&] { return seek(program, 0.3); }, [&] { return take(); },
        [&] { return seek(program, 0.7); }, [&] { return seek(preview, 0.2); }, [&] { return take(); }};
    QElapsedTimer clock;
    clock.start();
    for (size_t next = 0; clock.elapsed() < milliseconds;) {
        if (next < events.size() &&
            clock.elapsed() > qint64(next + 1) * milliseconds / qint64(events.size() + 1)) {
            if (!events[next++]())
                return false;
        }
        for (size_t i = 0; i < m_channels.size(); ++i) {
            if (const auto reading = read(QString::fromLatin1(channelNames[i])))
                note(m_channels[i], *reading);
        }
    }
    return true;
}

} // namespace vantrel::test
