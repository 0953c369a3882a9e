#include "common/qml/fontsizes.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/stylesheet.h"

#include <QGuiApplication>

namespace vantrel {

FontSizes::FontSizes(QObject* parent)
    : QObject(parent)
{
    followFontSize(this, [this](FontSize size) {
        m_size = size;
        Q_EMIT changed();
    });
    readRatio();
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &FontSizes::readRatio);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &FontSizes::readRatio);
}

void FontSizes::readRatio()
{
    const double ratio = qGuiApp->devicePixelRatio();
    if (m_ratio == ratio)
        return;
    m_ratio = ratio;
    Q_EMIT changed();
}

int FontSizes::icon() const
{
    return iconExtent(m_size);
}

int FontSizes::scaled(int pixels) const
{
    return vantrel::scaled(pixels, m_size);
}

int FontSizes::length(const char* token) const
{
    return StyleSheet::length(QString::fromLatin1(token), m_size);
}

} // namespace vantrel
