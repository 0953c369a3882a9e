#include "common/ui/clicktest/clicktestreport.h"

#include "common/ui/clicktest/clicktestrequest.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLoggingCategory>
#include <QMenu>
#include <QPushButton>
#include <QQuickItem>
#include <QRadioButton>
#include <QTableView>
#include <QTreeView>

namespace vantrel::clicktest {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.uitest")

QString className(const QObject* object)
{
    return object ? QString::fromLatin1(object->metaObject()->className()) : QString();
}

QString rectText(const QRect& rect)
{
    return QStringLiteral("%1,%2,%3,%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

/// rect in screen pixels; local is the point inside the target that lies at the rectangle's centre.
void addGeometry(QJsonObject& json, const QRect& rect, const QPoint& local)
{
    const QPoint centre = rect.center();
    json.insert(QLatin1String("global_x"), centre.x());
    json.insert(QLatin1String("global_y"), centre.y());
    json.insert(QLatin1String("local_x"), local.x());
    json.insert(QLatin1String("local_y"), local.y());
    json.insert(QLatin1String("width"), rect.width());
    json.insert(QLatin1String("height"), rect.height());
    json.insert(QLatin1String("rect"), rectText(rect));
}

QJsonObject getWidgetBasics(const QWidget* widget)
{
    QJsonObject json;
    json.insert(QLatin1String("objectName"), widget->objectName());
    json.insert(QLatin1String("className"), className(widget));
    json.insert(QLatin1String("parentClassName"), className(widget->parent()));
    addGeometry(json, QRect(widget->mapToGlobal(QPoint(0, 0)), widget->size()), widget->rect().center());
    json.insert(QLatin1String("visible"), widget->isVisible());
    // Where no window manager makes a window active, what its keys go to all the same.
    const bool isNext = !QApplication::activeWindow() && widget->window()->focusWidget() == widget;
    json.insert(QLatin1String("focus"), widget->hasFocus() || isNext);
    json.insert(QLatin1String("enabled"), widget->isEnabled());
    json.insert(QLatin1String("toolTip"), widget->toolTip());
    const QList<QByteArray> names = widget->dynamicPropertyNames();
    for (const QByteArray& name : names)
        json.insert(QLatin1String("property_") + QString::fromLatin1(name),
                    QJsonValue::fromVariant(widget->property(name)));
    return json;
}

QJsonObject actionJson(const QMenu* menu, QAction* action)
{
    QJsonObject json;
    json.insert(QLatin1String("objectName"), action->objectName());
    json.insert(QLatin1String("className"), className(action));
    json.insert(QLatin1String("text"), action->text());
    json.insert(QLatin1String("visible"), action->isVisible() && menu->isVisible());
    json.insert(QLatin1String("enabled"), action->isEnabled());
    const QRect place = menu->actionGeometry(action);
    addGeometry(json, QRect(menu->mapToGlobal(place.topLeft()), place.size()), place.center());
    return json;
}

struct MenuWalk
{
    const ClickTestRequest& request;
    QJsonArray& results;
    int room; // how many more direct matches the reply may take
};

void processMenu(const QMenu* menu, MenuWalk& walk, bool whole);

void processMenuActions(const QMenu* menu, MenuWalk& walk, bool whole)
{
    const QList<QAction*> actions = menu->actions();
    for (QAction* action : actions) {
        const bool direct = !whole && walk.room > 0 && walk.request.matches(action);
        if (whole || direct)
            walk.results.append(actionJson(menu, action));
        walk.room -= direct ? 1 : 0;
        if (const QMenu* submenu = action->menu(); whole && submenu)
            processMenu(submenu, walk, true);
    }
}

void processMenu(const QMenu* menu, MenuWalk& walk, bool whole)
{
    const bool direct = !whole && walk.room > 0 && walk.request.matches(menu);
    walk.room -= direct ? 1 : 0;
    if (whole || direct)
        walk.results.append(getWidgetBasics(menu));
    processMenuActions(menu, walk, whole || direct);
}

QJsonObject processDelegate(const QAbstractItemView* view, const QModelIndex& index, int row, int column)
{
    QJsonObject json;
    json.insert(QLatin1String("objectName"),
                QStringLiteral("%1-row%2-col%3").arg(view->objectName()).arg(row).arg(column));
    const QRect place = view->visualRect(index);
    addGeometry(json, QRect(view->viewport()->mapToGlobal(place.topLeft()), place.size()), place.center());
    json.insert(QLatin1String("text"), index.data(Qt::DisplayRole).toString());
    json.insert(QLatin1String("visible"), view->isVisible() && view->viewport()->rect().intersects(place));
    return json;
}

} // namespace

QJsonObject widgetJson(const QWidget* widget)
{
    QJsonObject json = getWidgetBasics(widget);
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget);
        qobject_cast<const QCheckBox*>(button) || qobject_cast<const QRadioButton*>(button) ||
        qobject_cast<const QPushButton*>(button)) {
        json.insert(QLatin1String("text"), button->text());
        json.insert(QLatin1String("checked"), button->isChecked());
    } else if (const auto* label = qobject_cast<const QLabel*>(widget)) {
        json.insert(QLatin1String("text"), label->text());
    } else if (const auto* edit = qobject_cast<const QLineEdit*>(widget)) {
        json.insert(QLatin1String("text"), edit->text());
    } else if (const auto* combo = qobject_cast<const QComboBox*>(widget)) {
        json.insert(QLatin1String("text"), combo->currentText());
    }
    return json;
}

QJsonObject quickItemJson(const QQuickItem* item)
{
    QJsonObject json;
    json.insert(QLatin1String("objectName"), item->objectName());
    json.insert(QLatin1String("className"), className(item));
    json.insert(QLatin1String("parentClassName"), className(item->parentItem()));
    const QRectF place(item->mapToGlobal(QPointF(0, 0)), QSizeF(item->width(), item->height()));
    addGeometry(json, place.toAlignedRect(), QPointF(item->width() / 2, item->height() / 2).toPoint());
    json.insert(QLatin1String("visible"), item->isVisible());
    json.insert(QLatin1String("enabled"), item->isEnabled());
    json.insert(QLatin1String("focus"), item->hasActiveFocus());
    for (const char* name : {"text", "checked", "count"}) {
        if (const QVariant value = item->property(name); value.isValid())
            json.insert(QLatin1String(name), QJsonValue::fromVariant(value));
    }
    return json;
}

void appendMenus(const ClickTestRequest& request, QJsonArray& results)
{
    MenuWalk walk{request, results, request.maxResults - static_cast<int>(results.size())};
    const QWidgetList all = QApplication::allWidgets();
    for (const QWidget* widget : all) {
        if (const auto* menu = qobject_cast<const QMenu*>(widget))
            processMenu(menu, walk, false);
    }
}

void appendDelegates(const QWidget* widget, QJsonArray& results)
{
    const auto* view = qobject_cast<const QAbstractItemView*>(widget);
    if (!view)
        return;
    const bool known = qobject_cast<const QTableView*>(view) || qobject_cast<const QTreeView*>(view) ||
                       qobject_cast<const QListView*>(view);
    if (!known) {
        qCInfo(log) << "Not a known view";
        return;
    }
    const QAbstractItemModel* model = view->model();
    if (!model)
        return;
    const QModelIndex root = view->rootIndex();
    // A list shows one column of its model, and calls it the first.
    const auto* list = qobject_cast<const QListView*>(view);
    const int firstColumn = list ? list->modelColumn() : 0;
    const int columns = list ? 1 : model->columnCount(root);
    for (int row = 0; row < model->rowCount(root); ++row) {
        for (int column = 0; column < columns; ++column)
            results.append(processDelegate(view, model->index(row, firstColumn + column, root), row, column));
    }
}

} // namespace vantrel::clicktest
