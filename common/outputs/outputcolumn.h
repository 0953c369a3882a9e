#pragma once

#include "common/session/settings/fontsize.h"

#include <QString>

class QScrollArea;
class QWidget;

namespace vantrel {

class ZTLabel;

// What the columns of the OUTPUTS tab have in common.

/// The least width of a column, in pixels.
int outputColumnWidth(FontSize size);
ZTLabel* makeColumnTitle(const QString& text, QWidget* parent);
/// Scrolls its content up and down.
QScrollArea* makeScrollArea(QWidget* content, QWidget* parent);

} // namespace vantrel
