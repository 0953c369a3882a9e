#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <memory>

class QStackedWidget;

namespace vantrel {

class NavigationBar;
class ServerConfigurationModel;
class SwitchSelect;
class ZTCheckBox;
class ZTComboBox;

/// The settings of this machine, and on a second page what the server does at its start. Every change counts
/// at once. The server's page needs a link. Owned by the main window.
class ConfigurationDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ConfigurationDialog(QWidget* parent = nullptr);

    /// The model of the server's settings ; may be null.
    void setModel(std::shared_ptr<ServerConfigurationModel> model);
    void loadConfiguration();
    void saveConfiguration();
    void setObjectNames(const QString& base) override;

public Q_SLOTS:
    void onConnected();
    void onDisconnected();
    void updateServerConfigurationData();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeLocalPage();
    QWidget* makeServerPage();
    void onTextSizeSelected(const QVariant& value);
    void adjustApp();
    void initAutoStartShow(const QStringList& shows, const QString& current);
    void setServerData(int column, const QVariant& value);

    NavigationBar* m_bar;
    QStackedWidget* m_pages;
    SwitchSelect* m_textSize = nullptr;
    ZTCheckBox* m_rounding = nullptr;
    SwitchSelect* m_timeFormat = nullptr;
    SwitchSelect* m_playState = nullptr;
    ZTComboBox* m_startShow = nullptr;
    ZTCheckBox* m_autoSave = nullptr;
    std::shared_ptr<ServerConfigurationModel> m_model;
};

} // namespace vantrel
