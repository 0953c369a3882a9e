#include "common/ui/shell/missinglist.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

MissingList::MissingList(ZTDialog* dialog)
    : QListWidget(dialog)
    , m_dialog(dialog)
{
    setAccessibleName(tr("Media that are not on the server"));
    setSelectionMode(QAbstractItemView::NoSelection);
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    followFontSize(this, [this](FontSize) { fitRows(); });
    dialog->contentLayout()->addWidget(this);
    hide();
}

void MissingList::setMedia(const QStringList& media)
{
    clear();
    addItems(media);
    for (int row = 0; row < count(); ++row)
        item(row)->setToolTip(media[row].toHtmlEscaped());
    fitRows();
    setVisible(!media.isEmpty());
    if (m_dialog->isVisible())
        m_dialog->fitToContent();
}

/// As high as a few of them.
void MissingList::fitRows()
{
    constexpr int mostRows = 6;
    ensurePolished();
    setFixedHeight(std::min(count(), mostRows) * std::max(sizeHintForRow(0), 0) + 2 * frameWidth());
}

} // namespace vantrel
