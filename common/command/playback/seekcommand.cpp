#include "common/command/playback/seekcommand.h"

#include <QCoreApplication>

namespace vantrel {

bool SeekCommand::init(Object* playback, double position)
{
    if (!(position >= 0))
        return false;
    setText(QCoreApplication::translate("SeekCommand", "Seek media"));
    return InvokeMethodCommand::init(playback, QStringLiteral("seekMedia"),
                                     {{"mediaPosition", Variant::from(position)}});
}

} // namespace vantrel
