#include "tests/support/offscreendesk.h"

#include <QFile>

namespace vantrel::test {

QString offscreenDesk(const QString& folder)
{
    QFile screens(folder + QStringLiteral("/screens.json"));
    if (!screens.open(QIODevice::WriteOnly))
        return QStringLiteral("offscreen");
    screens.write(
        "{\"screens\": [{\"name\": \"desk\", \"x\": 0, \"y\": 0, \"width\": 1920, \"height\": 1200, "
        "\"dpr\": 1, \"logicalDpi\": 96, \"logicalBaseDpi\": 96}]}");
    return QStringLiteral("offscreen:configfile=") + screens.fileName();
}

} // namespace vantrel::test
