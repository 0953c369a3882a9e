#pragma once

#include "common/ui/toolkit/ztlabel.h"

namespace vantrel {

/// A one-line label that gives way: where the text does not fit it ends in an ellipsis, and the whole text
/// stands in the tooltip. text() is always the whole text.
class ElidedLabel : public ZTLabel
{
    Q_OBJECT
    Q_PROPERTY(bool elided READ isElided WRITE setElided)

public:
    explicit ElidedLabel(QWidget* parent = nullptr);
    explicit ElidedLabel(const QString& text, QWidget* parent = nullptr);

    /// Eliding is on at first; without it the label is as wide as its text.
    bool isElided() const { return m_elided; }
    void setElided(bool elided);
    void setElideMode(Qt::TextElideMode mode);
    /// What is drawn at the present width.
    QString shownText() const;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_elided = true;
    Qt::TextElideMode m_mode = Qt::ElideRight;
};

} // namespace vantrel
