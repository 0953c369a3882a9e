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

protected:
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    QQuickItem* endOfChain(bool first) const;
};

} // namespace vantrel
