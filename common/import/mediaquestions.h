#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <optional>

namespace vantrel {

/// Asks what media files hold, and gives the answers in the order of the questions, whichever comes first.
/// Only some are asked ahead, so that thousands of files keep no view waiting, and one that nobody tells
/// anything of holds up none behind it. Part of a drop; main thread only.
class MediaQuestions : public QObject
{
    Q_OBJECT

public:
    struct Answer
    {
        QString path;
        std::optional<FileMetadata> metadata;         // none: nothing was told of it in time
        FileSystem::ItemType type = FileSystem::File; // of anything else nothing is asked
    };

    static constexpr int mostOpen = 24;

    explicit MediaQuestions(QObject* parent = nullptr);

    /// For so long is waited for one answer. The network asks four times within twenty seconds.
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }
    /// Nobody is there who could tell: no patience runs out, and what is open is asked anew afterwards.
    void setIsHeld(bool isHeld);
    void add(const QStringList& paths, FileSystem* fileSystem);
    /// Those that are not taken yet.
    qsizetype size() const { return m_questions.size(); }
    bool isEmpty() const { return m_questions.isEmpty(); }
    /// Of those, in their order.
    QString pathAt(qsizetype number) const { return m_questions.value(number).second; }
    /// What is known of it already; null for nothing.
    const Answer* answerAt(qsizetype number) const;
    /// Asks it before all that are not asked yet.
    void askFirst(qsizetype number);
    /// Ascending numbers: nobody wants to know any more.
    void remove(const QList<qsizetype>& numbers);
    /// Asks on, and lets go of what nobody tells anything of. Has to be called now and then.
    void goOn();
    /// The next in order, once it is there.
    std::optional<Answer> take();

Q_SIGNALS:
    void answered();

private:
    using Question = QPair<FileSystem*, QString>;

    bool isAsked(const Question& question) const
    {
        return m_open.contains(question) || m_answers.contains(question);
    }
    void begin(const Question& question);
    void ask(const Question& question);
    void askAhead();
    void follow(FileSystem* fileSystem);
    void lookAtTold();

    std::chrono::milliseconds m_patience{25000};
    bool m_isHeld = false;
    QList<Question> m_questions;
    qsizetype m_begun = 0;    // of m_questions: were asked
    QList<Question> m_urgent; // the last one first
    QHash<Question, QDeadlineTimer> m_open;
    QHash<Question, Answer> m_answers;
    QSet<Question> m_told; // of m_open: something was said of them in this turn
    QSet<FileSystem*> m_followed;
    QTimer m_turn;
};

} // namespace vantrel
