#pragma once

#include <QList>
#include <QString>

namespace vantrel {

/// A way in which media stand in an output's picture.
struct ScalingMode
{
    QString value; // the scene's text
    QString label;
    QString shortLabel; // where its drawing stands beside it
    QString icon;
};

/// All of them, in the order of menus.
const QList<ScalingMode>& scalingModes();
/// The label of a value; the value itself where it is none.
QString scalingLabel(const QString& value);

} // namespace vantrel
