#pragma once

#include "common/media/singlemediamodel.h"
#include "common/ui/ztframe.h"

#include <QMap>

class QGridLayout;
class QScrollArea;

namespace vantrel {

class ElidedLabel;
class MediaDataAggregator;
class ThumbnailLabel;
class ZTComboBox;
class ZTLabel;

/// The page about one media: its picture, what is known of it in two columns of label and value, where it is
/// used, and how it is scaled, which can be changed here. Main thread; the aggregator may be null.
class SingleMediaWidget : public ZTFrame
{
    Q_OBJECT

public:
    SingleMediaWidget(SingleMediaModel* model, MediaDataAggregator* aggregator, QWidget* parent = nullptr);

    ZTComboBox* scalingMenu() const { return m_scaling; }
    /// The value that is shown for a column of the model.
    QString shownValue(SingleMediaModel::Column column) const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* createPage();
    QWidget* createPictureColumn(QWidget* page);
    /// In two pairs of columns, or in one where the page is narrow.
    void arrange(bool wide);
    void refresh();
    void showValues();
    void showThumbnail();
    void showScaling();
    void onScalingChosen(int row);

    SingleMediaModel* m_model;
    QPointer<MediaDataAggregator> m_aggregator;
    ZTLabel* m_empty;
    QScrollArea* m_area;
    ThumbnailLabel* m_thumbnail = nullptr;
    ZTComboBox* m_scaling = nullptr;
    ZTLabel* m_usedIn = nullptr;
    QGridLayout* m_grid = nullptr;
    QMap<int, ZTLabel*> m_titles; // by column, as the values are
    QMap<int, ElidedLabel*> m_values;
    bool m_wide = true;
};

} // namespace vantrel
