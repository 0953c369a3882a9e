#include "ombra/base/version.h"

#include <unistd.h>

namespace vantrel::ombra {

std::string hostName()
{
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "ombra";
}

} // namespace vantrel::ombra
