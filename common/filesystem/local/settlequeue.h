#pragma once

#include "common/filesystem/local/filejob.h"
#include "common/filesystem/local/incomingfile.h"

#include <QObject>
#include <QSharedPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantrel {

/// Gives what has come in whole its name, once it is on the disk. It does so beside the main thread, and in
/// one go for all that wait: a disk takes as long for one as for many. Owned by the local file system's
/// streams; main thread.
class SettleQueue : public QObject
{
    Q_OBJECT

public:
    using StartJob =
        std::function<void(FileJob::Work work, std::function<void(const JobResult&)> onFinished)>;
    /// The system's number; 0: it stands under its name, also after a loss of power.
    using Done = std::function<void(int error)>;

    struct Item
    {
        std::string hidden;
        std::string path;
        bool isReplacing = false;
        QSharedPointer<IncomingFile> file; // open still: a disk of another machine may take its time
    };

    SettleQueue(StartJob startJob, QObject* parent);

    void add(Item item, Done done);

private:
    struct Waiting
    {
        Item item;
        Done done;
    };

    void start();
    void onFinished(const std::vector<Waiting>& batch, const std::vector<int>& errors);

    StartJob m_startJob;
    std::vector<Waiting> m_waiting;
    std::shared_ptr<std::vector<std::string>> m_swept; // directories; of the job that runs
    bool m_isRunning = false;
    QTimer m_gathering; // of those that come in quick succession
};

} // namespace vantrel
