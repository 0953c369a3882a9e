#include "common/qml/iconprovider.h"

#include "common/ui/style/iconcache.h"

namespace vantrel {

namespace {

constexpr int usualSide = 24;

} // namespace

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Pixmap)
{
}

QPixmap IconProvider::requestPixmap(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QColor colour(u'#' + id.section(u'/', 1, 1));
    const int side = requestedSize.width() > 0 ? requestedSize.width() : usualSide;
    const QPixmap drawing = IconCache::pixmap(id.section(u'/', 0, 0), colour, QSize(side, side));
    if (size)
        *size = drawing.size();
    return drawing;
}

} // namespace vantrel
