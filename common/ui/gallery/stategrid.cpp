#include "common/ui/gallery/stategrid.h"

#include "common/ui/style/dynamicstyle.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QAbstractButton>
#include <QGridLayout>

#include <algorithm>

namespace vantrel::gallery {

StateGrid::StateGrid(const QStringList& states, QWidget* parent)
    : QWidget(parent)
    , m_layout(new QGridLayout(this))
    , m_columns(std::max(6, static_cast<int>(states.size())))
{
    m_layout->setContentsMargins(12, 4, 12, 12);
    m_layout->setHorizontalSpacing(16);
    m_layout->setVerticalSpacing(8);
    for (int i = 0; i < states.size(); ++i) {
        auto* title = new ZTLabel(states[i], this);
        title->setStyleClass(QStringLiteral("caption"));
        m_layout->addWidget(title, 0, i + 1);
    }
    m_layout->setColumnStretch(m_columns + 1, 1);
}

void StateGrid::addRow(const QString& kind, const QList<QWidget*>& widgets)
{
    addTitle(kind);
    for (int i = 0; i < widgets.size(); ++i) {
        if (widgets[i])
            m_layout->addWidget(widgets[i], m_rows, i + 1, Qt::AlignLeft | Qt::AlignVCenter);
    }
    ++m_rows;
}

void StateGrid::addWide(const QString& kind, QWidget* widget)
{
    addTitle(kind);
    m_layout->addWidget(widget, m_rows, 1, 1, m_columns + 1, Qt::AlignLeft | Qt::AlignVCenter);
    ++m_rows;
}

void StateGrid::addTitle(const QString& kind)
{
    auto* title = new ZTLabel(kind, this);
    title->setStyleClass(QStringLiteral("dim"));
    m_layout->addWidget(title, m_rows, 0);
}

void freezeButton(QAbstractButton* button, State state)
{
    switch (state) {
    case State::Hover:
        button->setAttribute(Qt::WA_UnderMouse);
        break;
    case State::Pressed:
        button->setDown(true);
        break;
    case State::Focus:
        setDynamicStyle(button, "keyboardfocus", true);
        break;
    case State::Checked:
        button->setCheckable(true);
        button->setChecked(true);
        break;
    case State::Disabled:
        button->setEnabled(false);
        break;
    case State::Normal:
        break;
    }
}

} // namespace vantrel::gallery
