#include "common/views/singlemediawidget.h"

#include "common/media/edit/mediasloteditfunctional.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/ztcombobox.h"
#include "common/views/thumbnaillabel.h"
#include "tarn/media/mediaenums.h"

#include <QGridLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

using Column = SingleMediaModel::Column;

// Long texts have a row of their own; the others stand side by side where there is room.
constexpr std::array firstRows{SingleMediaModel::NameColumn, SingleMediaModel::LocationColumn};
constexpr std::array facts{
    SingleMediaModel::DurationColumn,   SingleMediaModel::MediaTypeColumn,   SingleMediaModel::VideoColumn,
    SingleMediaModel::WidthColumn,      SingleMediaModel::HeightColumn,      SingleMediaModel::AspectColumn,
    SingleMediaModel::FpsColumn,        SingleMediaModel::BitRateColumn,     SingleMediaModel::FileSizeColumn,
    SingleMediaModel::ColorSpaceColumn, SingleMediaModel::PixelFormatColumn, SingleMediaModel::AudioColumn,
    SingleMediaModel::ChannelsColumn};
constexpr std::array lastFacts{SingleMediaModel::ImportedColumn, SingleMediaModel::ModifiedColumn,
                               SingleMediaModel::PlaylistColumn, SingleMediaModel::CollectionColumn};
constexpr int pairWidth = 200; // pixels at the Medium text size
constexpr int mostPairs = 3;
constexpr int pictureWidth = 144;
constexpr int scalingWidth = 128; // at any text size: that of its longest word

constexpr std::array modes{ScaleMode::Default,  ScaleMode::Fit,        ScaleMode::Clip,
                           ScaleMode::Stretch,  ScaleMode::Centered,   ScaleMode::TopLeft,
                           ScaleMode::TopRight, ScaleMode::BottomLeft, ScaleMode::BottomRight};

ZTLabel* makeTitle(const QString& text, QWidget* parent)
{
    auto* label = new ZTLabel(text, parent);
    label->setStyleClass(QStringLiteral("dim"));
    return label;
}

} // namespace

SingleMediaWidget::SingleMediaWidget(SingleMediaModel* model, MediaDataAggregator* aggregator,
                                     QWidget* parent)
    : ZTFrame(parent)
    , m_model(model)
    , m_empty(new ZTLabel(this))
    , m_area(new QScrollArea(this))
{
    setObjectName(QStringLiteral("Preview-SingleMedia"));
    m_empty->setObjectName(QStringLiteral("Preview-SingleMedia-empty"));
    m_empty->setStyleClass(QStringLiteral("dim"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->setWidgetResizable(true);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setWidget(createPage());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::tight, 0, 0);
    layout->addWidget(m_empty, 1);
    layout->addWidget(m_area, 1);

    connect(m_model, &QAbstractItemModel::modelReset, this, &SingleMediaWidget::refresh);
    connect(m_model, &QAbstractItemModel::dataChanged, this, &SingleMediaWidget::refresh);
    setMediaDataAggregator(aggregator);
}

void SingleMediaWidget::setMediaDataAggregator(MediaDataAggregator* aggregator)
{
    if (m_aggregator)
        m_aggregator->disconnect(this);
    m_aggregator = aggregator;
    if (m_aggregator) {
        const auto onThumbnail = [this](const QUrl& url) {
            if (url == m_model->contentUrl())
                showThumbnail();
        };
        connect(m_aggregator, &MediaDataAggregator::thumbnailChanged, this, onThumbnail);
        connect(m_aggregator, &MediaDataAggregator::thumbnailInvalidated, this, onThumbnail);
    }
    refresh();
}

QWidget* SingleMediaWidget::createPage()
{
    auto* page = new QWidget(m_area);
    for (int column = 0; column < SingleMediaModel::ScalingColumn; ++column)
        m_titles.insert(column, makeTitle(m_model->headerData(column, Qt::Horizontal).toString(), page));
    for (int column = 0; column < SingleMediaModel::ScalingColumn; ++column) {
        if (column == SingleMediaModel::UsedInColumn)
            continue;
        auto* value = new ElidedLabel(page);
        value->setObjectName(QStringLiteral("Preview-SingleMedia-value-%1").arg(column));
        value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        m_values.insert(column, value);
    }
    m_values[SingleMediaModel::LocationColumn]->setElideMode(Qt::ElideMiddle);
    m_usedIn = new ZTLabel(page);
    m_usedIn->setObjectName(QStringLiteral("Preview-SingleMedia-used-in"));
    m_usedIn->setWordWrap(true);
    m_usedIn->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);

    m_scaling = makeScaling(page);
    m_scalingTitle =
        makeTitle(m_model->headerData(SingleMediaModel::ScalingColumn, Qt::Horizontal).toString(), page);

    m_grid = new QGridLayout;
    m_grid->setHorizontalSpacing(spacing::normal);
    m_grid->setVerticalSpacing(2);
    m_picture = createPictureColumn(page);
    auto* layout = new QHBoxLayout(page);
    layout->setContentsMargins(0, 0, spacing::tight, 0);
    layout->setSpacing(spacing::wide);
    layout->addWidget(m_picture, 0, Qt::AlignTop);
    layout->addLayout(m_grid, 1);
    arrange(2, true);
    return page;
}

ZTComboBox* SingleMediaWidget::makeScaling(QWidget* page)
{
    auto* scaling = new ZTComboBox(page);
    scaling->setObjectNames(QStringLiteral("Preview-SingleMedia-scaling"));
    scaling->setToolTip(tr("How the picture of this slot is fitted to the output"));
    scaling->setAccessibleName(tr("Scaling"));
    scaling->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    for (const ScaleMode mode : modes)
        scaling->addItem(scaleModeToPrettyString(mode), static_cast<int>(mode));
    connect(scaling, &QComboBox::activated, this, &SingleMediaWidget::onScalingChosen);
    return scaling;
}

void SingleMediaWidget::addRow(int column, int row, int pair, int span)
{
    m_grid->addWidget(m_titles.value(column), row, 2 * pair);
    m_grid->addWidget(m_values.value(column), row, 2 * pair + 1, 1, span);
}

void SingleMediaWidget::arrange(int pairs, bool hasPicture)
{
    if (pairs == m_pairs && hasPicture == m_hasPicture)
        return;
    m_pairs = pairs;
    m_hasPicture = hasPicture;
    while (QLayoutItem* item = m_grid->takeAt(0))
        delete item;
    const int span = 2 * pairs - 1;
    int row = 0;
    for (const int column : firstRows)
        addRow(column, row++, 0, span);
    const int count = static_cast<int>(facts.size());
    const int rows = (count + pairs - 1) / pairs;
    for (int i = 0; i < count; ++i)
        addRow(facts[i], row + i % rows, i / rows, 1);
    row += rows;
    const int beside = pairs == mostPairs ? 2 : 1;
    for (int i = 0; i < static_cast<int>(lastFacts.size()); ++i)
        addRow(lastFacts[i], row + i / beside, i % beside,
               i % beside == beside - 1 ? 1 + 2 * (pairs - beside) : 1);
    row += static_cast<int>(lastFacts.size()) / beside;
    m_grid->addWidget(m_titles.value(SingleMediaModel::UsedInColumn), row, 0, Qt::AlignTop);
    m_grid->addWidget(m_usedIn, row++, 1, 1, span);

    m_picture->setVisible(hasPicture);
    if (hasPicture) {
        m_picture->layout()->addWidget(m_scalingTitle);
        m_picture->layout()->addWidget(m_scaling);
    } else {
        m_grid->addWidget(m_scalingTitle, row, 0);
        m_grid->addWidget(m_scaling, row++, 1, 1, 1);
    }
    for (int i = 0; i < mostPairs; ++i)
        m_grid->setColumnStretch(2 * i + 1, i < pairs ? 1 : 0);
    // A row that is empty in one arrangement must not push the other apart.
    for (int i = 0; i < m_grid->rowCount(); ++i)
        m_grid->setRowStretch(i, 0);
    m_grid->setRowStretch(row, 1);
}

void SingleMediaWidget::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    const FontSize size = currentFontSize();
    const int beside = width() - scaled(pictureWidth, size);
    const bool hasPicture = beside >= scaled(2 * pairWidth, size);
    const int pairs = (hasPicture ? beside : width()) / scaled(pairWidth, size);
    arrange(std::clamp(pairs, 1, mostPairs), hasPicture);
}

QWidget* SingleMediaWidget::createPictureColumn(QWidget* page)
{
    auto* column = new QWidget(page);
    column->setMinimumWidth(scalingWidth);
    m_thumbnail = new ThumbnailLabel(column);
    m_thumbnail->setObjectName(QStringLiteral("Preview-SingleMedia-thumbnail"));
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 2, 0, 0);
    layout->setSpacing(spacing::tight);
    layout->addWidget(m_thumbnail);
    return column;
}

QString SingleMediaWidget::shownValue(Column column) const
{
    if (column == SingleMediaModel::UsedInColumn)
        return m_usedIn->text();
    const ElidedLabel* label = m_values.value(column);
    return label ? label->text() : QString();
}

void SingleMediaWidget::refresh()
{
    const bool hasMedia = !m_model->contentUrl().isEmpty();
    const bool hasData = m_model->index(0, SingleMediaModel::NameColumn).data().isValid();
    m_empty->setText(hasMedia
                         ? tr("The server is reading this media.")
                         : tr("Nothing is on preview. Double-click a slot of the media library to cue it."));
    m_empty->setVisible(!hasData);
    m_area->setVisible(hasData);
    if (!hasData)
        return;
    showValues();
    showThumbnail();
    showScaling();
}

void SingleMediaWidget::showValues()
{
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it)
        it.value()->setText(m_model->index(0, it.key()).data().toString());
    const QStringList uses = m_model->index(0, SingleMediaModel::UsedInColumn).data().toStringList();
    m_usedIn->setText(uses.isEmpty() ? QStringLiteral("-") : uses.join(u'\n'));
}

void SingleMediaWidget::showThumbnail()
{
    const ThumbnailPtr thumbnail = m_aggregator ? m_aggregator->thumbnail(m_model->contentUrl()) : nullptr;
    m_thumbnail->setPixmap(thumbnail ? *thumbnail : QPixmap());
}

void SingleMediaWidget::showScaling()
{
    const auto slot = m_model->getMediaSlotPtr();
    m_scaling->setEnabled(slot != nullptr);
    m_scaling->setCurrentIndex(slot ? m_scaling->findData(static_cast<int>(slot->scaleMode())) : -1);
}

void SingleMediaWidget::onScalingChosen(int row)
{
    const auto slot = m_model->getMediaSlotPtr();
    if (!slot)
        return;
    const auto mode = static_cast<ScaleMode>(m_scaling->itemData(row).toInt());
    if (mode != slot->scaleMode())
        MediaSlotEditFunctional::setScalingMode(slot->address(), mode);
    showScaling(); // the server's word decides
}

} // namespace vantrel
