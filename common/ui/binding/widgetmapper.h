#pragma once

#include "common/session/mirror/objectmapper.h"

#include <QPointer>

#include <functional>

class QLayout;
class QWidget;

namespace vantrel {

/// Keeps one widget of the object type in a layout for each row below an index.
class WidgetMapper : public ObjectMapper
{
    Q_OBJECT

public:
    using ObjectMapper::ObjectMapper;

    /// Before the model: without a layout no widget is made.
    void setLayout(QLayout* layout) { m_layout = layout; }
    QLayout* layout() const { return m_layout; }
    /// Makes the widgets in place of an object type, for those that need more than a parent.
    void setFactory(std::function<QWidget*()> factory) { m_factory = std::move(factory); }
    /// From now on a widget whose row goes is kept, hidden in the layout, for the next row; to begin with
    /// this one, a child of the layout's parent, or none. For widgets that take long to build.
    void keepSpare(QWidget* widget);

Q_SIGNALS:
    void widgetAdded(QWidget* widget, QModelIndex index);
    void widgetRemoved(QWidget* widget, QModelIndex index);

protected:
    bool initialized() const override;
    QObject* createInstance() override;
    void postPopulateHook(MappedObject& mapped) override;
    void objectRemovedHook(const MappedObject& mapped) override;
    void release(QObject* object) override;

private:
    void hideSpare();

    std::function<QWidget*()> m_factory;
    QPointer<QLayout> m_layout;
    QPointer<QWidget> m_spare;
    bool m_keepsSpare = false;
};

} // namespace vantrel
