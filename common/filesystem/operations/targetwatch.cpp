#include "common/filesystem/operations/targetwatch.h"

#include "common/filesystem/operations/baseoperation.h"

#include <utility>

namespace vantrel {

FileSystem* TargetWatch::blocking(const BaseOperation& operation)
{
    m_isBlocked = false;
    for (const FileSystemTarget& target : operation.targets()) {
        FileSystem* const fileSystem = target.fileSystem;
        if (!fileSystem)
            continue;
        follow(fileSystem);
        if (!fileSystem->isReady() || fileSystem->isLoading()) {
            m_isBlocked = true;
            return fileSystem;
        }
    }
    return nullptr;
}

void TargetWatch::follow(FileSystem* fileSystem)
{
    if (m_followed.contains(fileSystem))
        return;
    m_followed.append(fileSystem);
    const auto tell = [this] {
        if (m_isBlocked)
            Q_EMIT changed();
    };
    connect(fileSystem, &FileSystem::isReadyChanged, this, tell);
    connect(fileSystem, &FileSystem::isLoadingChanged, this, tell);
    connect(fileSystem, &QObject::destroyed, this, [this](QObject* gone) { m_followed.removeAll(gone); });
}

} // namespace vantrel
