#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QList>
#include <QObject>
#include <QString>

namespace vantrel::images {

/// A file or a directory in which to look for media.
struct RequestPath
{
    Q_GADGET
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(vantrel::FileSystem::ItemType type MEMBER type)

public:
    QString path;
    FileSystem::ItemType type = FileSystem::Unknown;

    friend bool operator==(const RequestPath&, const RequestPath&) = default;
};

/// Paths of one file system that are read together, and the slot for which that is done.
struct AsyncRequest
{
    Q_GADGET
    Q_PROPERTY(QList<vantrel::images::RequestPath> paths MEMBER paths)
    Q_PROPERTY(int collection MEMBER collection)
    Q_PROPERTY(int slot MEMBER slot)
    Q_PROPERTY(vantrel::FileSystem* fileSystem MEMBER fileSystem)

public:
    QList<RequestPath> paths;
    int collection = 0;
    int slot = 0;
    FileSystem* fileSystem = nullptr;

    bool isEmpty() const { return paths.isEmpty(); }
};

} // namespace vantrel::images
