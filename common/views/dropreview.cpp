#include "common/views/dropreview.h"

#include "common/import/mediadrop.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/qml/dialogfactory.h"
#include "common/qml/dropdialog.h"
#include "common/qml/qmlmanager.h"

#include <chrono>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

DropDialog* openDialog(MediaDrop* drop, bool isAwaited)
{
    QMLManager::instance()->initialize();
    return QMLManager::instance()->dialogs()->openDropDialog(drop, isAwaited);
}

} // namespace

DropReview::DropReview(MediaDrop* drop, const Forecast& forecast, bool isAwaited)
    : m_drop(drop)
    , m_forecast(forecast)
    , m_dialog(openDialog(drop, isAwaited))
{
    setParent(m_dialog);
    m_pace.setSingleShot(true);
    m_pace.setInterval(100ms);
    connect(&m_pace, &QTimer::timeout, this, &DropReview::tellChange);
    tell();
    connect(drop, &MediaDrop::isReadyChanged, this, &DropReview::tell);
    connect(drop, &MediaDrop::collectionChanged, this, &DropReview::noteChange);
    connect(drop, &MediaDrop::lastSlotChanged, this, [this] {
        if (m_drop->isReady())
            tell();
        else
            noteChange();
    });
    connect(m_dialog, &ZTDialog::confirmed, this, &DropReview::approve);
    connect(m_dialog, &QDialog::rejected, this, &DropReview::rejected);
}

void DropReview::follow(const AbstractMediaLibraryProvider* library)
{
    connect(library, &AbstractMediaLibraryProvider::reset, this, &DropReview::noteChange);
    connect(library, &AbstractMediaLibraryProvider::collectionRemoved, this, &DropReview::noteChange);
    connect(library, &AbstractMediaLibraryProvider::slotAdded, this, &DropReview::noteChange);
    connect(library, &AbstractMediaLibraryProvider::slotChanged, this, &DropReview::noteChange);
    connect(library, &AbstractMediaLibraryProvider::slotRemoved, this, &DropReview::noteChange);
}

void DropReview::tell()
{
    if (m_drop)
        m_dialog->setForecast(m_forecast(*m_drop));
}

void DropReview::noteChange()
{
    if (!m_pace.isActive())
        m_pace.start();
}

void DropReview::tellChange()
{
    const DropForecast now = m_drop ? m_forecast(*m_drop) : m_dialog->forecast();
    if (now == m_dialog->forecast())
        return;
    if (now.overwritten > 0)
        m_unread.setRemainingTime(1s);
    m_dialog->setForecast(now);
}

/// What others have put there since is shown before it goes.
void DropReview::approve()
{
    if (!m_drop || !m_unread.hasExpired())
        return;
    if (m_dialog->forecast() == m_forecast(*m_drop))
        Q_EMIT approved();
    else
        tell();
}

} // namespace vantrel
