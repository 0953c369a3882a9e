// The sections of the gallery that hold more than single controls.
#include "common/playback/levelmeter.h"
#include "common/playback/mutebutton.h"
#include "common/playback/seekslider.h"
#include "common/playback/takebutton.h"
#include "common/playback/timecodedisplay.h"
#include "common/playback/timecodeedit.h"
#include "common/playback/volumeslider.h"
#include "common/ui/aboutdialog.h"
#include "common/ui/accordion.h"
#include "common/ui/collapse.h"
#include "common/ui/confirmationdialog.h"
#include "common/ui/errordialog.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/gallery/pictureof.h"
#include "common/ui/gallery/stategrid.h"
#include "common/ui/navbutton.h"
#include "common/ui/navigationbar.h"
#include "common/ui/switchselect.h"
#include "common/ui/textinputdialog.h"
#include "common/ui/ztlabel.h"
#include "common/ui/ztmenu.h"
#include "common/ui/ztsplitter.h"

#include <QStyleOptionButton>
#include <QVBoxLayout>

namespace vantrel::gallery {

namespace {

ZTLabel* makeFiller(const QString& text)
{
    auto* label = new ZTLabel(text);
    label->setContentsMargins(12, 8, 12, 8);
    return label;
}

ZTFrame* makeFrame(const QString& styleClass)
{
    auto* frame = new ZTFrame;
    frame->setProperty("class", styleClass);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(new ZTLabel(styleClass));
    return frame;
}

QWidget* makeSwitch(bool enabled)
{
    auto* select = new SwitchSelect;
    for (const char* text : {"Time", "NDF", "DF"})
        select->addItem(QString::fromLatin1(text), QString::fromLatin1(text));
    select->setValue(QStringLiteral("NDF"));
    select->setEnabled(enabled);
    return select;
}

QWidget* makeTabs()
{
    auto* bar = new NavigationBar;
    bar->addTab(0, new NavButton(QStringLiteral("Active"), {}, bar));
    auto* hover = new Frozen<NavButton, QStyleOptionButton>(QStringLiteral("Hover"), QString(), bar);
    hover->freeze(QStyle::State_MouseOver);
    bar->addTab(1, hover);
    auto* focus = new NavButton(QStringLiteral("Focus"), {}, bar);
    freezeButton(focus, State::Focus);
    bar->addTab(2, focus);
    bar->addTab(3, new NavButton(QStringLiteral("With icon"), QStringLiteral(":/icons/media.svg"), bar));
    bar->addTab(4, new NavButton(QStringLiteral("Disabled"), {}, bar));
    bar->setDisabled(4);
    bar->setActiveTab(0);
    return bar;
}

std::unique_ptr<QWidget> makeMenu()
{
    auto menu = std::make_unique<ZTMenu>();
    menu->addEntry(QStringLiteral("mc_play"), QStringLiteral("Play on preview"))->setShortcut(Qt::Key_Return);
    menu->addEntry(QStringLiteral("edit"), QStringLiteral("Rename"))->setShortcut(Qt::Key_F2);
    menu->addSeparator();
    QAction* chosen = menu->addAction(QStringLiteral("Fit"));
    chosen->setCheckable(true);
    chosen->setChecked(true);
    menu->addEntry(QStringLiteral("trash"), QStringLiteral("Clear slot"))->setEnabled(false);
    menu->setActiveAction(menu->actions().at(1));
    return menu;
}

LevelMeter* makeMeter(const std::vector<double>& peaks, bool connected = true)
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

} // namespace

QWidget* makeBars(QWidget* parent)
{
    auto* grid = new StateGrid({}, parent);
    grid->addRow(QStringLiteral("NavigationBar"), {makeTabs()});
    grid->addRow(QStringLiteral("SwitchSelect"), {makeSwitch(true)});
    grid->addRow(QStringLiteral("disabled"), {makeSwitch(false)});
    return grid;
}

QWidget* makePanels(QWidget* parent)
{
    auto* page = new QWidget(parent);
    auto* open = new Collapse(QStringLiteral("Collapse, open"), page);
    open->setContent(makeFiller(QStringLiteral("What it holds")));
    auto* folded = new Collapse(QStringLiteral("Collapse, folded"), page);
    folded->setContent(makeFiller(QStringLiteral("What it holds")));
    folded->setOpen(false);
    auto* accordion = new Accordion(page);
    accordion->addSection(QStringLiteral("Accordion, first"), makeFiller(QStringLiteral("One at a time")));
    accordion->addSection(QStringLiteral("Accordion, second"), makeFiller(QStringLiteral("One at a time")));
    auto* splitter = new ZTSplitter(Qt::Horizontal, page);
    splitter->addWidget(makeFrame(QStringLiteral("panel")));
    splitter->addWidget(makeFrame(QStringLiteral("panel2")));
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(12, 8, 12, 12);
    for (QWidget* widget : {static_cast<QWidget*>(open), static_cast<QWidget*>(folded),
                            static_cast<QWidget*>(accordion), static_cast<QWidget*>(splitter)})
        layout->addWidget(widget);
    return page;
}

QWidget* makePlayerParts(QWidget* parent)
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
    grid->addRow(QStringLiteral("SeekSlider"), enabledAndNot([] {
                     auto* slider = new SeekSlider;
                     slider->setMinimumWidth(220);
                     slider->setDuration(30.0);
                     slider->setOutpoint(26.0);
                     slider->setInpoint(4.0);
                     slider->setPosition(12.0);
                     return slider;
                 }));
    grid->addRow(QStringLiteral("LevelMeter"), {makeMeter({-24, -9}), makeMeter({-2})});
    grid->addRow(QStringLiteral("8 channels, silence"),
                 {makeMeter({-3, -6, -9, -12, -18, -24, -36, -50}),
                  makeMeter({AudioLevels::silence, AudioLevels::silence})});
    grid->addRow(QStringLiteral("no sound, no server"), {makeMeter({}), makeMeter({}, false)});
    grid->addRow(QStringLiteral("MuteButton"), enabledAndNot([] { return new MuteButton; }));
    grid->addRow(QStringLiteral("TakeButton"), enabledAndNot([] { return new TakeButton; }));
    auto* progress = new TakeButton;
    progress->setTakeProgress(0.4);
    auto* focused = new TakeButton;
    freezeButton(focused, State::Focus);
    grid->addRow(QStringLiteral("taking, focused"), {progress, focused});
    return grid;
}

QWidget* makeWindows(QWidget* parent)
{
    auto* page = new QWidget(parent);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(12, 8, 12, 12);
    layout->setSpacing(12);
    const auto add = [layout, page](std::unique_ptr<QWidget> window) {
        layout->addWidget(new PictureOf(std::move(window), page), 0, Qt::AlignLeft);
    };
    add(std::make_unique<ConfirmationDialog>(
        QStringLiteral("Remove playlist entry"),
        QStringLiteral("Are you sure you want to remove selected entry?"), QStringLiteral("REMOVE")));
    add(std::make_unique<ErrorDialog>(QStringLiteral("Export failed"),
                                      QStringLiteral("There is no room left on this disk.")));
    auto input = std::make_unique<TextInputDialog>(QStringLiteral("Renumber"), QStringLiteral("FROM:"),
                                                   QStringLiteral("RENUMBER"));
    input->addField(QStringLiteral("TO (START):"), QStringLiteral("5.1"));
    input->setValue(0, QStringLiteral("3,6,8-14"));
    add(std::move(input));
    add(std::make_unique<AboutDialog>());
    add(makeMenu());
    return page;
}

} // namespace vantrel::gallery
