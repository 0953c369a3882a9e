#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QStringList>

namespace vantrel {

class ZTCheckBox;
class ZTEdit;

/// Asks for a show file and for which of its sections are to be imported. Each opening starts anew.
class ImportShowDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ImportShowDialog(QWidget* parent = nullptr);

    /// The chosen sections: "output", "audio", "playback", "medialibrary", in this order.
    const QStringList& imports() const { return m_imports; }
    void setObjectNames(const QString& base) override;

public Q_SLOTS:
    void handleBrowse();
    void handleConfirm();
    void importsChanged();

Q_SIGNALS:
    void importShow(QString fileName, QStringList imports);

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    ZTCheckBox* addSection(const QString& label, const QString& description);

    ZTEdit* m_path;
    PushButton* m_browse;
    ZTCheckBox* m_audio;
    ZTCheckBox* m_mediaLibrary;
    ZTCheckBox* m_playback;
    ZTCheckBox* m_output;
    QStringList m_imports;
};

} // namespace vantrel
