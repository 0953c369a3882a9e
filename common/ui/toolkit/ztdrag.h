#pragma once

#include <QPixmap>

class QMimeData;
class QWidget;

namespace vantrel {

/// A drag of the application: it shows what is dragged, and how much of it, at the cursor.
class ZTDrag
{
public:
    ZTDrag() = delete;

    /// Runs the drag until it is dropped; takes the data over. label: what is dragged, in a few words.
    static Qt::DropAction startDrag(QWidget* source, QMimeData* data, Qt::DropActions actions,
                                    const QString& label);
    /// What is shown at the cursor.
    static QPixmap tag(const QWidget* source, const QString& label);
};

} // namespace vantrel
