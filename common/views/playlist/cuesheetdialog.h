#pragma once

#include "common/ui/toolkit/ztdialog.h"
#include "common/views/playlist/cuesheet.h"

#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QPointer>
#include <QTimer>

namespace vantrel {

class PlaylistModel;

/// Has the pictures of a cue sheet fetched, and has it drawn and written on another thread. It shows itself
/// only when that takes long, over a window that works on, lets the operator end it, and deletes itself. Main
/// thread.
class CueSheetDialog : public ZTDialog
{
    Q_OBJECT

public:
    CueSheetDialog(const CueSheet& sheet, const PlaylistModel* model, const QString& fileName,
                   QWidget* parent);
    ~CueSheetDialog() override;

Q_SIGNALS:
    /// The file is there, or why it is not. Not told when the operator has ended it.
    void ended(const QString& fault);

private:
    void fetchPictures();
    void print();

    CueSheet m_sheet;
    QPointer<const PlaylistModel> m_model;
    QString m_fileName;
    QTimer m_fetching;
    QElapsedTimer m_sinceLast; // since the last picture came
    qsizetype m_missing = 0;
    QFutureWatcher<QString> m_printing;
};

} // namespace vantrel
