#include "common/ui/shell/mainnavigationbar.h"

#include "common/session/settings/fontsize.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/navbutton.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace vantrel {

namespace {

int navButtonExtent(FontSize size)
{
    static constexpr int extents[] = {27, 36, 48, 72};
    return extents[static_cast<int>(size)];
}

/// With the banner below it, all together as high as the buttons at the largest text.
int tabHeight(FontSize size)
{
    static constexpr int heights[] = {22, 28, 36, 48};
    return heights[static_cast<int>(size)];
}

int tabIconExtent(FontSize size)
{
    static constexpr int extents[] = {15, 18, 24, 32};
    return extents[static_cast<int>(size)];
}

int navIconExtent(FontSize size)
{
    static constexpr int extents[] = {15, 20, 30, 40};
    return extents[static_cast<int>(size)];
}

} // namespace

void sizeNavButton(PushButton* button)
{
    followFontSize(button, [button](FontSize size) {
        button->setFixedSize(navButtonExtent(size), navButtonExtent(size));
        button->setIconSize(QSize(navIconExtent(size), navIconExtent(size)));
    });
}

MainNavigationBar::MainNavigationBar(Hotkeys* hotkeys, QWidget* parent)
    : QWidget(parent)
    , m_hotkeys(hotkeys)
    , m_layout(new QHBoxLayout(this))
    , m_rows(new QVBoxLayout)
    , m_tabs(new QHBoxLayout)
{
    setObjectName(QStringLiteral("Main"));
    setAttribute(Qt::WA_StyledBackground);
    auto* logo = new QLabel(this);
    logo->setObjectName(QStringLiteral("MainNavigationBar-logo"));
    logo->setAccessibleName(tr("Halcyra"));
    followFontSize(logo, [logo](FontSize size) {
        const int extent = navButtonExtent(size) * 3 / 4;
        logo->setPixmap(IconCache::original(QStringLiteral(":/icons/zt_logo.svg"), QSize(extent, extent),
                                            logo->devicePixelRatioF()));
    });
    m_layout->setContentsMargins(2, 2, 0, 2); // the banner ends with the panels below
    m_layout->setSpacing(8);
    m_tabs->setSpacing(4);
    m_tabs->addStretch(1);
    m_layout->addWidget(logo);
    m_layout->addSpacing(16);
    m_rows->setSpacing(0);
    m_rows->addLayout(m_tabs);
    m_layout->addLayout(m_rows, 1);
}

void MainNavigationBar::setBanner(QWidget* banner)
{
    m_rows->addWidget(banner);
}

void MainNavigationBar::addMainMenu(QWidget* button)
{
    m_layout->insertWidget(0, button);
}

void MainNavigationBar::addTab(int index, PushButton* button)
{
    delete m_buttons.take(index);
    m_buttons.insert(index, button);
    m_tabs->insertWidget(m_tabs->count() - 1, button);
    const QString name = QStringLiteral("tab_%1").arg(index + 1);
    setHotkeyTip(button, button->text().trimmed(), {name});
    followFontSize(button, [button](FontSize size) {
        button->setFixedHeight(tabHeight(size));
        button->setIconSize(QSize(tabIconExtent(size), tabIconExtent(size)));
    });
    connect(button, &PushButton::clicked, this, [this, index] { setActiveTab(index); });
    m_hotkeys->addShortcut(
        name, button, [this, index] { setActiveTab(index); }, Qt::WindowShortcut, button);
    updateTabStyles();
}

void MainNavigationBar::addButton(QWidget* button)
{
    m_layout->addWidget(button);
}

void MainNavigationBar::setActiveTab(int index)
{
    const PushButton* button = m_buttons.value(index);
    if (!button || !button->isEnabled() || index == m_active)
        return;
    m_active = index;
    updateTabStyles();
    Q_EMIT tabSelected(index);
}

void MainNavigationBar::setEnabled(int index)
{
    if (PushButton* button = m_buttons.value(index))
        button->setEnabled(true);
}

void MainNavigationBar::setDisabled(int index)
{
    if (PushButton* button = m_buttons.value(index))
        button->setEnabled(false);
}

void MainNavigationBar::updateTabStyles()
{
    for (auto it = m_buttons.cbegin(); it != m_buttons.cend(); ++it) {
        if (auto* tab = qobject_cast<NavButton*>(it.value()))
            tab->setActive(it.key() == m_active);
    }
}

} // namespace vantrel
