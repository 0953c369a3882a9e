#pragma once

class QString;
class QWidget;

namespace vantrel {

/// Shows why the widget cannot be used, in the place of its tooltip; empty brings its own tooltip back. It
/// leaves the widget's enabled state alone.
void setBlockedReason(QWidget* widget, const QString& reason);

} // namespace vantrel
