#pragma once

#include <QMetaType>
#include <QString>

namespace vantrel {

/// One place in the list at the top of the local side: a folder or a volume.
struct HomeLocation
{
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(int type MEMBER type)

public:
    /// As the list shows it.
    QString name;
    /// Absolute.
    QString path;
    int type = 1;

    bool operator==(const HomeLocation&) const = default;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::HomeLocation)
