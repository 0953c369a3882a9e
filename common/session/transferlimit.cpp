#include "common/session/transferlimit.h"

#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/settings/configuration.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {
constexpr double bytesInMegabyte = 1e6;
} // namespace

TransferLimit::TransferLimit(Configuration* configuration, GUIPlayback* program, QObject* parent)
    : QObject(parent)
    , m_configuration(configuration)
    , m_program(program)
{
    connect(program, &GUIPlayback::stateChanged, this, &TransferLimit::apply);
    connect(configuration, &Configuration::optionChanged, this, [this](ConfigurationOption option) {
        if (option == TRANSFER_LIMIT_WHILE_PLAYING)
            apply();
    });
}

qint64 TransferLimit::bytesPerSecond() const
{
    if (m_program->state() != SourcePlayState::Play)
        return 0;
    const double megabytes = m_configuration->value(TRANSFER_LIMIT_WHILE_PLAYING).toDouble();
    return static_cast<qint64>(std::clamp(megabytes, 0.0, 1e6) * bytesInMegabyte);
}

void TransferLimit::setServer(ServerFileSystem* server)
{
    m_server = server;
    m_applied = -1;
    apply();
}

void TransferLimit::apply()
{
    const qint64 limit = bytesPerSecond();
    if (m_server && std::exchange(m_applied, limit) != limit)
        m_server->client()->setRateLimit(limit);
}

} // namespace vantrel
