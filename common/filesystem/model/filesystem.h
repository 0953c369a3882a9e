#pragma once

#include "common/filesystem/model/filemetadata.h"
#include "common/filesystem/model/filesystemdirectory.h"
#include "common/filesystem/model/filesystemfile.h"

#include <QList>
#include <QObject>

#include <functional>

namespace vantrel {

class OperationVisitor;

/// The disks of the operator's computer or the media storage of the server, behind one face. Listings answer
/// at once or later; whoever changes something makes an operation, which operationVisitor() prepares. Lives
/// as long as the process; main thread only.
class FileSystem : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString fileSystemName READ fileSystemName CONSTANT)
    Q_PROPERTY(bool isReady READ isReady NOTIFY isReadyChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)

public:
    enum ItemType {
        Unknown = 0,
        File = 1,
        Directory = 2,
    };
    Q_ENUM(ItemType)

    using QObject::QObject;

    /// "Local files" or "Server files", translated.
    virtual QString fileSystemName() const = 0;
    /// Where a view starts.
    virtual QString defaultRootPath() const = 0;
    virtual bool isReady() const = 0;
    virtual bool isLoading() const = 0;
    /// The sub-directories, the way up ("..") among them, appended to the result. False: the answer is not
    /// here, and directoryChanged comes once it is, upon which the caller asks again. True may still give
    /// what was known a while ago; directoryChanged then comes when that was not true any more.
    Q_INVOKABLE virtual bool getDirectories(QString directoryPath,
                                            QList<vantrel::FileSystemDirectory>& result) = 0;
    /// The media files, which replace the result; otherwise as getDirectories().
    Q_INVOKABLE virtual bool getFiles(QString directoryPath, QList<vantrel::FileSystemFile>& result) = 0;
    /// Whoever was told to wait for directoryChanged does so no more: what is still being read of it may be
    /// left there. Others who wait for the same hear directoryChanged, and ask again.
    virtual void giveUpListing(const QString& directoryPath);
    Q_INVOKABLE virtual ItemType getType(QString path) = 0;
    /// False when nothing is known; fileMetadataChanged comes once something is.
    Q_INVOKABLE virtual bool requestMetadata(QString filePath, vantrel::FileMetadata& result) = 0;
    /// The same for who has many files and shows none of them: nobody is asked for their pictures.
    virtual bool requestMetadataAlone(const QString& filePath, FileMetadata& result);
    Q_INVOKABLE virtual bool isValidDirectoryPath(QString directoryPath) const = 0;
    /// Not owned by the caller.
    virtual OperationVisitor* operationVisitor() = 0;

    /// Bytes that may still be written where the path lies; -1 when nobody knows.
    virtual qint64 availableBytes(const QString& path) const;
    /// Bytes of a file; -1 when it is not there, or nothing is known of it.
    virtual qint64 fileSize(const QString& path) const;
    /// Of the files that the directory held when it was read last, those that are no media: nothing shows or
    /// transfers them.
    virtual int otherFiles(const QString& directoryPath) const;
    /// A symbolic link, whatever it leads to: a removal takes it away and leaves that. False when nothing is
    /// known of it.
    virtual bool isLink(const QString& path) const;
    /// Of a transfer into it from elsewhere the operation meets what is there already before anyone begins;
    /// false when the file system does so itself.
    virtual bool wantsFreeNames() const;
    /// Goes on once it can be asked for the path without this thread having to wait: at once, where that is
    /// never so. False when it cannot after twenty seconds. Not once the context is gone.
    virtual void whenReachable(const QString& path, QObject* context, std::function<void(bool)> next);

Q_SIGNALS:
    void isReadyChanged(bool isReady);
    void isLoadingChanged(bool isLoading);
    void directoryChanged(vantrel::FileSystemDirectory directory);
    void fileChanged(vantrel::FileSystemFile file);
    void invalidDirectoryPathRequest(QString path);
    /// It is not coming back: what waits for it ends as failed, with the message.
    void givenUp(QString message);
    void fileMetadataChanged(vantrel::FileSystemFile file, vantrel::FileMetadata metadata);
};

} // namespace vantrel
