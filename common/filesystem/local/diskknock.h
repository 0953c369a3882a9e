#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QThreadPool>

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
    /// The same of one item among many: another of its directory may have been answered just now, and will
    /// do.
    bool answersForItem(const QString& path);
    /// Goes on as soon as it answers, which may be at once, or with false when it has not in twenty seconds.
    /// Not once the context is gone.
    void whenItAnswers(const QString& path, QObject* context, Next next);
    void setLimit(std::chrono::milliseconds limit) { m_limit = limit; }

private:
    struct Question;
    using QuestionPtr = std::shared_ptr<Question>;
    struct Waiting
    {
        int number;
        QPointer<QObject> context;
        Next next;
    };
    struct Silence
    {
        QString place; // which is silent with all that is below it
        QuestionPtr question;
        QList<Waiting> waiting;
    };

    QuestionPtr ask(const QString& path);
    void noteAnswer(const QString& path);
    void onAnswered(const QuestionPtr& question);
    void giveUp(int number);
    Silence* silenceOver(const QString& path);

    std::unique_ptr<QThreadPool> m_pool;
    QHash<QString, QElapsedTimer> m_answered; // by directory, when something in it was answered last
    QList<Silence> m_silences;
    std::chrono::milliseconds m_limit{20000};
    int m_lastNumber = 0;
};

} // namespace vantrel
