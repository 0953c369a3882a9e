#pragma once

#include <QProxyStyle>

namespace vantrel {

/// Fusion, with the icons of menus and fields as large as the text asks for; the style sheet lies over it.
/// Owned by the application.
class ScaledStyle : public QProxyStyle
{
    Q_OBJECT

public:
    ScaledStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
};

} // namespace vantrel
