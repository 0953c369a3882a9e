#pragma once

#include <QAccessibleWidget>

namespace vantrel {

/// A time as a screen reader tells it: its name says which, its value what it shows. A label alone would give
/// the one in the place of the other. Owned by Qt's cache of accessible objects; main thread.
class AccessibleTime : public QAccessibleWidget
{
public:
    explicit AccessibleTime(QWidget* display);

    /// Lets Qt find this class for every display; once is enough.
    static void install();

    QString text(QAccessible::Text kind) const override;
};

} // namespace vantrel
