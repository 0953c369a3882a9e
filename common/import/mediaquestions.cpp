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
    for (int looked = 0; m_begun < m_questions.size() && m_open.size() < mostOpen; ++looked) {
        if (looked == mostAtOnce)
            return m_turn.start();
        const Question next = m_questions[m_begun++];
        if (m_answers.contains(next))
            continue;
        const FileSystem::ItemType type = next.first->getType(next.second);
        if (type == FileSystem::File)
            ask(next);
        else
            m_answers.insert(next, {next.second, std::nullopt, type});
    }
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

void MediaQuestions::goOn()
{
    for (auto open = m_open.begin(); open != m_open.end();) {
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
