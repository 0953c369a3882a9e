#include "common/outputs/chassisview.h"

#include "common/outputs/chassisitem.h"
#include "common/outputs/outputcolumn.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/accordion.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QVBoxLayout>

namespace vantrel {

ChassisView::ChassisView(const ConnectionProvider* connection, QWidget* parent)
    : ZTFrame(parent)
{
    setObjectName(QStringLiteral("PlayerTab-chassis-widget"));
    setProperty("class", QStringLiteral("panel"));
    auto* title = makeColumnTitle(tr("Chassis"), this);
    auto* items = new Accordion(this);
    items->addPanel(new ChassisItem(connection, items));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Expanding);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(makeScrollArea(items, this), 1);
    followFontSize(this, [this](FontSize size) { updateMinimumWidth(size); });
}

void ChassisView::updateMinimumWidth(FontSize size)
{
    setMinimumWidth(outputColumnWidth(size));
}

} // namespace vantrel
