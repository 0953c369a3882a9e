#pragma once

#include "common/session/settings/configuration.h"
#include "common/ui/toolkit/collapse.h"
#include "tarn/media/channelenums.h"

namespace vantrel {

class DoubleEdit;
class PlaybackModel;
class Session;
class SwitchSelect;

/// Chooses the audio device of each channel, and how program's sound lies to its picture, in the outputs
/// column. Without a server it only shows the last known choice. Main thread.
class AudioOutputItem : public Collapse
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit AudioOutputItem(Session* session, QWidget* parent = nullptr);

public Q_SLOTS:
    void onConnected();
    void onDisconnected();
    void onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void showDevices();
    void showDelay();
    /// Shows the server's address beside the title.
    void onAddressChanged();
    void onStyleChange(vantrel::ConfigurationOption option, const QVariant& value);

private:
    SwitchSelect* createSwitch(const QString& name, const QString& accessibleName);
    void createDelay();
    void onDelayEdited(double milliseconds);
    QWidget* createMessage();
    void onSelectionChanged(PlaybackType type);
    void showDevice(SwitchSelect* target, const PlaybackModel* model);
    void updateMessage();

    Session* m_session;
    SwitchSelect* m_preview = nullptr;
    SwitchSelect* m_program = nullptr;
    DoubleEdit* m_delay = nullptr;
    QWidget* m_message = nullptr;
};

} // namespace vantrel
