#pragma once

#include <QQuickWidget>
#include <QQuickWindow>

namespace vantrel {

/// A widget that shows a declarative view of the one engine, which it makes when it is the first: the view
/// fills the widget, and Tab leads through its controls and on to the next widget.
class QuickView : public QQuickWidget
{
    Q_OBJECT

public:
    explicit QuickView(QWidget* parent = nullptr);

    /// What the view itself asks for, where it does.
    QSize sizeHint() const override;

protected:
    /// engine: null for a view that gets its content later, and costs next to nothing until then.
    QuickView(QQmlEngine* engine, QWidget* parent);

    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void onSceneGraphError(QQuickWindow::SceneGraphError error, const QString& message);
    QQuickItem* endOfChain(bool first) const;
};

} // namespace vantrel
