#pragma once

#include "common/import/mediaarrivals.h"
#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

/// Below a collection, what is still on its way to it: a line each with its progress, the last one for the
/// rest. Hidden while there is nothing. Main thread only; the arrivals must outlive it.
class ArrivalStrip : public ZTFrame
{
    Q_OBJECT

public:
    explicit ArrivalStrip(const MediaArrivals* arrivals, QWidget* parent = nullptr);

    void setCollection(int collection);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    int lineHeight() const;
    void paintLine(QPainter& painter, const QRect& line, const MediaArrivals::Arrival& arrival) const;

    const MediaArrivals* m_arrivals;
    int m_collection = -1;
    QList<MediaArrivals::Arrival> m_shown; // of the collection
};

} // namespace vantrel
