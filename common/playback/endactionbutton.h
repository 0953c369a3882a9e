#pragma once

#include "common/ui/toolkit/iconbutton.h"

namespace vantrel {

/// One of the five end actions: an icon for off and one for on, or its word where there is room. Owned by
/// EndActionWidget; main thread.
class EndActionButton : public IconButton
{
    Q_OBJECT

public:
    EndActionButton(const QString& offIcon, const QString& onIcon, const QString& word, const QString& tip,
                    QWidget* parent = nullptr);

    /// Why it cannot be chosen, in a line of its own below the tooltip; empty for no reason.
    void setReason(const QString& reason);
    void setShowsWord(bool shows);
    /// The width with the word, in pixels.
    int wordWidth() const;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_tip;
    bool m_showsWord = false;
};

} // namespace vantrel
