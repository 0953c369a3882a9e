#pragma once

#include "common/filesystem/model/filesystemtarget.h"

#include <QDebug>
#include <QList>
#include <QObject>
#include <QSharedPointer>

namespace vantrel {

/// One change to a file system, from its wish to its end. Held by shared pointers, first of all the queue's;
/// whoever else wants it keeps a weak one. Main thread only.
class BaseOperation : public QObject, public QEnableSharedFromThis<BaseOperation>
{
    Q_OBJECT
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)

public:
    explicit BaseOperation(QObject* parent = nullptr);
    ~BaseOperation() override;

    /// One line for the log.
    virtual void print(QDebug& debug) const;
    Q_INVOKABLE virtual bool isRunning() const = 0;
    /// It has ended, well or not.
    Q_INVOKABLE virtual bool hasFinished() const = 0;
    /// All items that it touches.
    Q_INVOKABLE virtual QList<vantrel::FileSystemTarget> targets() const = 0;
    /// From 0 to 1.
    virtual double progress() const = 0;

Q_SIGNALS:
    void operationStarted();
    void operationStopped();
    void progressChanged(double from, double to);
};

using OperationPtr = QSharedPointer<BaseOperation>;
using OperationPtrList = QList<OperationPtr>;

QDebug operator<<(QDebug debug, const BaseOperation& operation);
/// Both fields, as every line about an operation names a target: the file system's name, " -> ", the path.
void printTarget(QDebug& debug, const FileSystemTarget& target);

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::OperationPtr)
