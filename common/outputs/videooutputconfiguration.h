#pragma once

#include "common/ui/toolkit/ztframe.h"

#include <QMap>

class QFormLayout;

namespace vantrel {

class ColorBox;
class ConfirmationDialog;
class ElidedLabel;
class IconButton;
class ModelineDialog;
class OutputModel;
class PushButton;
class SwitchSelect;
class ZTCheckBox;
class ZTDropdownMenu;
class SeenUpdate;
class ZTLabel;

/// The settings and the state of one video output, read from its OutputModel and written through it. Owned by
/// its OutputItem; main thread.
class VideoOutputConfiguration : public ZTFrame
{
    Q_OBJECT

public:
    /// outputNumber: from 1, as the operator knows it.
    explicit VideoOutputConfiguration(int outputNumber, QWidget* parent = nullptr);

    /// The model must outlive this.
    void setModel(OutputModel* model);
    void setServerName(const QString& name);
    void updateData();
    void setObjectNames(const QString& base) override;

public Q_SLOTS:
    void onDataChanged();
    void openEditDialog();
    void handleTargetChange();
    void performTargetChange();
    void cancelTargetChange();
    void handleScalingChange(int selectedIndex);
    void handleModelineIdChange(bool is_auto, QString modelineId, bool maxLinkRate);
    void handleBackgroundColorChange(QColor color);

private:
    void addSettings(QFormLayout* form);
    void addQuestion(QFormLayout* form);
    void addStatus(QFormLayout* form);
    void addValue(QFormLayout* form, const QString& title, const QString& name);
    void setValue(const QString& name, const QString& text);
    void updateSettings();
    void updateQuestion();
    void updateScreen();
    void updateStatus();
    QVariant value(int column) const;

    const int m_outputNumber;
    QString m_serverName;
    OutputModel* m_model = nullptr;
    ModelineDialog* m_dialog;
    SeenUpdate* m_update;
    ConfirmationDialog* m_targetDialog = nullptr;
    QString m_currentTarget;
    QString m_askedTarget; // that the dialog asks about
    SwitchSelect* m_target = nullptr;
    PushButton* m_keep = nullptr;
    PushButton* m_goBack = nullptr;
    QWidget* m_question = nullptr; // both
    ZTDropdownMenu* m_scaling = nullptr;
    ColorBox* m_background = nullptr;
    ZTCheckBox* m_mixesLight = nullptr;
    IconButton* m_edit = nullptr;
    QWidget* m_errorIcon = nullptr;
    QMap<QString, ElidedLabel*> m_values; // by the last part of their object names
};

} // namespace vantrel
