#pragma once

#include <QObject>

class QQuickItem;

namespace vantrel {

/// Tells who listens to the window of rows of declarative lists ("rowSpeech"): such a list keeps the keyboard
/// itself, and a reader says what has it. Main thread only.
class RowSpeech : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The row has become the current one; null for none.
    Q_INVOKABLE void tell(QQuickItem* row);

Q_SIGNALS:
    /// Told, whether anybody listens or not.
    void told(QQuickItem* row);
};

} // namespace vantrel
