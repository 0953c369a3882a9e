#pragma once

#include "common/import/dropforecast.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace vantrel {

class AbstractMediaLibraryProvider;
class DropDialog;
class MediaDrop;

/// The operator looks at what was found in a drop, and at what goes for it, as that is now, however long the
/// dialog stands. It goes with its dialog. Main thread.
class DropReview : public QObject
{
    Q_OBJECT

public:
    using Forecast = std::function<DropForecast(const MediaDrop&)>;

    /// forecast: what would become of the drop now. isAwaited: the operator has just let go and looks for it.
    DropReview(MediaDrop* drop, const Forecast& forecast, bool isAwaited);

    void follow(const AbstractMediaLibraryProvider* library);
    /// Says it as it is now.
    void tell();
    /// The same, ten times a second at most.
    void noteChange();

Q_SIGNALS:
    /// And all that goes was read.
    void approved();
    void rejected();

private:
    void approve();
    void tellChange();

    QPointer<MediaDrop> m_drop;
    Forecast m_forecast;
    DropDialog* m_dialog;
    QTimer m_pace;
    QDeadlineTimer m_unread{0}; // what it overwrites has changed just now, and nobody can have read it
};

} // namespace vantrel
