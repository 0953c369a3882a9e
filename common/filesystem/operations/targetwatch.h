#pragma once

#include <QList>
#include <QObject>

namespace vantrel {

class BaseOperation;
class FileSystem;

/// Tells a queue whether the file systems of its next operation can take that, and when to ask again. Its
/// queue owns it; main thread only.
class TargetWatch : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The first that cannot take the operation now; null when all can. While one cannot, changed() comes as
    /// soon as that may be over.
    FileSystem* blocking(const BaseOperation& operation);

Q_SIGNALS:
    void changed();

private:
    void follow(FileSystem* fileSystem);

    QList<QObject*> m_followed; // only to compare
    bool m_isBlocked = false;
};

} // namespace vantrel
