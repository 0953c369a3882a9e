#include "common/filesystem/operations/baseoperation.h"

#include "common/filesystem/model/filesystemlogging.h"

namespace vantrel {

namespace {

QString addressText(const void* object)
{
    return QStringLiteral("0x%1").arg(reinterpret_cast<quintptr>(object), 16, 16, QLatin1Char('0'));
}

} // namespace

BaseOperation::BaseOperation(QObject* parent)
    : QObject(parent)
{
    qCDebug(lcFileSystem).noquote() << "CREATING" << addressText(this);
}

BaseOperation::~BaseOperation()
{
    qCDebug(lcFileSystem).noquote() << "DELETING" << addressText(this);
}

void BaseOperation::print(QDebug& debug) const
{
    debug << metaObject()->className() << ", running:" << (isRunning() ? "true" : "false");
}

QDebug operator<<(QDebug debug, const BaseOperation& operation)
{
    const QDebugStateSaver saver(debug);
    debug.nospace();
    operation.print(debug);
    return debug;
}

void printTarget(QDebug& debug, const FileSystemTarget& target)
{
    const QString name = target.fileSystem ? target.fileSystem->fileSystemName() : QStringLiteral("none");
    debug << name << " -> " << target.fullPath;
}

} // namespace vantrel
