#pragma once

#include "common/filesystem/model/operationerror.h"
#include "common/filesystem/operations/baseoperation.h"

#include <QBasicTimer>
#include <QMap>

#include <functional>

namespace vantrel {

class OperationVisitor;

/// An operation with a state, a progress and errors. It does nothing itself: the visitors of the file systems
/// that it touches connect themselves to operationStarted(), and report by setReady(), finish() and abort().
class RunnableOperation : public BaseOperation
{
    Q_OBJECT
    Q_PROPERTY(QList<vantrel::OperationError> errors READ errors NOTIFY errorsChanged)

public:
    enum OperationState {
        NotStarted = 0,
        Running = 1,
        Stopping = 2,
        Failed = 3,
        Passed = 4,
    };
    Q_ENUM(OperationState)

    enum class Pace {
        Alone,
        OnTheLine, // it has all that it wants but the bytes: the next may get ready
        Settling,  // what is left of its work takes nothing from others: the next may begin
    };

    using BaseOperation::BaseOperation;

    void print(QDebug& debug) const override;
    bool isRunning() const override;
    bool hasFinished() const override;
    double progress() const override;

    /// From 0 to 1; what is no number is passed over.
    virtual void setProgress(double progress);
    /// In the order in which they arose.
    virtual QList<OperationError> errors() const;
    virtual void addError(OperationError const& error);

public Q_SLOTS:
    /// Asks the visitors of all targets, then starts; fails when one of them refuses.
    virtual void run();
    /// Ends it as failed, started or not; nothing once it has ended.
    virtual void abort();
    /// Ends it as passed when it runs.
    virtual void finish();

public:
    /// False when that is so already.
    virtual bool setRunning(bool running);
    /// Dispatches to the visit of the concrete class.
    virtual bool accept(OperationVisitor* visitor) = 0;

    OperationState state() const;
    void setState(OperationState state);
    /// All targets have reported; success is whether all of them did so well. success may be null.
    bool isReady(bool* success) const;
    /// The one target has reported.
    bool isReady(FileSystemTarget target, bool* success) const;
    /// One end of the work reports. False for a target that is none of its own or has reported before.
    bool setReady(FileSystemTarget target, bool isSuccessful);
    /// What it leaves to others while it runs, for whoever runs one after the other.
    Pace pace() const { return m_pace; }
    void setPace(Pace pace);
    /// addError() with the text and the time of now. Names and paths in it must come escaped.
    void addErrorText(const QString& message);
    /// It is to run, and finds out whether its disks answer.
    bool isReaching() const { return m_isReaching; }
    /// One of them does not, and is waited for.
    bool isHeldUp() const { return m_isHeldUp; }

Q_SIGNALS:
    void operationFailed();
    void operationSucceeded();
    void operationAborted();
    void paceChanged();
    void heldUpChanged();
    void targetIsReady(vantrel::FileSystemTarget target, bool isSuccessful);
    void errorsChanged();

protected:
    /// It has not ended, and nobody is ending it: who hears operationAborted() may well call abort() again.
    bool canAbort() const;
    /// Goes on once all that it is about can be asked for without waiting; fails when that takes too long.
    void whenReached(std::function<void()> next);
    /// For whoever has just reached them.
    void start();

private:
    void reach(QList<FileSystemTarget> targets, const std::function<void()>& next);
    void endReaching();
    void timerEvent(QTimerEvent* event) override;
    void setHeldUp(bool isHeldUp);
    bool acceptAllVisitor();

    OperationState m_state = NotStarted;
    double m_progress = 0;
    bool m_isAborting = false;
    Pace m_pace = Pace::Alone;
    bool m_isReaching = false;
    bool m_isHeldUp = false;
    QBasicTimer m_heldUpTimer;
    QMap<FileSystemTarget, bool> m_ready;
    QList<OperationError> m_errors;
};

/// "Not-started", "Running", "Stopping", "Failed", "Passed".
QDebug operator<<(QDebug debug, RunnableOperation::OperationState state);

} // namespace vantrel
