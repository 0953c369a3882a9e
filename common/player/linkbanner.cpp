#include "common/player/linkbanner.h"

#include "common/session/link/linkhealth.h"
#include "common/session/session.h"
#include "common/ui/style/dynamicstyle.h"

namespace vantrel {

namespace {
constexpr int padding = 1;        // pixels above and below the text
constexpr int leastTextSize = 12; // in pixels, at which its longest sentence fits into the narrowest window
} // namespace

LinkBanner::LinkBanner(const Session* session, QWidget* parent)
    : ElidedLabel(parent)
    , m_health(session->linkHealth())
{
    setObjectName(QStringLiteral("MainNavigationBar-link-banner"));
    setElided(true);
    setLeastTextSize(leastTextSize);
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(m_health, &LinkHealth::changed, this, &LinkBanner::showHealth);
    connect(session, &Session::disconnected, this, [this] { setReading(true); });
    connect(session, &Session::sceneLoaded, this, [this] { setReading(false); });
    showHealth();
}

QSize LinkBanner::sizeHint() const
{
    ensurePolished();
    return {0, fontMetrics().height() + 2 * padding};
}

void LinkBanner::setReading(bool reading)
{
    m_isReading = reading;
    showHealth();
}

void LinkBanner::showHealth()
{
    using enum LinkHealth::State;
    const LinkHealth::State state = m_health->state();
    QStringList parts{m_health->text(), m_health->detail()};
    if (m_isReading && state == Current)
        parts = {tr("Connected again. Reading the state of the server.")};
    parts.removeAll(QString());
    const QString text = parts.join(QStringLiteral(". "));
    setText(text);
    setToolTip(text);
    setAccessibleName(text.isEmpty() ? tr("The server answers") : text);
    setDynamicStyle(this, "mode",
                    text.isEmpty()  ? QString()
                    : state == Lost ? QStringLiteral("lost")
                                    : QStringLiteral("silent"));
}

} // namespace vantrel
