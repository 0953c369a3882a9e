#pragma once

#include "common/ui/toolkit/pushbutton.h"

namespace vantrel {

/// A tab's button: an optional icon before its text, in the accent while its tab is the active one.
class NavButton : public PushButton
{
    Q_OBJECT

public:
    explicit NavButton(const QString& text, const QString& icon = {}, QWidget* parent = nullptr);

    bool isActive() const { return m_active; }
    void setActive(bool active);

private:
    void updateIcon();

    QString m_icon;
    bool m_active = false;
};

} // namespace vantrel
