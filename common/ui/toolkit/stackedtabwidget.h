#pragma once

#include <QStackedWidget>

namespace vantrel {

/// The pages behind a row of tabs; a page's index is its place in the stack.
class StackedTabWidget : public QStackedWidget
{
    Q_OBJECT

public:
    explicit StackedTabWidget(QWidget* parent = nullptr);

    void setObjectNames(const QString& base);
    /// Appends the page and returns its index.
    int addPage(QWidget* page);
};

} // namespace vantrel
