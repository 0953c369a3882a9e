#pragma once

#include "common/media/models/singlemediamodel.h"
#include "common/ui/toolkit/ztframe.h"

#include <QMap>

class QGridLayout;
class QScrollArea;

namespace vantrel {

class ElidedLabel;
class MediaDataAggregator;
class ThumbnailLabel;
class ZTComboBox;
class ZTLabel;

/// The page about one media: its picture, what is known of it as label and value, where it is
/// used, and how it is scaled, which can be changed here. Main thread; the aggregator may be null.
class SingleMediaWidget : public ZTFrame
{
    Q_OBJECT

public:
    SingleMediaWidget(SingleMediaModel* model, MediaDataAggregator* aggregator, QWidget* parent = nullptr);

    /// That of a new connection; may be null.
    void setMediaDataAggregator(MediaDataAggregator* aggregator);
    ZTComboBox* scalingMenu() const { return m_scaling; }
    /// The value that is shown for a column of the model.
    QString shownValue(SingleMediaModel::Column column) const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* createPage();
    ZTComboBox* makeScaling(QWidget* page);
    QWidget* createPictureColumn(QWidget* page);
    /// Short facts flow into as many pairs of label and value as the width holds; the picture gives way
    /// first.
    void arrange(int pairs, bool hasPicture);
    void addRow(int column, int row, int pair, int span);
    void refresh();
    void showValues();
    void showThumbnail();
    void showScaling();
    void onScalingChosen(int row);

    SingleMediaModel* m_model;
    QPointer<MediaDataAggregator> m_aggregator;
    ZTLabel* m_empty;
    QScrollArea* m_area;
    QWidget* m_picture = nullptr; // the thumbnail, and the scaling below it
    ThumbnailLabel* m_thumbnail = nullptr;
    ZTLabel* m_scalingTitle = nullptr;
    ZTComboBox* m_scaling = nullptr;
    ZTLabel* m_usedIn = nullptr;
    QGridLayout* m_grid = nullptr;
    QMap<int, ZTLabel*> m_titles; // by column, as the values are
    QMap<int, ElidedLabel*> m_values;
    int m_pairs = 0;
    bool m_hasPicture = true;
};

} // namespace vantrel
