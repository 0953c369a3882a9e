#pragma once

#include "common/session/objectmapper.h"

#include <QPointer>

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

Q_SIGNALS:
    void widgetAdded(QWidget* widget, QModelIndex index);
    void widgetRemoved(QWidget* widget, QModelIndex index);

protected:
    bool initialized() const override;
    QObject* createInstance() override;
    void postPopulateHook(MappedObject& mapped) override;
    void objectRemovedHook(const MappedObject& mapped) override;

private:
    QPointer<QLayout> m_layout;
};

} // namespace vantrel
