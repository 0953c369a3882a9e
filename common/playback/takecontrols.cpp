#include "common/playback/takecontrols.h"

#include "common/command/execute.h"
#include "common/command/playback/takecommand.h"
#include "common/playback/playbacklogging.h"
#include "common/playback/takebutton.h"
#include "common/session/settings/configuration.h"
#include "common/ui/binding/propertiesmapper.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/blockedreason.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztlabel.h"
#include "tarn/scene/object.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace vantrel {

namespace {

IconButton* makeOption(const QString& icon, const QString& name, const QString& tip, QButtonGroup* group,
                       int id, QWidget* parent)
{
    auto* button = new IconButton(icon, {}, parent);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setCheckable(true);
    button->setStyleClass(QStringLiteral("boxed"));
    group->addButton(button, id);
    return button;
}

PushButton* makePreset(const QString& text, const QString& name, const QString& tip, QButtonGroup* group,
                       QWidget* parent)
{
    auto* button = new PushButton(text, parent);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setCheckable(true);
    button->setStyleClass(QStringLiteral("segment"));
    group->addButton(button);
    return button;
}

} // namespace

TakeControls::TakeControls(QUndoStack* stack, QWidget* parent)
    : ZTFrame(parent)
    , m_stack(stack)
    , m_propertiesMapper(new PropertiesMapper(this))
    , m_takeButton(new TakeButton(this))
    , m_fromGroup(new QButtonGroup(this))
    , m_transitionGroup(new QButtonGroup(this))
    , m_presetGroup(new QButtonGroup(this))
{
    setObjectName(QStringLiteral("TakeControls"));
    createControls();
    layOut();
    restoreButtonStates();

    connect(m_takeButton, &QPushButton::clicked, this, &TakeControls::handleTake);
    for (const QButtonGroup* group : {m_fromGroup, m_transitionGroup, m_presetGroup}) {
        connect(group, &QButtonGroup::buttonClicked, this, &TakeControls::handleButtonChanged);
        connect(group, &QButtonGroup::idToggled, this, &TakeControls::updateSummary);
    }
    connect(m_duration, &DoubleEdit::valueChanged, this, &TakeControls::handleDurationChanged);
    connect(m_duration, &QLineEdit::returnPressed, m_duration, [this] { m_duration->clearFocus(); });
}

TakeControls::~TakeControls() = default;

void TakeControls::createControls()
{
    m_takeButton->setObjectName(QStringLiteral("TakeControls-Take-Button"));

    using enum TakeTransitionType;
    m_fromInpoint =
        makeOption(QStringLiteral(":/icons/take_from_inpoint.svg"),
                   QStringLiteral("TakeControls-Inpoint-Button"), tr("Playhead option: From inpoint"),
                   m_fromGroup, static_cast<int>(PlayheadOption::FromInpoint), this);
    m_fromCurrent = makeOption(QStringLiteral(":/icons/take_from_current.svg"),
                               QStringLiteral("TakeControls-Current-Button"),
                               tr("Playhead option: From current position in preview"), m_fromGroup,
                               static_cast<int>(PlayheadOption::FromPosition), this);
    m_directCut = makeOption(
        QStringLiteral(":/icons/direct_cut.svg"), QStringLiteral("TakeControls-DirectCut-Button"),
        tr("Take transition type: Direct cut"), m_transitionGroup, static_cast<int>(DirectCut), this);
    m_crossfade = makeOption(
        QStringLiteral(":/icons/crossfade.svg"), QStringLiteral("TakeControls-Crossfade-Button"),
        tr("Take transition type: Crossfade"), m_transitionGroup, static_cast<int>(Crossfade), this);
    m_dip = makeOption(QStringLiteral(":/icons/dip.svg"), QStringLiteral("TakeControls-Dip-Button"),
                       tr("Take transition type: Dip to color"), m_transitionGroup,
                       static_cast<int>(DipToColor), this);

    m_duration = new DoubleEdit(this);
    m_duration->setObjectName(QStringLiteral("TakeControls-Duration"));
    m_duration->setUnit(QStringLiteral("s"));
    m_duration->setRange(0.0, 10.0);
    m_duration->setMinimumWidth(60);
    m_duration->setAccessibleName(tr("Take transition duration"));
    m_duration->setToolTip(tr("Take transition duration can be specified from 0.0 to 10.0 seconds.\n"
                              "Duration does not apply to direct cut."));
    m_summary = new ZTLabel(this);
    m_summary->setObjectName(QStringLiteral("TakeControls-Summary"));
    m_summary->setStyleClass(QStringLiteral("caption"));
    m_summary->setAlignment(Qt::AlignCenter);
    m_summary->setWordWrap(true);
    m_presetLabel = new ZTLabel(tr("PRW on Take:"), this);
    m_presetLabel->setStyleClass(QStringLiteral("dim"));
    m_swap = makePreset(tr("Swap"), QStringLiteral("TakeControls-Swap-Button"),
                        tr("Preset toggle: Swap preview and program on take"), m_presetGroup, this);
    m_copy = makePreset(tr("Copy"), QStringLiteral("TakeControls-Copy-Button"),
                        tr("Preset toggle: Copy preview to program on take"), m_presetGroup, this);
}

void TakeControls::layOut()
{
    const auto makeRow = [](std::initializer_list<IconButton*> buttons) {
        auto* row = new QHBoxLayout;
        row->setSpacing(spacing::tight);
        row->addStretch(1);
        for (IconButton* button : buttons)
            row->addWidget(button);
        row->addStretch(1);
        return row;
    };
    auto* presetFrame = new ZTFrame(this);
    presetFrame->setObjectName(QStringLiteral("TakeControls-Preset"));
    m_presetLayout = new QBoxLayout(QBoxLayout::LeftToRight, presetFrame);
    m_presetLayout->setContentsMargins(2, 2, 2, 2);
    m_presetLayout->setSpacing(2);
    m_presetLayout->addWidget(m_swap);
    m_presetLayout->addWidget(m_copy);
    m_presetLabel->setAlignment(Qt::AlignCenter);
    m_presetLabel->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::tight, spacing::loose, spacing::tight, spacing::tight);
    layout->setSpacing(spacing::normal);
    layout->addWidget(m_takeButton, 0, Qt::AlignHCenter);
    layout->addSpacing(spacing::normal);
    layout->addLayout(makeRow({m_fromInpoint, m_fromCurrent}));
    layout->addLayout(makeRow({m_directCut, m_crossfade, m_dip}));
    layout->addWidget(m_summary);
    layout->addWidget(m_duration);
    layout->addSpacing(spacing::normal);
    layout->addWidget(m_presetLabel);
    layout->addWidget(presetFrame);
    layout->addStretch(1);
    followFontSize(this, [this](FontSize) { setColumnStep(m_step); });
}

void TakeControls::setColumnStep(ColumnStep step)
{
    m_step = step;
    m_takeButton->setColumnStep(step);
    m_summary->setVisible(step == ColumnStep::Wide);
    // As high as its two lines, whatever it says.
    m_summary->ensurePolished();
    m_summary->setFixedHeight(2 * m_summary->fontMetrics().lineSpacing());
    for (IconButton* button : {m_fromInpoint, m_fromCurrent, m_directCut, m_crossfade, m_dip})
        button->setSizes(takeOptionSizes(step));
    m_presetLayout->setDirection(step == ColumnStep::Wide ? QBoxLayout::LeftToRight
                                                          : QBoxLayout::TopToBottom);
    setFixedWidth(takeWidth(step, currentFontSize()));
}

TakeTransitionType TakeControls::takeTransition() const
{
    const int id = m_transitionGroup->checkedId();
    if (id < 0) {
        qCWarning(lcPlayback) << "Unknown Take transition selected";
        return TakeTransitionType::Crossfade;
    }
    return static_cast<TakeTransitionType>(id);
}

PlayheadOption TakeControls::transitionFrom() const
{
    const int id = m_fromGroup->checkedId();
    if (id < 0) {
        qCWarning(lcPlayback) << "Unknown Take transition selected";
        return PlayheadOption::FromInpoint;
    }
    return static_cast<PlayheadOption>(id);
}

void TakeControls::setTransitionType(TakeTransitionType type)
{
    if (QAbstractButton* button = m_transitionGroup->button(static_cast<int>(type)))
        button->setChecked(true);
}

void TakeControls::setTransitionFrom(PlayheadOption option)
{
    if (QAbstractButton* button = m_fromGroup->button(static_cast<int>(option)))
        button->setChecked(true);
}

double TakeControls::takeDuration() const
{
    return m_duration->value();
}

void TakeControls::setTakeDuration(double seconds)
{
    m_duration->setValue(seconds);
}

bool TakeControls::takePreset() const
{
    return m_presetGroup->checkedButton() == m_swap;
}

void TakeControls::setTakePreset(bool presetToggle)
{
    (presetToggle ? m_swap : m_copy)->setChecked(true);
}

void TakeControls::setObject(Object* object, Scene* scene)
{
    saveButtonStates();
    m_object = Ref<Object>(object);
    Object* program = object ? object->findChildByName("program", false) : nullptr;
    m_propertiesMapper->setObject(program ? scene : nullptr, program);
    if (program)
        m_propertiesMapper->addMapping(QStringLiteral("takeProgress"), m_takeButton, "takeProgress");
    else
        m_takeButton->setTakeProgress(0.0);
    restoreButtonStates();
}

void TakeControls::updateSummary()
{
    QString transition = tr("Crossfade");
    if (m_directCut->isChecked())
        transition = tr("Direct cut");
    else if (m_dip->isChecked())
        transition = tr("Dip to color");
    const QString from = m_fromCurrent->isChecked() ? tr("from position") : tr("from in point");
    const QString reason = m_blocked.isEmpty() ? m_cueFault : m_blocked;
    m_summary->setText(reason.isEmpty() ? transition + u'\n' + from : reason);
    m_summary->setStyleClass(reason.isEmpty() ? QStringLiteral("caption") : QStringLiteral("reason"));
    m_takeButton->setAccessibleDescription(reason.isEmpty() ? transition + u' ' + from : reason);
}

void TakeControls::setBlocked(const QString& reason)
{
    m_blocked = reason;
    updateReason();
}

void TakeControls::setCueFault(const QString& reason)
{
    m_cueFault = reason;
    updateReason();
}

void TakeControls::updateReason()
{
    const QString reason = m_blocked.isEmpty() ? m_cueFault : m_blocked;
    m_takeButton->setEnabled(reason.isEmpty());
    setBlockedReason(m_takeButton, reason);
    updateSummary();
}

void TakeControls::updateDurationEditReadOnlyState()
{
    m_duration->setReadOnly(m_directCut->isChecked());
}

QString TakeControls::getConfigGroup() const
{
    if (!m_object)
        return QStringLiteral("Playback_default");
    return QStringLiteral("Playback_%1").arg(0); // one channel so far
}

void TakeControls::saveButtonStates()
{
    Configuration* settings = configuration();
    if (!settings)
        return;
    settings->beginGroup(getConfigGroup());
    settings->setValue(TAKE_DURATION, takeDuration());
    settings->setValue(TAKE_FROM, QVariant::fromValue(transitionFrom()));
    settings->setValue(TAKE_TRANSITION, QVariant::fromValue(takeTransition()));
    settings->setValue(TAKE_PRESET_TOGGLE, takePreset());
    settings->endGroup();
}

void TakeControls::restoreButtonStates()
{
    // Read first: setting the duration saves, and would overwrite what has not been read yet.
    Configuration* settings = configuration();
    if (settings)
        settings->beginGroup(getConfigGroup());
    const QVariant from = configurationValue(TAKE_FROM);
    const QVariant transition = configurationValue(TAKE_TRANSITION);
    const QVariant duration = configurationValue(TAKE_DURATION);
    const QVariant preset = configurationValue(TAKE_PRESET_TOGGLE);
    if (settings)
        settings->endGroup();

    setTransitionFrom(static_cast<PlayheadOption>(from.toInt()));
    setTransitionType(static_cast<TakeTransitionType>(transition.toInt()));
    setTakePreset(preset.toBool());
    setTakeDuration(duration.toDouble());
    updateDurationEditReadOnlyState();
    updateSummary();
}

void TakeControls::handleTake()
{
    if (!m_takeButton->isEnabled())
        return;
    execute<TakeCommand>(m_stack, "take command", m_object.get(), takePreset(), transitionFrom(),
                         takeTransition(), takeDuration());
}

void TakeControls::handleButtonChanged(QAbstractButton* button)
{
    if (m_transitionGroup->buttons().contains(button))
        updateDurationEditReadOnlyState();
    saveButtonStates();
}

void TakeControls::handleDurationChanged()
{
    saveButtonStates();
}

} // namespace vantrel
