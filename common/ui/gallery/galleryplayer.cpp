// The sections of the gallery that hold the parts of the player.
#include "common/media/models/playbackmodel.h"
#include "common/playback/durationeditwidget.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/endpointtimecodes.h"
#include "common/playback/levelmeter.h"
#include "common/playback/mutebutton.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbacktimecodes.h"
#include "common/playback/playbackwidgetheader.h"
#include "common/playback/seekslider.h"
#include "common/playback/takebutton.h"
#include "common/playback/takecontrols.h"
#include "common/playback/volumecontrolpopup.h"
#include "common/playback/volumefader.h"
#include "common/playback/volumeslider.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/gallery/pictureof.h"
#include "common/ui/gallery/stategrid.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/timecode/timecodeedit.h"
#include "tarn/media/playenums.h"

#include <QPainter>
#include <QStyleOptionButton>

#include <limits>

namespace vantrel::gallery {

namespace {

template <typename Make>
QList<QWidget*> enabledAndNot(Make make)
{
    QList<QWidget*> widgets;
    for (const bool enabled : {true, false}) {
        QWidget* widget = make();
        widget->setEnabled(enabled);
        widgets.append(widget);
    }
    return widgets;
}

const QStringList enabledTitles{QStringLiteral("enabled"), QStringLiteral("disabled")};

QWidget* makeMeter(const std::vector<double>& peaks, bool connected = true)
{
    auto* meter = new LevelMeter(Program);
    meter->setClock([] { return 0.0; }); // nothing falls while somebody looks
    meter->setMinimumWidth(160);
    AudioLevels levels;
    for (const double peak : peaks)
        levels.channels.push_back({peak, peak - 3});
    if (connected)
        meter->setLevels(levels);
    return meter;
}

SeekSlider* makeSlider(double inpoint, double outpoint, double position)
{
    auto* slider = new SeekSlider;
    slider->setMinimumWidth(280);
    slider->setDuration(30.0);
    slider->setOutpoint(outpoint);
    slider->setInpoint(inpoint);
    slider->setPosition(position);
    return slider;
}

QWidget* makeHeader(PlaybackViewMode mode, ColumnStep step, bool infinite)
{
    auto* header = new PlaybackWidgetHeader(mode);
    header->setMediaAddress(QStringLiteral("brume://collections/1/slots/5"));
    header->setMediaName(QStringLiteral("Opening loop of the second night"));
    header->duration()->setTime(83.48);
    header->setHasInfiniteDuration(infinite);
    header->setRepeats(infinite || step == ColumnStep::Narrow);
    header->setColumnStep(step);
    header->setFixedWidth(columnWidth(step, FontSize::Huge));
    return header;
}

QWidget* makeControls(PlaybackViewMode mode, ColumnStep step, const QString& state, bool enabled = true)
{
    auto* controls = new PlaybackControls(mode, nullptr);
    controls->setColumnStep(step);
    controls->setState(state);
    controls->setEnabled(enabled);
    return controls;
}

QWidget* makeEndAction(EndAction action, PlaybackModel::EndActionMode mode)
{
    auto* widget = new EndActionWidget;
    widget->setEndAction(static_cast<int>(action));
    widget->setEndActionMode(mode);
    return widget;
}

/// The times of a channel with so many seconds left; held once none are.
QWidget* makeTimesLeft(PlaybackViewMode mode, double left)
{
    auto* times = new PlaybackTimecodes;
    times->setViewMode(mode);
    times->setFps(25);
    times->setOutpoint(30.0);
    times->setPosition(30.0 - left);
    times->setState(left > 0.04 ? QStringLiteral("play") : QStringLiteral("pause"));
    times->setFixedWidth(columnWidth(ColumnStep::Narrow, FontSize::Huge));
    return times;
}

QWidget* makeWords(EndAction action, PlaybackModel::EndActionMode mode)
{
    auto* widget = makeEndAction(action, mode);
    static_cast<EndActionWidget*>(widget)->setShowsWords(true);
    return widget;
}

QWidget* makeFader(int decibels, bool enabled)
{
    auto* fader = new VolumeFader;
    fader->setValue(decibels);
    fader->setEnabled(enabled);
    return fader;
}

QWidget* makeDuration(DurationTypeWidget::DurationType type)
{
    auto* edit = new DurationEditWidget;
    edit->setDurationType(type);
    edit->setDurationSeconds(12.5);
    return edit;
}

QPixmap testPicture()
{
    QPixmap picture(160, 90);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.fillRect(0, 30, 160, 30, QColor(0x24, 0x93, 0xe6));
    return picture;
}

QWidget* makePreview(bool hasPicture, bool constrained)
{
    auto* preview = new PlaybackPreview;
    preview->setFixedSize(480, 240);
    preview->setSource("gallery", 0);
    if (hasPicture)
        preview->onFrame({"gallery", Frame()}, testPicture());
    preview->setResourceConstrained(constrained);
    return preview;
}

TakeButton* makeTake(State state)
{
    auto* button = new Frozen<TakeButton, QStyleOptionButton>;
    freezeButton(button, state);
    if (state == State::Hover)
        button->freeze(QStyle::State_MouseOver);
    else if (state == State::Pressed)
        button->onPressed();
    return button;
}

std::unique_ptr<QWidget> makeVolume(double volume)
{
    auto popup = std::make_unique<VolumeControlPopup>();
    popup->setVolume(volume);
    return popup;
}

} // namespace

QWidget* makeTimes(QWidget* parent)
{
    auto* grid = new StateGrid(enabledTitles, parent);
    grid->addRow(QStringLiteral("TimecodeEdit"), enabledAndNot([] {
                     auto* edit = new TimecodeEdit;
                     edit->setTimecode(83'480);
                     return edit;
                 }));
    grid->addRow(QStringLiteral("TimecodeDisplay"), enabledAndNot([] {
                     auto* display = new TimecodeDisplay;
                     display->setTime(83.48);
                     return display;
                 }));
    const auto makePlayhead = [] {
        auto* times = new PlaybackTimecodes;
        times->setOutpoint(114.0);
        times->setPosition(83.48);
        return times;
    };
    grid->addRow(QStringLiteral("PlaybackTimecodes"), enabledAndNot(makePlayhead));
    auto* inARow = makePlayhead();
    inARow->setMinimumWidth(760);
    auto* infinite = makePlayhead();
    infinite->setRemainingTimeVisible(false);
    grid->addWide(QStringLiteral("in a row"), inARow);
    grid->addWide(QStringLiteral("infinite"), infinite);
    for (const double left : {26.92, 8.04, 3.2, 0.04}) {
        grid->addWide(left > 20 ? QStringLiteral("time left, program") : QString(),
                      makeTimesLeft(Program, left));
        grid->addWide(left > 20 ? QStringLiteral("preview") : QString(), makeTimesLeft(Preview, left));
    }
    grid->addRow(QStringLiteral("EndpointTimecodes"), enabledAndNot([] {
                     auto* points = new EndpointTimecodes;
                     points->inpoint()->setTime(4.0);
                     points->outpoint()->setTime(114.0);
                     points->setMinimumWidth(440);
                     return points;
                 }));
    for (const auto type : {DurationTypeWidget::Manual, DurationTypeWidget::Infinite})
        grid->addRow(type == DurationTypeWidget::Manual ? QStringLiteral("DurationEditWidget")
                                                        : QStringLiteral("infinite"),
                     enabledAndNot([type] { return makeDuration(type); }));
    return grid;
}

QWidget* makeChannelParts(QWidget* parent)
{
    using enum ColumnStep;
    auto* grid = new StateGrid({}, parent);
    grid->addWide(QStringLiteral("Header, wide"), makeHeader(Preview, Wide, false));
    grid->addWide(QString(), makeHeader(Program, Wide, true));
    grid->addWide(QStringLiteral("Header, narrow"), makeHeader(Preview, Narrow, false));
    grid->addWide(QString(), makeHeader(Program, Narrow, false));
    const auto play = QStringLiteral("play");
    grid->addWide(QStringLiteral("PlaybackControls"), makeControls(Preview, Wide, play));
    grid->addWide(QStringLiteral("program, paused"), makeControls(Program, Wide, QStringLiteral("pause")));
    grid->addWide(QStringLiteral("narrow, stopped"), makeControls(Preview, Narrow, QStringLiteral("stop")));
    grid->addWide(QStringLiteral("disabled"), makeControls(Preview, Wide, play, false));
    grid->addWide(QStringLiteral("EndActionWidget, entry"),
                  makeEndAction(EndAction::GoTo, PlaybackModel::ENTRY));
    grid->addWide(QStringLiteral("slot"), makeEndAction(EndAction::Repeat, PlaybackModel::SLOT));
    grid->addWide(QStringLiteral("none"), makeEndAction(EndAction::Pause, PlaybackModel::DISABLED));
    grid->addWide(QStringLiteral("as words"), makeWords(EndAction::GoTo, PlaybackModel::ENTRY));
    grid->addWide(QString(), makeWords(EndAction::Repeat, PlaybackModel::SLOT));
    return grid;
}

QWidget* makePictures(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    grid->addWide(QStringLiteral("PlaybackPreview"), makePreview(true, false));
    grid->addWide(QStringLiteral("no picture"), makePreview(false, false));
    grid->addWide(QStringLiteral("no resources"), makePreview(true, true));
    return grid;
}

QWidget* makeSliders(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    grid->addWide(QStringLiteral("SeekSlider"), makeSlider(4.0, 26.0, 12.0));
    auto* program = makeSlider(0.0, 30.0, 0.0);
    program->setMarkerColor(QColor(0xd3, 0x19, 0x1d));
    grid->addWide(QStringLiteral("program, whole"), program);
    auto* still = makeSlider(0.0, 30.0, 12.0);
    still->setSeekBarEnabled(false);
    still->setInpointOutpointEnabled(false);
    grid->addWide(QStringLiteral("still"), still);
    auto* infinite = makeSlider(0.0, 30.0, 12.0);
    infinite->setInpointOutpointHidden(true);
    infinite->setPlayheadFixed(true);
    grid->addWide(QStringLiteral("infinite"), infinite);
    auto* transitions = makeSlider(4.0, 26.0, 12.0);
    transitions->setInTransition(3.0);
    transitions->setOutTransition(3.0);
    grid->addWide(QStringLiteral("transitions"), transitions);
    auto* none = makeSlider(4.0, 26.0, 12.0);
    none->setEnabled(false);
    grid->addWide(QStringLiteral("no media"), none);
    return grid;
}

QWidget* makeSounds(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    constexpr double silence = AudioLevels::silence;
    grid->addRow(QStringLiteral("LevelMeter"), {makeMeter({-24, -9}), makeMeter({-2})});
    grid->addRow(QStringLiteral("8 channels, silence"),
                 {makeMeter({-3, -6, -9, -12, -18, -24, -36, -50}), makeMeter({silence, silence})});
    grid->addRow(QStringLiteral("no sound, no server"), {makeMeter({}), makeMeter({}, false)});
    auto* silenced = makeMeter({-24, -9});
    static_cast<LevelMeter*>(silenced)->setMuted(true);
    grid->addRow(QStringLiteral("muted"), {silenced});
    grid->addRow(QStringLiteral("VolumeFader"),
                 {makeFader(0, true), makeFader(-12, true), makeFader(-60, true), makeFader(-12, false)});
    auto* muted = new MuteButton;
    muted->setMuted(true);
    auto* disabled = new MuteButton;
    disabled->setEnabled(false);
    grid->addRow(QStringLiteral("MuteButton"), {new MuteButton, muted, disabled});
    grid->addRow(QStringLiteral("VolumeControlPopup"),
                 {new PictureOf(makeVolume(1.0), grid), new PictureOf(makeVolume(0.25), grid),
                  new PictureOf(makeVolume(0.0), grid)});
    return grid;
}

QWidget* makeTakes(QWidget* parent)
{
    auto* grid = new StateGrid({QStringLiteral("normal"), QStringLiteral("hover"), QStringLiteral("pressed"),
                                QStringLiteral("focus"), QStringLiteral("disabled")},
                               parent);
    QList<QWidget*> buttons;
    for (const State state : {State::Normal, State::Hover, State::Pressed, State::Focus, State::Disabled})
        buttons.append(makeTake(state));
    grid->addRow(QStringLiteral("TakeButton"), buttons);
    QList<QWidget*> taking;
    for (const double progress : {0.05, 0.5, 1.0}) {
        auto* button = makeTake(progress == 1.0 ? State::Focus : State::Normal);
        button->setTakeProgress(progress);
        taking.append(button);
    }
    grid->addRow(QStringLiteral("taking"), taking);
    auto* narrow = new TakeControls(nullptr);
    narrow->setColumnStep(ColumnStep::Narrow);
    auto* cut = new TakeControls(nullptr);
    cut->setTransitionType(TakeTransitionType::DirectCut);
    cut->setTakePreset(false);
    cut->updateDurationEditReadOnlyState();
    grid->addRow(QStringLiteral("TakeControls"), {new TakeControls(nullptr), narrow, cut});
    return grid;
}

} // namespace vantrel::gallery
