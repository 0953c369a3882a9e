#include "common/playback/playbackcontrols.h"

#include "common/command/execute.h"
#include "common/command/invokemethodcommand.h"
#include "common/command/playback/seekcommand.h"
#include "common/command/playback/stepcommand.h"
#include "common/playback/playbacklogging.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/blockedreason.h"
#include "common/ui/toolkit/iconbutton.h"
#include "tarn/scene/object.h"

#include <QHBoxLayout>

namespace vantrel {

namespace {

constexpr QRgb hoverColor = 0xff2493e6;
constexpr QRgb pressedColor = 0xff2185d0;

struct ButtonSpec
{
    const char* icon;
    const char* suffix;
    const char* tip;
    const char* hotkey; // its name in the key map, or none
    void (PlaybackControls::*action)();
};

constexpr std::array<ButtonSpec, 9> specs{{
    {"mc_set_inpoint", "SetInpoint",
     QT_TRANSLATE_NOOP("vantrel::PlaybackControls",
                       "Playback control: Set inpoint to current playhead position"),
     "set_inpoint", &PlaybackControls::handleSetInpoint},
    {"mc_seek_inpoint", "SeekInpoint",
     QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Seek to inpoint"), "seek_inpoint",
     &PlaybackControls::handleSeekInpoint},
    {"mc_previous", "Previous", QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Previous"),
     "", &PlaybackControls::handlePrevious},
    {"mc_pause", "Pause", QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Pause"),
     "play_pause", &PlaybackControls::handlePause},
    {"mc_play", "Play", QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Play"),
     "play_pause", &PlaybackControls::handlePlay},
    {"mc_stop", "Stop", QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Stop"), "",
     &PlaybackControls::handleStop},
    {"mc_next", "Next", QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Next"), "",
     &PlaybackControls::handleNext},
    {"mc_seek_outpoint", "SeekOutpoint",
     QT_TRANSLATE_NOOP("vantrel::PlaybackControls", "Playback control: Seek to outpoint"), "seek_outpoint",
     &PlaybackControls::handleSeekOutpoint},
    {"mc_set_outpoint", "SetOutpoint",
     QT_TRANSLATE_NOOP("vantrel::PlaybackControls",
                       "Playback control: Set outpoint to current playhead position"),
     "set_outpoint", &PlaybackControls::handleSetOutpoint},
}};

} // namespace

PlaybackControls::PlaybackControls(PlaybackViewMode viewMode, QUndoStack* stack, QWidget* parent)
    : ZTFrame(parent)
    , m_viewMode(viewMode)
    , m_stack(stack)
    , m_layout(new QHBoxLayout(this))
{
    static_assert(specs.size() == ButtonCount);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(spacing::tight);
    m_layout->addStretch(1);
    const QString channel = viewMode == Program ? QStringLiteral("Program") : QStringLiteral("Preview");
    for (int i = 0; i < ButtonCount; ++i) {
        const ButtonSpec& spec = specs[i];
        const QString icon = QStringLiteral(":/icons/") + QLatin1String(spec.icon);
        auto* button =
            new IconButton(icon + QStringLiteral(".svg"), icon + QStringLiteral("_disabled.svg"), this);
        button->setObjectName(channel + QStringLiteral("-PlaybackControls-") + QLatin1String(spec.suffix));
        setHotkeyTip(button, tr(spec.tip), {QLatin1String(spec.hotkey)});
        button->setAccessibleName(tr(spec.tip));
        if (i == Pause || i == Play || i == Stop)
            button->setCheckable(true);
        else
            button->setEffects(QColor(hoverColor), QColor(pressedColor));
        connect(button, &QPushButton::clicked, this, spec.action);
        m_layout->addWidget(button);
        m_buttons[i] = button;
    }
    m_layout->addStretch(1);
    setColumnStep(ColumnStep::Wide);
    if (viewMode == Program) {
        m_buttons[SetIn]->hide();
        m_buttons[SetOut]->hide();
    }
}

PlaybackControls::~PlaybackControls() = default;

void PlaybackControls::setColumnStep(ColumnStep step)
{
    for (IconButton* button : m_buttons)
        button->setSizes(transportSizes(step));
}

void PlaybackControls::setBlocked(const QString& reason)
{
    for (IconButton* button : m_buttons)
        setBlockedReason(button, reason);
}

void PlaybackControls::setState(const QString& state)
{
    m_state = state;
    const bool isKnown =
        state == QLatin1String("play") || state == QLatin1String("pause") || state == QLatin1String("stop");
    if (isKnown) {
        m_buttons[Play]->setChecked(state == QLatin1String("play"));
        m_buttons[Pause]->setChecked(state == QLatin1String("pause"));
        m_buttons[Stop]->setChecked(state == QLatin1String("stop"));
    } else {
        qCWarning(lcPlayback) << "Unknown state" << state;
    }
    Q_EMIT stateChangeDone();
}

void PlaybackControls::setObject(Object* object)
{
    m_object = Ref<Object>(object);
}

std::array<IconButton*, 4> PlaybackControls::seekButtons() const
{
    return {m_buttons[SeekIn], m_buttons[SeekOut], m_buttons[SetIn], m_buttons[SetOut]};
}

void PlaybackControls::setSeekButtonsVisible(bool visible)
{
    for (IconButton* button : seekButtons())
        button->setVisible(visible);
}

void PlaybackControls::setSeekButtonsEnabled(bool enabled)
{
    for (IconButton* button : seekButtons())
        button->setEnabled(enabled);
}

void PlaybackControls::setPointsEnabled(bool enabled)
{
    m_buttons[SetIn]->setEnabled(enabled);
    m_buttons[SetOut]->setEnabled(enabled);
}

bool PlaybackControls::canSeekPoints() const
{
    return m_buttons[SeekIn]->isEnabled();
}

bool PlaybackControls::canSetPoints() const
{
    return m_buttons[SetIn]->isEnabled() && !m_buttons[SetIn]->isHidden();
}

void PlaybackControls::handlePlayPause()
{
    if (m_state == QLatin1String("play"))
        handlePause();
    else
        handlePlay();
}

void PlaybackControls::handleSetInpoint()
{
    Q_EMIT setInpoint();
}

void PlaybackControls::handleSetOutpoint()
{
    Q_EMIT setOutpoint();
}

void PlaybackControls::handlePause()
{
    setState(QStringLiteral("pause"));
    Q_EMIT stateChanged();
}

void PlaybackControls::handlePlay()
{
    setState(QStringLiteral("play"));
    Q_EMIT stateChanged();
}

void PlaybackControls::handleStop()
{
    setState(QStringLiteral("stop"));
    Q_EMIT stateChanged();
}

void PlaybackControls::handleSeekInpoint()
{
    invoke(QStringLiteral("seekInpoint"), tr("Seek inpoint"), "seek inpoint");
}

void PlaybackControls::handleSeekOutpoint()
{
    invoke(QStringLiteral("seekOutpoint"), tr("Seek outpoint"), "seekOutpoint");
}

void PlaybackControls::handlePrevious()
{
    invoke(QStringLiteral("prevMedia"), tr("Previous"), "prevMedia");
}

void PlaybackControls::handleNext()
{
    invoke(QStringLiteral("nextMedia"), tr("Next"), "nextMedia");
}

void PlaybackControls::handlePrevFrame()
{
    step(-1);
}

void PlaybackControls::handleNextFrame()
{
    step(1);
}

void PlaybackControls::handleSeekPosition(double position)
{
    if (execute<SeekCommand>(m_stack, "SeekCommand", m_object.get(), position))
        Q_EMIT seekPosition();
}

void PlaybackControls::handleSeekStarting()
{
    m_stateBeforeSeek = m_state;
    setState(QStringLiteral("pause"));
    Q_EMIT stateChanged();
}

void PlaybackControls::handleSeekEnding()
{
    // A stopped channel is left paused, so that the picture just sought stays.
    if (m_stateBeforeSeek == QLatin1String("play"))
        handlePlay();
    else
        handlePause();
}

void PlaybackControls::invoke(const QString& method, const QString& text, const char* logName)
{
    execute<InvokeMethodCommand>(m_stack, logName, m_object.get(), method, VariantMap(), text);
}

void PlaybackControls::step(int frames)
{
    execute<StepCommand>(m_stack, "StepCommand", m_object.get(), frames);
}

} // namespace vantrel
