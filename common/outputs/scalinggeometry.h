#pragma once

#include <QRectF>
#include <QString>

namespace vantrel {

/// Where a picture stands in an output, by a scaling of the scene; all in pixels of the output.
class ScalingGeometry
{
public:
    /// media: the picture's size with square pixels; output: that of its mode. An empty size stands nowhere.
    ScalingGeometry(const QString& scaling, const QSizeF& media, const QSizeF& output);

    /// The whole picture; what lies outside of the output is not seen.
    const QRectF& picture() const { return m_picture; }
    /// 0 to 1, of the picture's area.
    double cutShare() const;
    bool isCut() const { return cutShare() > 0; }
    bool leavesBackground() const;
    /// Whether it is not as wide for its height as it was.
    bool isDistorted() const;
    /// What becomes of the picture, in a few words.
    QString description() const;

private:
    QRectF m_screen;
    QSizeF m_media;
    QRectF m_picture;
};

} // namespace vantrel
