#pragma once

#include <QStringList>

class QWidget;

namespace vantrel::test {

/// Walks all that is visible below a shown window and tells what an operator would stumble on: a widget cut
/// by the one that holds it or squeezed below what its text needs, one lying over another, and a control that
/// the keyboard reaches without a tooltip or an accessible name. What lies in a scroll area may be scrolled
/// away; parts that a widget draws on top of itself are its own affair.
QStringList layoutFaults(const QWidget* window);

/// The controls of a widget in the order in which Tab reaches them.
QList<QWidget*> tabOrder(QWidget* root);

/// Where Tab goes up again, or to the left within a row.
QStringList tabOrderFaults(QWidget* root);

} // namespace vantrel::test
