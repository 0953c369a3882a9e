#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class QQuickItem;

namespace vantrel {

/// The application's own tooltips for declarative views ("toolTips"). Main thread only.
class ToolTips : public QObject
{
    Q_OBJECT

public:
    explicit ToolTips(QObject* parent = nullptr);

    /// In a moment, below the item, while the mouse rests on it. Plain text; an empty one shows nothing.
    Q_INVOKABLE void show(QQuickItem* item, const QString& text);
    /// Takes away what show() of the item brought or is about to bring.
    Q_INVOKABLE void hide(QQuickItem* item);

private:
    void appear();

    QPointer<QQuickItem> m_item;
    QString m_text;
    QTimer m_delay;
};

} // namespace vantrel
