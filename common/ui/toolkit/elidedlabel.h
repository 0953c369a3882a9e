#pragma once

#include "common/ui/toolkit/ztlabel.h"

namespace vantrel {

/// A one-line label that gives way: where the text does not fit it gets smaller, if it may, and then ends in
/// an ellipsis, and the whole text stands in the tooltip. text() is always the whole text.
class ElidedLabel : public ZTLabel
{
    Q_OBJECT
    Q_PROPERTY(bool elided READ isElided WRITE setElided)
    Q_PROPERTY(QString shownText READ shownText)

public:
    explicit ElidedLabel(QWidget* parent = nullptr);
    explicit ElidedLabel(const QString& text, QWidget* parent = nullptr);

    /// Eliding is on at first; without it the label is as wide as its text.
    bool isElided() const { return m_elided; }
    void setElided(bool elided);
    void setElideMode(Qt::TextElideMode mode);
    /// Pixels down to which the text may get smaller to be read whole; its own size at first.
    void setLeastTextSize(int pixels);
    /// What is drawn at the present width.
    QString shownText() const;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QFont shownFont() const;

    bool m_elided = true;
    int m_leastTextSize = 0; // none
    Qt::TextElideMode m_mode = Qt::ElideRight;
};

} // namespace vantrel
