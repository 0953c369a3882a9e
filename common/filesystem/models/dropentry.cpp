#include "common/filesystem/models/dropentry.h"

namespace vantrel {

QDebug operator<<(QDebug debug, const DropEntry& entry)
{
    const QDebugStateSaver saver(debug);
    const auto name = [](const FileSystem* side) {
        return side ? side->fileSystemName() : QStringLiteral("no file system");
    };
    debug.nospace() << "[Drop - From:" << name(entry.sourceFileSystem) << " ->" << entry.sourcePath
                    << ", To:" << name(entry.targetFileSystem) << " ->" << entry.targetPath
                    << ", Type:" << entry.type << "]";
    return debug;
}

} // namespace vantrel
