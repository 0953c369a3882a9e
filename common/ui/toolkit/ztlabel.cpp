#include "common/ui/toolkit/ztlabel.h"

#include "common/ui/style/dynamicstyle.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <QVariant>

namespace vantrel {

ZTLabel::ZTLabel(QWidget* parent)
    : ZTLabel(QString(), parent)
{
}

ZTLabel::ZTLabel(const QString& text, QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setText(text);
}

void ZTLabel::setObjectNames(const QString& base)
{
    setObjectName(base);
}

void ZTLabel::setStyleClass(const QString& name)
{
    setDynamicStyle(this, "class", name);
}

void ZTLabel::mouseDoubleClickEvent(QMouseEvent* event)
{
    QLabel::mouseDoubleClickEvent(event);
    // Where somebody listens it ends here: the window takes one that reaches it for a click beside
    // everything.
    event->setAccepted(isSignalConnected(QMetaMethod::fromSignal(&ZTLabel::mouseDoubleClicked)));
    Q_EMIT mouseDoubleClicked();
}

} // namespace vantrel
