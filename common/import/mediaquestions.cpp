#include "common/import/mediaquestions.h"

#include <algorithm>
#include <utility>

namespace vantrel {

MediaQuestions::MediaQuestions(QObject* parent)
    : QObject(parent)
{
    m_turn.setSingleShot(true);
    m_turn.setInterval(0);
    connect(&m_turn, &QTimer::timeout, this, &MediaQuestions::lookAtTold);
}

void MediaQuestions::add(const QStringList& paths, FileSystem* fileSystem)
{
    m_questions.reserve(m_questions.size() + paths.size());
    for (const QString& path : paths)
        m_questions.append({fileSystem, path});
}

void MediaQuestions::ask(const Question& question)
{
    FileMetadata metadata;
    if (question.first->requestMetadataAlone(question.second, metadata) && metadata.isTold()) {
        m_open.remove(question);
        m_answers.insert(question, {question.second, metadata});
    } else if (!m_open.contains(question)) {
        m_open.insert(question, QDeadlineTimer(m_patience));
        follow(question.first);
    }
}

void MediaQuestions::askAhead()
{
    constexpr int mostAtOnce = 500; // where all is known already
    for (int looked = 0; m_open.size() < mostOpen; ++looked) {
        if (m_urgent.isEmpty() && m_begun >= m_questions.size())
            return;
        if (looked == mostAtOnce)
            return m_turn.start();
        begin(m_urgent.isEmpty() ? m_questions[m_begun++] : m_urgent.takeLast());
    }
}

void MediaQuestions::begin(const Question& question)
{
    if (isAsked(question))
        return;
    const FileSystem::ItemType type = question.first->getType(question.second);
    if (type == FileSystem::File)
        ask(question);
    else
        m_answers.insert(question, {question.second, std::nullopt, type});
}

const MediaQuestions::Answer* MediaQuestions::answerAt(qsizetype number) const
{
    const auto answer = m_answers.constFind(m_questions.value(number));
    return answer == m_answers.cend() ? nullptr : &*answer;
}

void MediaQuestions::askFirst(qsizetype number)
{
    if (number < m_begun || number >= m_questions.size() || isAsked(m_questions[number]))
        return;
    m_urgent.append(m_questions[number]);
    m_turn.start();
}

void MediaQuestions::remove(const QList<qsizetype>& numbers)
{
    QSet<Question> gone;
    QList<Question> kept;
    kept.reserve(m_questions.size());
    auto next = numbers.cbegin();
    qsizetype begun = m_begun;
    for (qsizetype i = 0; i < m_questions.size(); ++i) {
        if (next == numbers.cend() || *next != i) {
            kept.append(m_questions[i]);
            continue;
        }
        gone.insert(m_questions[i]);
        begun -= i < m_begun;
        ++next;
    }
    m_questions = kept;
    m_begun = begun;
    m_urgent.removeIf([&gone](const Question& question) { return gone.contains(question); });
}

void MediaQuestions::follow(FileSystem* fileSystem)
{
    if (m_followed.contains(fileSystem))
        return;
    m_followed.insert(fileSystem);
    // What is said first of a file may not be all: it is asked once the turn is over.
    connect(fileSystem, &FileSystem::fileMetadataChanged, this,
            [this, fileSystem](const FileSystemFile& file) {
                const Question question(fileSystem, file.getFullPath());
                if (!m_open.contains(question))
                    return;
                m_told.insert(question);
                m_turn.start();
            });
}

void MediaQuestions::lookAtTold()
{
    const QSet<Question> told = std::exchange(m_told, {});
    for (const Question& question : told) {
        if (m_open.contains(question))
            ask(question);
    }
    askAhead();
    Q_EMIT answered();
}

void MediaQuestions::setIsHeld(bool isHeld)
{
    if (std::exchange(m_isHeld, isHeld) == isHeld || isHeld)
        return;
    for (auto open = m_open.begin(); open != m_open.end(); ++open) {
        open->setRemainingTime(m_patience);
        m_told.insert(open.key());
    }
    m_turn.start();
}

void MediaQuestions::goOn()
{
    for (auto open = m_open.begin(); !m_isHeld && open != m_open.end();) {
        if (!open->hasExpired()) {
            ++open;
            continue;
        }
        m_answers.insert(open.key(), {open.key().second, std::nullopt});
        open = m_open.erase(open);
    }
    if (!m_questions.isEmpty() && m_open.contains(m_questions.first()))
        ask(m_questions.first());
    askAhead();
}

std::optional<MediaQuestions::Answer> MediaQuestions::take()
{
    if (m_questions.isEmpty())
        return {};
    const auto answer = m_answers.constFind(m_questions.first());
    if (answer == m_answers.cend())
        return {};
    const Answer taken = *answer;
    m_questions.removeFirst();
    m_begun = std::max<qsizetype>(m_begun - 1, 0);
    if (m_questions.isEmpty())
        m_answers.clear();
    return taken;
}

} // namespace vantrel
