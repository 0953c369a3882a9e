#include "common/ui/toolkit/stackedtabwidget.h"

namespace vantrel {

StackedTabWidget::StackedTabWidget(QWidget* parent)
    : QStackedWidget(parent)
{
    // A page that is hidden must not hold the window above the size that the shown one needs.
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void StackedTabWidget::setObjectNames(const QString& base)
{
    setObjectName(base);
}

int StackedTabWidget::addPage(QWidget* page)
{
    return addWidget(page);
}

} // namespace vantrel
