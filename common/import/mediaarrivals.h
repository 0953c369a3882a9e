#pragma once

#include "common/filesystem/schedule/filesystemoperations.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace vantrel {

class FileSystemProvider;
class MediaSlotDropHandler;
class TransferOperation;

/// Files of this computer that were dropped on slots: they go to the server first, and what has arrived is
/// then dropped there. A lost link holds them up and no more. Main thread only; what it is given must outlive
/// it.
class MediaArrivals : public QObject
{
    Q_OBJECT

public:
    /// One file or directory on its way.
    struct Arrival
    {
        QString name; // as it may be shown
        int collection = 0;
        double progress = 0; // 0 to 1
    };

    MediaArrivals(FileSystemProvider* provider, FileSystemOperations* operations,
                  MediaSlotDropHandler* handler, QObject* parent = nullptr);
    ~MediaArrivals() override;

    /// Absolute paths. What is neither media nor a directory is left out, and the operator told.
    void add(const QStringList& paths, int collection, int slot);
    /// In the order in which they were dropped; without what has arrived or failed.
    QList<Arrival> arrivals() const;

Q_SIGNALS:
    /// At most ten times a second while one runs.
    void changed();

private:
    struct Item
    {
        OperationPtr operation;
        QString name;
        bool isDirectory = false;
    };
    struct Batch
    {
        int id = 0;
        int collection = 0;
        int slot = 0;
        std::vector<Item> items;
    };

    bool start(Batch& batch, const QString& path);
    void onEnd(int batch);
    void drop(const Batch& batch);
    void tellLater();

    FileSystemProvider* m_provider;
    FileSystemOperations* m_operations;
    MediaSlotDropHandler* m_handler;
    std::vector<Batch> m_batches;
    int m_lastId = 0;
    bool m_isTelling = false;
};

} // namespace vantrel
