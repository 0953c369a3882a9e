#include "common/filesystem/local/diskknock.h"

#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/mounttable.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QFile>
#include <QTimer>

#include <condition_variable>
#include <mutex>
#include <sys/statvfs.h>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;
using namespace systemfile;

namespace {

constexpr auto patience = 100ms; // an operator takes it for the time that a click takes
constexpr qint64 trustMs = 50;   // many items of one directory are one question
constexpr qsizetype mostTrusted = 256;
constexpr int mostSilent = 8; // disks that hang at once
constexpr int farewellMs = 200;

QString plain(const QString& path)
{
    const QString normal = normalizePath(path);
    return normal.size() > 1 && normal.endsWith(u'/') ? normal.chopped(1) : normal;
}

/// The volume that holds it; of the system's own the item alone, which may be a link to elsewhere.
QString placeOf(const QString& path)
{
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    const QByteArray mounts = table.open(QIODevice::ReadOnly) ? table.readAll() : QByteArray();
    const QString volume = volumeAbove(mounts, path);
    return volume == u"/" ? path : volume;
}

} // namespace

struct DiskKnock::Question
{
    QString path;
    std::mutex mutex;
    std::condition_variable changed;
    bool isAnswered = false;
    DiskKnock* listener = nullptr; // hears of an answer that comes late
};

DiskKnock::DiskKnock(QObject* parent)
    : QObject(parent)
    , m_pool(std::make_unique<QThreadPool>())
{
    m_pool->setMaxThreadCount(mostSilent);
}

DiskKnock::~DiskKnock()
{
    for (const Silence& silence : std::as_const(m_silences)) {
        const std::lock_guard lock(silence.question->mutex);
        silence.question->listener = nullptr;
    }
    // Nobody can wake who asks a disk that hangs: the process ends without that thread.
    if (!m_pool->waitForDone(farewellMs))
        (void)m_pool.release();
}

bool DiskKnock::answers(const QString& path)
{
    const QString item = plain(path);
    if (silenceOver(item))
        return false;
    const QuestionPtr question = ask(item);
    {
        std::unique_lock lock(question->mutex);
        if (!question->changed.wait_for(lock, patience, [&] { return question->isAnswered; }))
            question->listener = this;
    }
    if (!question->listener) {
        noteAnswer(item);
        return true;
    }
    m_silences.append({placeOf(item), question, {}});
    qCInfo(lcFileSystem) << "The disk does not answer:" << m_silences.constLast().place;
    return false;
}

bool DiskKnock::answersForItem(const QString& path)
{
    const auto answered = m_answered.constFind(getParentPath(plain(path)));
    if (answered != m_answered.constEnd() && !answered->hasExpired(trustMs))
        return true;
    return answers(path);
}

void DiskKnock::whenItAnswers(const QString& path, QObject* context, Next next)
{
    if (answers(path))
        return next(true);
    const int number = ++m_lastNumber;
    silenceOver(plain(path))->waiting.append({number, context, std::move(next)});
    QTimer::singleShot(m_limit, this, [this, number] { giveUp(number); });
}

DiskKnock::QuestionPtr DiskKnock::ask(const QString& path)
{
    const auto question = std::make_shared<Question>();
    question->path = path;
    m_pool->start([question, bytes = bytesOf(path)] {
        // What is known of an item may be remembered here; how much room there is has to be asked for.
        struct statvfs disk
        {
        };
        if (!itemStat(bytes) || ::statvfs(bytes.c_str(), &disk) != 0)
            (void)::statvfs(parentOf(bytes).c_str(), &disk);
        const std::lock_guard lock(question->mutex);
        question->isAnswered = true;
        question->changed.notify_all();
        if (DiskKnock* listener = question->listener)
            QMetaObject::invokeMethod(
                listener, [listener, question] { listener->onAnswered(question); }, Qt::QueuedConnection);
    });
    return question;
}

void DiskKnock::noteAnswer(const QString& path)
{
    if (m_answered.size() >= mostTrusted)
        m_answered.clear();
    m_answered[getParentPath(path)].start();
}

void DiskKnock::onAnswered(const QuestionPtr& question)
{
    const auto silence = std::ranges::find(m_silences, question, &Silence::question);
    if (silence == m_silences.end())
        return;
    qCInfo(lcFileSystem) << "The disk answers again:" << silence->place;
    noteAnswer(question->path);
    const QList<Waiting> waiting = std::exchange(silence->waiting, {});
    m_silences.erase(silence);
    for (const Waiting& one : waiting)
        if (one.context)
            one.next(true);
}

void DiskKnock::giveUp(int number)
{
    for (Silence& silence : m_silences) {
        const auto found = std::ranges::find(silence.waiting, number, &Waiting::number);
        if (found == silence.waiting.end())
            continue;
        const Waiting one = *found;
        silence.waiting.erase(found);
        if (one.context)
            one.next(false);
        return;
    }
}

DiskKnock::Silence* DiskKnock::silenceOver(const QString& path)
{
    const auto holds = [&path](const Silence& silence) {
        return path == silence.place || isPathBelow(path, silence.place);
    };
    const auto found = std::ranges::find_if(m_silences, holds);
    return found == m_silences.end() ? nullptr : &*found;
}

} // namespace vantrel
