#pragma once

#include <QMap>
#include <QWidget>

class QHBoxLayout;

namespace vantrel {

class NavButton;

/// A row of tab buttons inside a view; the tabs are named by an index of the caller's choice. Left and right
/// arrow keys move between the enabled tabs.
class NavigationBar : public QWidget
{
    Q_OBJECT

public:
    explicit NavigationBar(QWidget* parent = nullptr);

    /// Takes the button over; a button that stood at the index is removed.
    void addTab(int index, NavButton* button);
    void addWidget(QWidget* widget);
    void addSpacer();
    /// -1 before the first setActiveTab.
    int activeTab() const { return m_active; }
    NavButton* button(int index) const { return m_buttons.value(index); }
    void setObjectNames(const QString& base);

public Q_SLOTS:
    /// Marks the tab and emits tabSelected on a change; an unknown or disabled tab leaves things as they are.
    void setActiveTab(int index);
    void setEnabled(int index);
    void setDisabled(int index);
    void updateTabStyles();

Q_SIGNALS:
    void tabSelected(int index);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void step(int direction);

    QHBoxLayout* m_layout;
    QMap<int, NavButton*> m_buttons;
    int m_active = -1;
};

} // namespace vantrel
