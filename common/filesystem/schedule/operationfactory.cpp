#include "common/filesystem/schedule/operationfactory.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/operations/directorytransferoperation.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/operations/recursiveremoveoperation.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"

namespace vantrel {

namespace {

FileSystem::ItemType typeOf(const FileSystemTarget& target)
{
    return target.fileSystem ? target.fileSystem->getType(target.fullPath) : FileSystem::Unknown;
}

const char* textOf(FileSystem::ItemType type)
{
    return type == FileSystem::Unknown ? "UNKNOWN" : "?";
}

QString nameOf(const FileSystemTarget& target)
{
    return target.fileSystem ? target.fileSystem->fileSystemName() : QString();
}

bool isLocal(const FileSystemTarget& target)
{
    return target.fileSystem &&
           target.fileSystem == DefaultFileSystemProvider::instance()->getLocalFileSystem();
}

ModifyOperation::ModifiedTargetType modifiedType(FileSystem::ItemType type)
{
    return type == FileSystem::Directory ? ModifyOperation::Directory : ModifyOperation::File;
}

template <typename Operation, typename... Arguments>
OperationPtr make(Arguments&&... arguments)
{
    const auto operation = QSharedPointer<Operation>::create(std::forward<Arguments>(arguments)...);
    qCDebug(lcFileSystem) << "Created operation" << *operation;
    return operation;
}

} // namespace

OperationFactory::OperationFactory(QObject* parent)
    : QObject(parent)
{
}

/// The source is known to be there.
OperationPtr OperationFactory::createTransfer(const FileSystemTarget& from, const FileSystemTarget& to,
                                              int type)
{
    const auto transferType = static_cast<TransferOperation::TransferType>(type);
    if (typeOf(from) == FileSystem::Directory && !(isLocal(from) && isLocal(to)))
        return make<DirectoryTransferOperation>(this, from, to, transferType);
    return make<FileTransferOperation>(from, to, transferType);
}

OperationPtr OperationFactory::createCopyOperation(FileSystemTarget from, FileSystemTarget to)
{
    if (const auto type = typeOf(from); type != FileSystem::File && type != FileSystem::Directory) {
        qCWarning(lcFileSystem) << "Unable to create copy operation for unknown file type" << textOf(type)
                                << "in" << nameOf(from) << "target" << from.fullPath;
        return {};
    }
    return createTransfer(from, to, TransferOperation::Copy);
}

OperationPtr OperationFactory::createMoveOperation(FileSystemTarget from, FileSystemTarget to)
{
    if (const auto type = typeOf(from); type != FileSystem::File && type != FileSystem::Directory) {
        qCWarning(lcFileSystem) << "Unable to create move operation for unknown" << textOf(type) << "in"
                                << nameOf(from) << "target" << from.fullPath;
        return {};
    }
    return createTransfer(from, to, TransferOperation::Move);
}

OperationPtr OperationFactory::createFileCreationOperation(FileSystemTarget target)
{
    return make<ModifyOperation>(target, ModifyOperation::Create, ModifyOperation::File);
}

OperationPtr OperationFactory::createDirectoryCreationOperation(FileSystemTarget target)
{
    return make<ModifyOperation>(target, ModifyOperation::Create, ModifyOperation::Directory);
}

OperationPtr OperationFactory::createRemoveOperation(FileSystemTarget target)
{
    const auto type = typeOf(target);
    if (type != FileSystem::File && type != FileSystem::Directory) {
        qCWarning(lcFileSystem) << "Unable to create remove operation for unknown" << textOf(type) << "in"
                                << nameOf(target) << "target" << target.fullPath;
        return {};
    }
    const bool isLink = target.fileSystem && target.fileSystem->isLink(target.fullPath);
    if (type == FileSystem::Directory && !isLocal(target) && !isLink)
        return make<RecursiveRemoveOperation>(this, target);
    return make<ModifyOperation>(target, ModifyOperation::Remove, modifiedType(type));
}

OperationPtr OperationFactory::createRenameOperation(FileSystemTarget target, QString newName)
{
    const auto type = typeOf(target);
    if (type != FileSystem::File && type != FileSystem::Directory) {
        qCWarning(lcFileSystem) << "Unable to create rename operation for unknown" << target.fileSystem
                                << "target" << target.fullPath << "with new name" << newName;
        return {};
    }
    return make<ModifyOperation>(target, newName, modifiedType(type));
}

} // namespace vantrel
