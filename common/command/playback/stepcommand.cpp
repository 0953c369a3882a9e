#include "common/command/playback/stepcommand.h"

#include <QCoreApplication>

namespace vantrel {

bool StepCommand::init(Object* playback, int frames)
{
    if (frames == 0)
        return false;
    if (frames == 1)
        setText(QCoreApplication::translate("StepCommand", "Next frame"));
    else if (frames == -1)
        setText(QCoreApplication::translate("StepCommand", "Previous frame"));
    else
        setText(QCoreApplication::translate("StepCommand", "Step multiple frames"));
    return InvokeMethodCommand::init(playback, QStringLiteral("step"),
                                     {{"frameCount", Variant::from(frames)}});
}

} // namespace vantrel
