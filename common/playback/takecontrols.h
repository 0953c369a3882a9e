#pragma once

#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/playenums.h"
#include "tarn/ref.h"

#include <memory>

class QAbstractButton;
class QBoxLayout;
class QButtonGroup;
class QUndoStack;

namespace vantrel {

class DoubleEdit;
class IconButton;
class Object;
class PropertiesMapper;
class PushButton;
class Scene;
class TakeButton;
class ZTLabel;

/// The take button with the options of the take, which live in the settings by channel group. Pressing it
/// calls one method of the channel; the server does the rest and reports progress. Owned by ChannelWidget;
/// main thread.
class TakeControls : public ZTFrame
{
    Q_OBJECT

public:
    /// stack: executes the take; must outlive this. Without one it fails with a warning.
    explicit TakeControls(QUndoStack* stack, QWidget* parent = nullptr);
    ~TakeControls() override;

    /// With nothing chosen these warn and give the first value.
    TakeTransitionType takeTransition() const;
    PlayheadOption transitionFrom() const;
    void setTransitionType(TakeTransitionType type);
    void setTransitionFrom(PlayheadOption option);
    /// Seconds.
    double takeDuration() const;
    void setTakeDuration(double seconds);
    /// True swaps preview and program on take, false copies preview.
    bool takePreset() const;
    void setTakePreset(bool presetToggle);

    /// The channel, or null; what was chosen so far stays with the group it was chosen under.
    void setObject(Object* object, Scene* scene);
    TakeButton* takeButton() const { return m_takeButton; }
    /// Why nothing can be sent to the server, and why what is cued cannot be taken; empty when it can. TAKE
    /// is grey then and the reason stands below it and in its tooltip.
    void setBlocked(const QString& reason);
    void setCueFault(const QString& reason);
    void setColumnStep(ColumnStep step);
    void updateDurationEditReadOnlyState();
    QString getConfigGroup() const;
    void saveButtonStates();
    void restoreButtonStates();

public Q_SLOTS:
    void handleTake();
    void handleButtonChanged(QAbstractButton* button);
    void handleDurationChanged();

private:
    void createControls();
    void updateReason();
    /// Says in words what the chosen icons stand for, or why there is no take.
    void updateSummary();
    void layOut();

    QUndoStack* m_stack;
    PropertiesMapper* m_propertiesMapper;
    TakeButton* m_takeButton;
    IconButton* m_fromInpoint = nullptr;
    IconButton* m_fromCurrent = nullptr;
    IconButton* m_directCut = nullptr;
    IconButton* m_crossfade = nullptr;
    IconButton* m_dip = nullptr;
    DoubleEdit* m_duration = nullptr;
    ZTLabel* m_summary = nullptr;
    ZTLabel* m_presetLabel = nullptr;
    QBoxLayout* m_presetLayout = nullptr;
    PushButton* m_swap = nullptr;
    PushButton* m_copy = nullptr;
    QButtonGroup* m_fromGroup;
    QButtonGroup* m_transitionGroup;
    QButtonGroup* m_presetGroup;
    ColumnStep m_step = ColumnStep::Wide;
    QString m_blocked;
    QString m_cueFault;
    Ref<Object> m_object;
};

} // namespace vantrel
