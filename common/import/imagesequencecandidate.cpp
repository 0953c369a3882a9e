#include "common/import/imagesequencecandidate.h"

namespace vantrel {

QDebug operator<<(QDebug debug, const ImageSequenceCandidate& candidate)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "<Image sequence - id:" << candidate.id << ", name:" << candidate.name
                    << ", frames:" << candidate.startFrame << "-" << candidate.endFrame
                    << ", fps:" << candidate.fps << ">";
    return debug;
}

} // namespace vantrel
