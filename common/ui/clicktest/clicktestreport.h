#pragma once

#include <QJsonObject>

class QJsonArray;
class QQuickItem;
class QWidget;

namespace vantrel {

struct ClickTestRequest;

/// What the UI test server tells of the interface. Positions are those of an object's centre: global in
/// screen pixels, local inside the object itself.
namespace clicktest {

QJsonObject widgetJson(const QWidget* widget);
QJsonObject quickItemJson(const QQuickItem* item);

/// One object for each matching menu with all its actions, and for each matching action of other menus.
void appendMenus(const ClickTestRequest& request, QJsonArray& results);

/// One object for each cell when the widget is an item view: "<view>-row<r>-col<c>".
void appendDelegates(const QWidget* widget, QJsonArray& results);

} // namespace clicktest

} // namespace vantrel
