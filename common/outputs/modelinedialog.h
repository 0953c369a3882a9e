#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <memory>

class QFileDialog;
class QFormLayout;

namespace vantrel {

class EdidDetails;
class ElidedLabel;
class GUIModeline;
class OutputModel;
class SwitchSelect;
class ZTDropdownMenu;
class ZTLabel;

/// Sets the video mode of an output: the one that its display prefers, or one that the operator chooses, with
/// an EDID from a file where the display's own will not do. What the operator has chosen and not applied yet
/// stays while the output's state changes. Owned by its VideoOutputConfiguration; main thread.
class ModelineDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ModelineDialog(QWidget* parent = nullptr);

    /// The model must outlive this.
    void setModel(OutputModel* model);
    /// What holds now, and the mode switch as it fits that; for each opening.
    void resetView();
    void updateData();
    bool isAuto() const;
    QString getCurrentModelineId() const;
    QString getPreferredModelineId() const;
    QString edidOverrideFileName() const;
    void enableButtons();
    void displayErrorDialog(const QString& title, const QString& text);
    void setObjectNames(const QString& base) override;

    /// Empty, with a line in the log, for a file that cannot be read or is larger than any EDID.
    QString readTextFile(const QString& path) const;
    QByteArray readBinaryFile(const QString& path) const;
    /// text: hexadecimal digits. False, and the operator is told, when the file cannot be written.
    bool writeTextFile(const QString& path, const QString& text);
    bool writeBinaryFile(const QString& path, const QString& text);
    /// What the operator chose in a file dialog.
    void importFile(const QString& path);
    void exportFile(const QString& path, const QString& defaultSuffix);

Q_SIGNALS:
    void applied(bool is_auto, QString modelineId, bool maxLinkRate);

public Q_SLOTS:
    void onDataChanged();
    void toggleCustom();
    void handleExport();
    void handleImport();
    void handleReadDisplay();
    void handleApply();
    void handleConfirm();

private:
    QWidget* makeAutoPanel();
    QWidget* makeCustomPanel();
    PushButton* makeButton(const QString& text, const QString& tooltip);
    void updateFormats();
    void addFormats(const QString& heading, bool standard);
    void showMode(bool automatic);
    bool isOverridden() const;
    QString preferredOfDisplay() const;
    bool write(const QString& path, const QByteArray& bytes, bool text, const QString& failure);
    QVariant value(int column) const;

    OutputModel* m_model = nullptr;
    SwitchSelect* m_mode;
    ZTDropdownMenu* m_format = nullptr;
    ZTDropdownMenu* m_linkRate = nullptr;
    ElidedLabel* m_preferred = nullptr;
    ElidedLabel* m_edidFile = nullptr;
    EdidDetails* m_details = nullptr;
    ZTLabel* m_error = nullptr;
    QWidget* m_autoPanel = nullptr;
    QWidget* m_customPanel = nullptr;
    PushButton* m_export = nullptr;
    PushButton* m_import = nullptr;
    PushButton* m_read = nullptr;
    PushButton* m_apply = nullptr;
    QString m_chosenFormat;          // by the operator and not applied; empty for none
    bool m_isLinkRateChosen = false; // likewise
    bool m_isRefused = false;        // what was applied last did not go out
};

} // namespace vantrel
