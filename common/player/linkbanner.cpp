#include "common/player/linkbanner.h"

#include "common/session/link/linkhealth.h"
#include "common/ui/style/dynamicstyle.h"

namespace vantrel {

namespace {
constexpr int padding = 2; // pixels above and below the text
}

LinkBanner::LinkBanner(const LinkHealth* health, QWidget* parent)
    : ElidedLabel(parent)
    , m_health(health)
{
    setObjectName(QStringLiteral("PlayerTab-link-banner"));
    setElided(true);
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(health, &LinkHealth::changed, this, &LinkBanner::showHealth);
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
