#pragma once

#include "common/ui/toolkit/pushbutton.h"

#include <QTimer>

namespace vantrel {

/// A tab's button: an optional icon before its text, in the accent while its tab is the active one.
class NavButton : public PushButton
{
    Q_OBJECT

public:
    explicit NavButton(const QString& text, const QString& icon = {}, QWidget* parent = nullptr);

    bool isActive() const { return m_active; }
    void setActive(bool active);
    /// What is dragged over it for a moment opens its tab, so that it can be dropped there.
    void setOpensByDrag(bool opens) { setAcceptDrops(opens); }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;

private:
    void updateIcon();

    QString m_icon;
    bool m_active = false;
    QTimer m_dragRest;
};

} // namespace vantrel
