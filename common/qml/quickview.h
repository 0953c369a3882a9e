#pragma once

#include <QQuickWidget>

namespace vantrel {

/// A widget that shows a declarative view: it fills the widget, and Tab leads through its controls and on to
/// the next widget.
class QuickView : public QQuickWidget
{
    Q_OBJECT

public:
    explicit QuickView(QQmlEngine* engine, QWidget* parent = nullptr);

    /// What the view itself asks for, where it does.
    QSize sizeHint() const override;

protected:
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    QQuickItem* endOfChain(bool first) const;
};

} // namespace vantrel
