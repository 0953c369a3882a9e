#include "common/command/playback/selectaudiodevicecommand.h"

#include <QCoreApplication>

namespace vantrel {

bool SelectAudioDeviceCommand::init(Object* playback, const std::string& device)
{
    setText(QCoreApplication::translate("SelectAudioDeviceCommand", "Select audio device"));
    return InvokeMethodCommand::init(playback, QStringLiteral("selectAudioDevice"),
                                     {{"device", Variant::from(device)}});
}

} // namespace vantrel
