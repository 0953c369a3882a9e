#include "common/outputs/outputstab.h"

#include "common/outputs/chassisview.h"
#include "common/outputs/mappingpreview.h"
#include "common/outputs/outputcolumn.h"
#include "common/outputs/outputview.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"

#include <QHBoxLayout>

namespace vantrel {

namespace {

constexpr int leastMapping = 360; // pixels of the Medium layout

} // namespace

OutputsTab::OutputsTab(Session* session, QWidget* parent)
    : QWidget(parent)
    , m_chassis(new ChassisView(session->connectionProvider(), this))
    , m_properties(new OutputView(session, this))
    , m_mapping(new MappingPreview(session, {m_properties->model(0), m_properties->model(1)}, this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::normal);
    layout->addWidget(m_chassis);
    layout->addWidget(m_mapping, 1);
    layout->addWidget(m_properties);
    followFontSize(this, [this](FontSize) { divide(); });
}

void OutputsTab::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    divide();
}

void OutputsTab::divide()
{
    const FontSize size = currentFontSize();
    const int column = outputColumnWidth(size) + spacing::normal;
    const int room = width() - column;
    m_mapping->setVisible(room >= scaled(leastMapping, size) / 2);
    m_chassis->setVisible(room - column >= scaled(leastMapping, size));
}

} // namespace vantrel
