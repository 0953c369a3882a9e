#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace vantrel {

/// Finds out whether the disk that holds a path answers, before anybody on the main thread asks it for
/// something: a share whose server is gone answers nobody, and holds whoever asks. Owned by the local file
/// system; main thread.
class DiskKnock : public QObject
{
    Q_OBJECT

public:
    using Next = std::function<void(bool isAnswered)>;

    explicit DiskKnock(QObject* parent = nullptr);
    ~DiskKnock() override;

    /// Waits for the disk a tenth of a second at most, and no longer at all while it is known to be silent.
    bool answers(const QString& path);
    /// The same of one item among many: another of its directory was answered a moment ago, and will do,
    /// while the disk is asked anew beside. So no work on many items waits for another thread's turn.
    bool answersForItem(const QString& path);
    /// Goes on in a later turn, as soon as it answers, or with false when it has not in twenty seconds. By
    /// then the system knows the item by heart. Not once the context is gone.
    void whenItAnswers(const QString& path, QObject* context, Next next);
    void setLimit(std::chrono::milliseconds limit) { m_limit = limit; }

private:
    struct Question;
    using QuestionPtr = std::shared_ptr<Question>;
    struct Waiting
    {
        QElapsedTimer since;
        QPointer<QObject> context;
        Next next;
    };
    /// What was asked for, and is silent with all that is below it once that has taken too long.
    struct Asked
    {
        QString place;
        QuestionPtr question;
        QElapsedTimer since;
        QList<Waiting> waiting; // the longest first
        bool isSilent = false;
    };
    struct Trust
    {
        QElapsedTimer answered; // something in the directory, last
        QuestionPtr question;   // that is under way
        QElapsedTimer asked;
    };

    QuestionPtr ask(const QString& path, DiskKnock* listener);
    bool isTrusted(const QString& path);
    void noteAnswer(const QString& path);
    void noteSilence(const QuestionPtr& question);
    void onAnswered(const QuestionPtr& question);
    void losePatience();
    Asked* silenceOver(const QString& path);
    Asked* asked(const QuestionPtr& question);

    std::unique_ptr<QThreadPool> m_pool;
    QHash<QString, Trust> m_trusted; // by directory
    QList<Asked> m_asked;
    QTimer m_watch; // over all of them: a timer for each of many files would cost more than the files
    std::chrono::milliseconds m_limit{20000};
};

} // namespace vantrel
