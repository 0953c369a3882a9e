#include "common/filesystem/local/filejob.h"

#include <QThreadPool>

namespace vantrel {

FileJob::FileJob(Work work, ConflictPolicy policy, QObject* parent)
    : QObject(parent)
    , m_work(std::move(work))
    , m_control(
          policy, [this] { report(); },
          [this](const TransferConflict& conflict) {
              QMetaObject::invokeMethod(
                  this, [this, conflict] { Q_EMIT conflictFound(conflict); }, Qt::QueuedConnection);
          })
{
}

FileJob::~FileJob() = default;

// On the worker: one report is on its way at most, so that a busy main thread finds no heap of them.
void FileJob::report()
{
    if (m_isReporting.exchange(true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isReporting = false;
            const JobControl::Progress progress = m_control.progress();
            Q_EMIT progressed(progress.done, progress.total);
        },
        Qt::QueuedConnection);
}

void FileJob::start(QThreadPool* pool)
{
    pool->start([this] {
        const JobResult result = m_work(m_control);
        QMetaObject::invokeMethod(
            this,
            [this, result] {
                const JobControl::Progress progress = m_control.progress();
                if (progress.total > 0)
                    Q_EMIT progressed(progress.done, progress.total);
                Q_EMIT finished(result);
                deleteLater();
            },
            Qt::QueuedConnection);
    });
}

void FileJob::cancel()
{
    m_control.cancel();
}

void FileJob::answer(ConflictPolicy answer, bool forAll)
{
    m_control.answer(answer, forAll);
}

} // namespace vantrel
