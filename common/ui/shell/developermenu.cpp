#include "common/ui/shell/developermenu.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/stylesheet.h"

#include <QApplication>

namespace vantrel {

DeveloperMenu::DeveloperMenu(QWidget* parent)
    : ZTMenu(tr("Developer"), parent)
{
    setObjectName(QStringLiteral("DeveloperMenu"));
    connect(addEntry(QStringLiteral("refresh"), tr("Reload style")), &QAction::triggered, this, &reloadStyle);
    for (const auto& [size, text] : {std::pair(FontSize::Small, tr("Text size: Small")),
                                     std::pair(FontSize::Medium, tr("Text size: Medium")),
                                     std::pair(FontSize::Large, tr("Text size: Large")),
                                     std::pair(FontSize::Huge, tr("Text size: Huge"))}) {
        connect(addEntry(QStringLiteral("configuration"), text), &QAction::triggered, this, [size = size] {
            if (Configuration* settings = configuration())
                settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
        });
    }
}

void DeveloperMenu::reloadStyle()
{
    StyleSheet::renew(*qApp, currentFontSize());
}

} // namespace vantrel
