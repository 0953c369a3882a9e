#include "common/outputs/chassisitem.h"

#include "common/session/link/connectionprovider.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/elidedlabel.h"

#include <QResizeEvent>
#include <QSvgRenderer>
#include <QSvgWidget>
#include <QVBoxLayout>

namespace vantrel {

ChassisItem::ChassisItem(const ConnectionProvider* connection, QWidget* parent)
    : Collapse(tr("Player Ombra"), parent)
    , m_connection(connection)
    , m_address(new ElidedLabel(titleRow()))
    , m_drawing(new QSvgWidget(QStringLiteral(":/icons/ombra_backplane.svg"), this))
{
    m_address->setStyleClass(QStringLiteral("dim"));
    m_address->setObjectNames(QStringLiteral("Chassis-address"));
    m_address->setContentsMargins(0, 0, spacing::normal, 0);
    addTitleWidget(m_address);
    m_drawing->renderer()->setAspectRatioMode(Qt::KeepAspectRatio);
    m_drawing->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_drawing->setObjectName(QStringLiteral("Chassis-backplane"));
    m_drawing->setAccessibleName(tr("Back panel of the server"));
    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(spacing::normal, spacing::normal, spacing::normal, spacing::normal);
    layout->addWidget(m_drawing);
    setContent(content);
    setOpen(true);
    connect(connection, &ConnectionProvider::hostAddressChanged, this, &ChassisItem::onAddressChange);
    onAddressChange();
}

void ChassisItem::onAddressChange()
{
    m_address->setText(m_connection->hostAddress());
}

void ChassisItem::resizeEvent(QResizeEvent* event)
{
    Collapse::resizeEvent(event);
    const QSize shape = m_drawing->renderer()->defaultSize();
    const int width = event->size().width() - 2 * spacing::normal;
    m_drawing->setFixedHeight(shape.width() > 0 ? width * shape.height() / shape.width() : width);
}

} // namespace vantrel
