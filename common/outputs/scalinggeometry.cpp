#include "common/outputs/scalinggeometry.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

QSizeF scaledSize(const QString& scaling, const QSizeF& media, const QSizeF& output)
{
    if (scaling == QStringLiteral("stretch"))
        return output;
    const double across = output.width() / media.width();
    const double down = output.height() / media.height();
    if (scaling == QStringLiteral("clip"))
        return media * std::max(across, down);
    if (scaling == QStringLiteral("fit"))
        return media * std::min(across, down);
    return media;
}

double area(const QRectF& rect)
{
    return rect.width() * rect.height();
}

} // namespace

ScalingGeometry::ScalingGeometry(const QString& scaling, const QSizeF& media, const QSizeF& output)
    : m_screen(QPointF(), output)
    , m_media(media)
{
    if (media.isEmpty() || output.isEmpty())
        return;
    m_picture.setSize(scaledSize(scaling, media, output));
    m_picture.moveCenter(m_screen.center());
    if (scaling.endsWith(QStringLiteral("Left")))
        m_picture.moveLeft(m_screen.left());
    else if (scaling.endsWith(QStringLiteral("Right")))
        m_picture.moveRight(m_screen.right());
    if (scaling.startsWith(QStringLiteral("top")))
        m_picture.moveTop(m_screen.top());
    else if (scaling.startsWith(QStringLiteral("bottom")))
        m_picture.moveBottom(m_screen.bottom());
}

double ScalingGeometry::cutShare() const
{
    const double share = m_picture.isEmpty() ? 0 : 1 - area(m_picture & m_screen) / area(m_picture);
    return share < 0.0005 ? 0 : share; // less than a line of any picture
}

bool ScalingGeometry::leavesBackground() const
{
    return area(m_screen) - area(m_picture & m_screen) > 0.0005 * area(m_screen);
}

bool ScalingGeometry::isDistorted() const
{
    return !m_picture.isEmpty() &&
           std::abs(m_picture.width() * m_media.height() / (m_picture.height() * m_media.width()) - 1) >
               0.005;
}

QString ScalingGeometry::description() const
{
    const auto text = [](const char* source) {
        return QCoreApplication::translate("ScalingGeometry", source);
    };
    if (m_picture.isEmpty())
        return {};
    QStringList parts{
        QStringLiteral("%1 x %2").arg(std::lround(m_picture.width())).arg(std::lround(m_picture.height()))};
    if (isCut())
        parts.append(text("%1 % is cut off").arg(std::max(1L, std::lround(100 * cutShare()))));
    if (isDistorted())
        parts.append(text("its shape changes"));
    if (leavesBackground())
        parts.append(text("background around it"));
    if (parts.size() == 1)
        parts.append(text("fills the screen"));
    return parts.join(QStringLiteral(", "));
}

} // namespace vantrel
