#pragma once

#include <QQuickImageProvider>

namespace vantrel {

/// The drawings of the application for declarative views: "image://icons/folder/ccffffff" is the folder in
/// white at 80 %, as large as is asked for. The engine owns it; main thread only.
class IconProvider : public QQuickImageProvider
{
    Q_OBJECT

public:
    IconProvider();
    QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace vantrel
