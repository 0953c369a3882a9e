#include "common/ui/toolkit/collapse.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace vantrel {

Collapse::Collapse(const QString& title, QWidget* parent)
    : ZTFrame(parent)
    , m_titleRow(new QWidget(this))
    , m_titleButton(new PushButton(title, m_titleRow))
    , m_layout(new QVBoxLayout(this))
{
    m_titleRow->setObjectName(QStringLiteral("titleRow"));
    m_titleButton->setStyleClass(QStringLiteral("title"));
    m_titleButton->setCheckable(true);
    m_titleButton->setChecked(true);
    auto* row = new QHBoxLayout(m_titleRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(m_titleButton, 1);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(m_titleRow);
    connect(m_titleButton, &PushButton::toggled, this, [this](bool open) {
        if (m_content)
            m_content->setVisible(open);
        updateIcon();
        Q_EMIT openChanged(open);
    });
    followFontSize(this, [this](FontSize) { updateIcon(); });
}

void Collapse::setTitle(const QString& title)
{
    m_titleButton->setText(title);
}

QString Collapse::title() const
{
    return m_titleButton->text();
}

bool Collapse::isOpen() const
{
    return m_titleButton->isChecked();
}

void Collapse::setOpen(bool open)
{
    m_titleButton->setChecked(open);
}

void Collapse::setContent(QWidget* content)
{
    delete m_content;
    m_content = content;
    if (!m_content)
        return;
    m_layout->addWidget(m_content, 1);
    m_content->setVisible(isOpen());
}

void Collapse::addTitleWidget(QWidget* widget)
{
    m_titleRow->layout()->addWidget(widget);
}

void Collapse::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_titleButton->setObjectName(base + QStringLiteral("-title-button"));
}

void Collapse::updateIcon()
{
    const int extent = scaled(16, currentFontSize());
    m_titleButton->setIconSize(QSize(extent, extent));
    m_titleButton->setIcon(
        tintedIcon(isOpen() ? QStringLiteral("chevron_down") : QStringLiteral("chevron_right"),
                   colors::getColor(colors::Zt_white_70), QSize(extent, extent)));
}

} // namespace vantrel
