#include "common/filesystem/local/diskknock.h"

#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/mounttable.h"
#include "common/filesystem/model/pathhelpers.h"

#include <QFile>

#include <condition_variable>
#include <mutex>
#include <sys/statvfs.h>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;
using namespace systemfile;

namespace {

constexpr auto patience = 100ms;     // an operator takes it for the time that a click takes
constexpr auto longPatience = 500ms; // where nobody waits: a busy computer is not taken for a silent disk
constexpr qint64 trustMs = 2000;     // many items of one directory are one question,
constexpr qint64 freshMs = 50;       // which is asked anew beside after so long
constexpr qsizetype mostTrusted = 256;
constexpr int mostSilent = 8; // disks that hang at once
constexpr int farewellMs = 200;
constexpr auto watchEvery = 50ms;

QElapsedTimer now()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
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
    m_watch.setInterval(watchEvery);
    connect(&m_watch, &QTimer::timeout, this, &DiskKnock::losePatience);
}

DiskKnock::~DiskKnock()
{
    const auto leave = [](const QuestionPtr& question) {
        const std::lock_guard lock(question->mutex);
        question->listener = nullptr;
    };
    for (const Asked& asked : std::as_const(m_asked))
        leave(asked.question);
    for (const Trust& trust : std::as_const(m_trusted))
        if (trust.question)
            leave(trust.question);
    // Nobody can wake who asks a disk that hangs: the process ends without that thread.
    if (!m_pool->waitForDone(farewellMs))
        (void)m_pool.release();
}

bool DiskKnock::answers(const QString& path)
{
    const QString item = withoutTrailingSlash(path);
    if (silenceOver(item))
        return false;
    const QuestionPtr question = ask(item, nullptr);
    bool isAnswered = false;
    {
        std::unique_lock lock(question->mutex);
        isAnswered = question->changed.wait_for(lock, patience, [&] { return question->isAnswered; });
        if (!isAnswered)
            question->listener = this;
    }
    if (isAnswered)
        noteAnswer(item);
    else
        noteSilence(question);
    return isAnswered;
}

bool DiskKnock::answersForItem(const QString& path)
{
    return isTrusted(withoutTrailingSlash(path)) || answers(path);
}

bool DiskKnock::isTrusted(const QString& path)
{
    const auto trust = m_trusted.find(getParentPath(path));
    if (trust == m_trusted.end() || trust->answered.hasExpired(trustMs))
        return false;
    if (!trust->question) {
        if (trust->answered.hasExpired(freshMs)) {
            trust->question = ask(path, this);
            trust->asked.start();
        }
        return true;
    }
    const QuestionPtr question = trust->question;
    {
        // The answer is there, and is told in a later turn.
        const std::lock_guard lock(question->mutex);
        if (question->isAnswered)
            return true;
    }
    if (!trust->asked.hasExpired(longPatience.count()))
        return true;
    m_trusted.erase(trust);
    noteSilence(question);
    return false;
}

void DiskKnock::whenItAnswers(const QString& path, QObject* context, Next next)
{
    const QString item = withoutTrailingSlash(path);
    Asked* asked = silenceOver(item);
    if (!asked) {
        const QuestionPtr question = ask(item, this);
        m_asked.append({item, question, now(), {}});
        asked = &m_asked.last();
    }
    asked->waiting.append({now(), context, std::move(next)});
    if (!m_watch.isActive())
        m_watch.start();
}

void DiskKnock::losePatience()
{
    QList<QuestionPtr> late;
    for (const Asked& asked : std::as_const(m_asked))
        if (!asked.isSilent && asked.since.hasExpired(longPatience.count()))
            late.append(asked.question);
    for (const QuestionPtr& question : std::as_const(late))
        noteSilence(question);
    QList<Waiting> givenUp;
    for (Asked& asked : m_asked)
        while (!asked.waiting.isEmpty() && asked.waiting.constFirst().since.hasExpired(m_limit.count()))
            givenUp.append(asked.waiting.takeFirst());
    const bool isWaitedFor = std::ranges::any_of(
        m_asked, [](const Asked& asked) { return !asked.isSilent || !asked.waiting.isEmpty(); });
    if (!isWaitedFor)
        m_watch.stop();
    for (const Waiting& one : std::as_const(givenUp))
        if (one.context)
            one.next(false);
}

DiskKnock::QuestionPtr DiskKnock::ask(const QString& path, DiskKnock* listener)
{
    const auto question = std::make_shared<Question>();
    question->path = path;
    question->listener = listener;
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
        if (DiskKnock* hearer = question->listener)
            QMetaObject::invokeMethod(
                hearer, [hearer, question] { hearer->onAnswered(question); }, Qt::QueuedConnection);
    });
    return question;
}

void DiskKnock::noteAnswer(const QString& path)
{
    if (m_trusted.size() >= mostTrusted)
        m_trusted.removeIf([](const auto& one) { return !one.value().question; });
    m_trusted[getParentPath(path)].answered.start();
}

void DiskKnock::noteSilence(const QuestionPtr& question)
{
    if (!asked(question))
        m_asked.append({question->path, question, now(), {}});
    Asked* const silence = asked(question);
    silence->place = placeOf(question->path);
    silence->isSilent = true;
    qCInfo(lcFileSystem) << "The disk does not answer:" << silence->place;
}

void DiskKnock::onAnswered(const QuestionPtr& question)
{
    noteAnswer(question->path);
    if (Trust& trust = m_trusted[getParentPath(question->path)]; trust.question == question)
        trust.question.reset();
    Asked* const found = asked(question);
    if (!found)
        return;
    if (found->isSilent)
        qCInfo(lcFileSystem) << "The disk answers again:" << found->place;
    const QList<Waiting> waiting = std::exchange(found->waiting, {});
    m_asked.removeIf([&question](const Asked& one) { return one.question == question; });
    for (const Waiting& one : waiting)
        if (one.context)
            one.next(true);
}

DiskKnock::Asked* DiskKnock::silenceOver(const QString& path)
{
    const auto found = std::ranges::find_if(m_asked, [&path](const Asked& asked) {
        return asked.isSilent && (path == asked.place || isPathBelow(path, asked.place));
    });
    return found == m_asked.end() ? nullptr : &*found;
}

DiskKnock::Asked* DiskKnock::asked(const QuestionPtr& question)
{
    const auto found = std::ranges::find(m_asked, question, &Asked::question);
    return found == m_asked.end() ? nullptr : &*found;
}

} // namespace vantrel
