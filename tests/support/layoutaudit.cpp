#include "tests/support/layoutaudit.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMetaObject>
#include <QSplitterHandle>

#include <algorithm>

namespace vantrel::test {

namespace {

/// Widgets whose children are one drawing.
bool isOneDrawing(const QWidget* widget)
{
    for (const char* name : {"vantrel::SeekSlider", "vantrel::TakeButton", "QComboBox", "QLineEdit",
                             "QAbstractItemView", "QScrollBar", "QAbstractSlider"}) {
        if (widget->inherits(name))
            return true;
    }
    return false;
}

bool isInOneDrawing(const QWidget* widget, const QWidget* window)
{
    for (const QWidget* above = widget->parentWidget(); above && above != window;
         above = above->parentWidget()) {
        if (isOneDrawing(above))
            return true;
    }
    return false;
}

/// Whether the widget is what a scroll area moves about.
bool isScrolled(const QWidget* widget)
{
    const auto* area = widget->parentWidget()
                           ? qobject_cast<QAbstractScrollArea*>(widget->parentWidget()->parentWidget())
                           : nullptr;
    return area && area->viewport() == widget->parentWidget();
}

QString nameOf(const QWidget* widget)
{
    QString name = QString::fromLatin1(widget->metaObject()->className());
    if (!widget->objectName().isEmpty())
        name += QLatin1Char(' ') + widget->objectName();
    else if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        name += QLatin1Char(' ') + button->text();
    else if (const auto* label = qobject_cast<const QLabel*>(widget))
        name += QStringLiteral(" \"%1\"").arg(label->text());
    return name;
}

QString text(const QRect& rect)
{
    return QStringLiteral("%1,%2 %3x%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

bool isControl(const QWidget* widget)
{
    return widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
}

void findCut(const QWidget* widget, QStringList& faults)
{
    const QWidget* parent = widget->parentWidget();
    if (isScrolled(widget) || qobject_cast<const QSplitterHandle*>(widget))
        return;
    if (!parent->rect().contains(widget->geometry()))
        faults.append(QStringLiteral("cut: %1 at %2 in %3 of %4x%5")
                          .arg(nameOf(widget), text(widget->geometry()), nameOf(parent))
                          .arg(parent->width())
                          .arg(parent->height()));
    const auto* label = qobject_cast<const QLabel*>(widget);
    const bool hasText = (label && !label->text().isEmpty() && !label->wordWrap()) ||
                         qobject_cast<const QAbstractButton*>(widget) ||
                         qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget);
    // What is said of the link is read whole, or it is not said.
    if (widget->inherits("vantrel::LinkBanner") && widget->property("shownText") != widget->property("text"))
        faults.append(QStringLiteral("elided: %1").arg(nameOf(widget)));
    if (label && label->wordWrap() && label->height() < label->heightForWidth(label->width()))
        faults.append(QStringLiteral("squeezed: %1 lacks a line").arg(nameOf(label)));
    const QSize needed = widget->minimumSizeHint();
    const bool ignoresWidth = widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
    if (hasText &&
        ((!ignoresWidth && widget->width() < needed.width()) || widget->height() < needed.height()))
        faults.append(QStringLiteral("squeezed: %1 is %2x%3, needs %4x%5")
                          .arg(nameOf(widget))
                          .arg(widget->width())
                          .arg(widget->height())
                          .arg(needed.width())
                          .arg(needed.height()));
}

void findOverlaps(const QWidget* parent, QStringList& faults)
{
    QList<const QWidget*> shown;
    for (const QObject* child : parent->children()) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        if (widget && widget->isVisible() && !widget->isWindow() &&
            !qobject_cast<const QSplitterHandle*>(widget))
            shown.append(widget);
    }
    for (int i = 0; i < shown.size(); ++i) {
        for (int j = i + 1; j < shown.size(); ++j) {
            const QRect common = shown[i]->geometry() & shown[j]->geometry();
            if (!common.isEmpty())
                faults.append(QStringLiteral("overlap: %1 and %2 at %3")
                                  .arg(nameOf(shown[i]), nameOf(shown[j]), text(common)));
        }
    }
}

void findNameless(QWidget* widget, QStringList& faults)
{
    // What holds other controls, or items, leaves the tooltip to them.
    const bool isFrame = widget->inherits("QAbstractItemView") ||
                         std::ranges::any_of(widget->findChildren<QWidget*>(), isControl);
    if (widget->toolTip().isEmpty() && !isFrame)
        faults.append(QStringLiteral("no tooltip: %1").arg(nameOf(widget)));
    const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    if (!accessible || accessible->text(QAccessible::Name).isEmpty())
        faults.append(QStringLiteral("no accessible name: %1").arg(nameOf(widget)));
}

} // namespace

QStringList layoutFaults(const QWidget* window)
{
    QStringList faults;
    findOverlaps(window, faults);
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->window() != window || isInOneDrawing(widget, window))
            continue;
        findCut(widget, faults);
        if (!isOneDrawing(widget))
            findOverlaps(widget, faults);
        if (isControl(widget))
            findNameless(widget, faults);
    }
    return faults;
}

QList<QWidget*> tabOrder(QWidget* root)
{
    QList<QWidget*> order;
    QWidget* widget = root;
    do {
        if (widget != root && root->isAncestorOf(widget) && widget->isVisible() && isControl(widget) &&
            !isInOneDrawing(widget, root))
            order.append(widget);
        widget = widget->nextInFocusChain();
    } while (widget != root);
    return order;
}

QStringList tabOrderFaults(QWidget* root)
{
    QStringList faults;
    const QList<QWidget*> order = tabOrder(root);
    for (int i = 1; i < order.size(); ++i) {
        if (order[i - 1]->isAncestorOf(order[i]))
            continue;
        const QRect from(order[i - 1]->mapTo(root, QPoint()), order[i - 1]->size());
        const QRect to(order[i]->mapTo(root, QPoint()), order[i]->size());
        const bool isSameRow = from.top() <= to.bottom() && to.top() <= from.bottom();
        if (isSameRow ? to.left() < from.left() : to.top() < from.top())
            faults.append(
                QStringLiteral("tab goes back: %1 to %2").arg(nameOf(order[i - 1]), nameOf(order[i])));
    }
    return faults;
}

} // namespace vantrel::test
