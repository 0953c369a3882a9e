#include "common/playback/endactionwidget.h"

#include "common/playback/endactionbutton.h"
#include "common/playback/playbacklogging.h"
#include "common/ui/style/dynamicstyle.h"
#include "tarn/media/playenums.h"

#include <QButtonGroup>
#include <QEvent>
#include <QHBoxLayout>

#include <array>

namespace vantrel {

namespace {

struct EndActionSpec
{
    EndAction action;
    const char* icon;
    const char* word;
    const char* tip;
    const char* suffix;
};

constexpr int frameMargin = 2; // pixels around the words

constexpr std::array<EndActionSpec, 5> specs{{
    {EndAction::Next, "mc_next", QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "Next"),
     QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "End action: Next"), "-next-button"},
    {EndAction::Pause, "mc_pause", QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "Pause"),
     QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "End action: Pause"), "-pause-button"},
    {EndAction::Stop, "mc_stop", QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "Stop"),
     QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "End action: Stop"), "-stop-button"},
    {EndAction::Repeat, "repeat", QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "Repeat"),
     QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "End action: Repeat"), "-repeat-button"},
    {EndAction::GoTo, "go_to_clip", QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "Go to"),
     QT_TRANSLATE_NOOP("vantrel::EndActionWidget", "End action: Go to"), nullptr},
}};

} // namespace

EndActionWidget::EndActionWidget(QWidget* parent)
    : ZTFrame(parent)
    , m_group(new QButtonGroup(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (const EndActionSpec& spec : specs) {
        const QString icon = QStringLiteral(":/icons/") + QLatin1String(spec.icon);
        auto* button = new EndActionButton(icon + QStringLiteral("_off.svg"), icon + QStringLiteral(".svg"),
                                           tr(spec.word), tr(spec.tip), this);
        m_group->addButton(button, static_cast<int>(spec.action));
        layout->addWidget(button);
    }
    populateButtonToEndActionMap();
    button(m_endAction)->setChecked(true);
    connect(m_group, &QButtonGroup::buttonClicked, this, &EndActionWidget::handleButtonPress);
    updateButtonEnabledState();
}

void EndActionWidget::populateButtonToEndActionMap()
{
    for (QAbstractButton* button : m_group->buttons())
        m_buttonToEndAction.insert(button, m_group->id(button));
}

EndActionButton* EndActionWidget::button(int endAction) const
{
    return static_cast<EndActionButton*>(m_group->button(endAction));
}

void EndActionWidget::setObjectNames(const QString& base)
{
    setObjectName(base);
    for (const EndActionSpec& spec : specs) {
        if (spec.suffix)
            button(static_cast<int>(spec.action))->setObjectName(base + QLatin1String(spec.suffix));
    }
}

void EndActionWidget::setColumnStep(ColumnStep step)
{
    for (QAbstractButton* button : m_group->buttons())
        static_cast<IconButton*>(button)->setSizes(buttonSizes(step));
}

void EndActionWidget::setShowsWords(bool shows)
{
    const int margin = shows ? frameMargin : 0;
    layout()->setContentsMargins(margin, margin, margin, margin);
    layout()->setSpacing(shows ? 0 : 2);
    setDynamicStyle(this, "class", shows ? QStringLiteral("segments") : QString());
    for (QAbstractButton* each : m_group->buttons())
        static_cast<EndActionButton*>(each)->setShowsWord(shows);
}

int EndActionWidget::wordsWidth() const
{
    int width = 2 * frameMargin;
    for (const QAbstractButton* each : m_group->buttons())
        width += static_cast<const EndActionButton*>(each)->wordWidth();
    return width;
}

void EndActionWidget::setEndAction(int endAction)
{
    if (endAction == m_endAction)
        return;
    m_endAction = endAction;
    if (EndActionButton* checked = button(endAction))
        checked->setChecked(true);
    Q_EMIT endActionChanged();
}

void EndActionWidget::setEndActionMode(int mode)
{
    if (mode == m_endActionMode)
        return;
    m_endActionMode = mode;
    updateButtonEnabledState();
    Q_EMIT endActionModeChanged();
}

void EndActionWidget::handleButtonPress(QAbstractButton* button)
{
    const auto found = m_buttonToEndAction.constFind(button);
    if (found == m_buttonToEndAction.constEnd()) {
        qCWarning(lcPlayback) << "Button missing from map in EndActionWidget";
        return;
    }
    setEndAction(*found);
}

void EndActionWidget::updateButtonEnabledState()
{
    switch (m_endActionMode) {
    case PlaybackModel::ENTRY:
        setEnabled(true);
        break;
    case PlaybackModel::SLOT:
        setPartialEnabled();
        break;
    default:
        setEnabled(false);
        break;
    }
    updateReasons();
}

void EndActionWidget::updateReasons()
{
    for (QAbstractButton* each : m_group->buttons()) {
        QString reason;
        if (m_endActionMode != PlaybackModel::DISABLED && !isEnabled())
            reason = tr("This media has no end.");
        else if (m_endActionMode == PlaybackModel::SLOT && !each->isEnabled())
            reason = tr("Only while a playlist plays.");
        static_cast<EndActionButton*>(each)->setReason(reason);
    }
}

void EndActionWidget::setEnabled(bool enabled)
{
    for (QAbstractButton* button : m_group->buttons())
        button->setEnabled(enabled && isEnabled());
}

void EndActionWidget::setPartialEnabled()
{
    setEnabled(true);
    button(static_cast<int>(EndAction::Next))->setEnabled(false);
    button(static_cast<int>(EndAction::GoTo))->setEnabled(false);
}

void EndActionWidget::changeEvent(QEvent* event)
{
    ZTFrame::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        updateButtonEnabledState();
}

} // namespace vantrel
