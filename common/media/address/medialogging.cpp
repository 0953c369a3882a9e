#include "common/media/address/medialogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcMedia, "vantrel.media")

QByteArray shortened(const QByteArray& text)
{
    constexpr qsizetype most = 2000; // bytes
    return text.size() <= most ? text : text.left(most) + "...";
}

} // namespace vantrel
