#pragma once

#include <QMap>
#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace vantrel {

class Hotkeys;
class PushButton;

/// Square size and icon of a button of the main navigation bar, kept by text size.
void sizeNavButton(PushButton* button);

/// The bar at the top of the window: the menu's button, the logo, the tabs, further buttons at the right.
/// A banner has its room below the tabs, beside the higher buttons. Ctrl+1 to Ctrl+9 choose a tab. Owned by
/// the main window.
class MainNavigationBar : public QWidget
{
    Q_OBJECT

public:
    /// hotkeys: choose the tabs; must outlive this.
    explicit MainNavigationBar(Hotkeys* hotkeys, QWidget* parent = nullptr);

    void addMainMenu(QWidget* button);
    /// A line below the tabs; once.
    void setBanner(QWidget* banner);
    void addTab(int index, PushButton* button);
    void addButton(QWidget* button);
    int activeTab() const { return m_active; }
    PushButton* button(int index) const { return m_buttons.value(index); }

public Q_SLOTS:
    /// Marks the tab and emits tabSelected on a change; an unknown or disabled tab leaves things as they are.
    void setActiveTab(int index);
    void setEnabled(int index);
    void setDisabled(int index);
    void updateTabStyles();

Q_SIGNALS:
    void tabSelected(int index);

private:
    Hotkeys* m_hotkeys;
    QHBoxLayout* m_layout;
    QVBoxLayout* m_rows;
    QHBoxLayout* m_tabs;
    QMap<int, PushButton*> m_buttons;
    int m_active = -1;
};

} // namespace vantrel
