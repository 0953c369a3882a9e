#pragma once

#include <QFrame>

namespace vantrel {

/// A panel of the application; what it looks like is the style sheet's, by class and dynamic style.
class ZTFrame : public QFrame
{
    Q_OBJECT

public:
    explicit ZTFrame(QWidget* parent = nullptr);

    /// Names the panel; a panel with children overrides this and names them base + suffix.
    virtual void setObjectNames(const QString& base);
};

} // namespace vantrel
