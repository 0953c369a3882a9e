#include "common/ui/style/iconcache.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"

#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.ui")

constexpr qreal disabledOpacity = 0.5; // of white at 80 %: 40 % in all

QPixmap render(const QString& path, const QColor& colour, const QSize& size, qreal ratio, qreal opacity)
{
    const QString key = QStringLiteral("halcyra/%1/%2/%3x%4@%5/%6")
                            .arg(path, colour.isValid() ? colour.name(QColor::HexArgb) : QString())
                            .arg(size.width())
                            .arg(size.height())
                            .arg(ratio)
                            .arg(opacity);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    QSvgRenderer renderer;
    if (!QFile::exists(path) || !renderer.load(path)) {
        qCWarning(log) << "No such icon:" << path;
        return {};
    }
    pixmap = QPixmap(size * ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(pixmap.size())));
    if (colour.isValid()) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), colour);
    }
    if (opacity < 1.0) { // of the whole: fills and the outlines over them must not add up
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.fillRect(pixmap.rect(), QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity)));
    }
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace

QString IconCache::path(const QString& name)
{
    return name.startsWith(u':') || name.startsWith(u'/') ? name : QStringLiteral(":/icons/%1.svg").arg(name);
}

QPixmap IconCache::pixmap(const QString& name, const QColor& colour, const QSize& size,
                          qreal devicePixelRatio)
{
    return render(path(name), colour, size, devicePixelRatio, 1.0);
}

QPixmap IconCache::original(const QString& name, const QSize& size, qreal devicePixelRatio)
{
    return render(path(name), QColor(), size, devicePixelRatio, 1.0);
}

QIcon tintedIcon(const QString& name, const QColor& colour, const QSize& size)
{
    const qreal ratio = qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    const QString path = IconCache::path(name);
    QIcon icon;
    icon.addPixmap(render(path, colour, size, ratio, 1.0), QIcon::Normal);
    icon.addPixmap(render(path, colour, size, ratio, disabledOpacity), QIcon::Disabled);
    return icon;
}

QIcon tintedIcon(const QString& name)
{
    const int extent = iconExtent(currentFontSize());
    return tintedIcon(name, colors::getColor(colors::Zt_white_80), QSize(extent, extent));
}

} // namespace vantrel
