#include "common/outputs/outputview.h"

#include "common/outputs/audiooutputitem.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QMap>
#include <QScrollArea>
#include <QVBoxLayout>

namespace vantrel {

namespace {

const QMap<FontSize, int> minimumWidths{
    {FontSize::Small, 270}, {FontSize::Medium, 360}, {FontSize::Large, 540}, {FontSize::Huge, 720}};

} // namespace

OutputView::OutputView(Session* session, QWidget* parent)
    : ZTFrame(parent)
{
    setObjectName(QStringLiteral("PlayerTab-outputs-widget"));
    setProperty("class", QStringLiteral("panel"));
    auto* title = new ZTLabel(tr("Properties"), this);
    title->setStyleClass(QStringLiteral("title"));
    auto* area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* column = new QWidget(area);
    auto* items = new QVBoxLayout(column);
    items->setContentsMargins(0, 0, 0, 0);
    items->addWidget(new AudioOutputItem(session, column));
    items->addStretch(1);
    area->setWidget(column);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Expanding);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(area, 1);

    if (const Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, &OutputView::onStyleChange);
    setTextSize(currentFontSize());
}

void OutputView::onStyleChange(ConfigurationOption option, const QVariant& value)
{
    if (option == TEXT_SIZE)
        setTextSize(fontSizeFrom(value));
}

void OutputView::setTextSize(FontSize size)
{
    setMinimumWidth(minimumWidths.value(size));
}

} // namespace vantrel
