#pragma once

#include <QStyle>
#include <QStyleOption>

namespace vantrel::gallery {

/// A widget that is drawn as if it were under the mouse, or had the focus, for as long as it lives.
template <typename Widget, typename Option>
class Frozen : public Widget
{
public:
    using Widget::Widget;

    void freeze(QStyle::State state) { m_state = state; }

protected:
    void initStyleOption(Option* option) const override
    {
        Widget::initStyleOption(option);
        option->state |= m_state;
    }

private:
    QStyle::State m_state = QStyle::State_None;
};

} // namespace vantrel::gallery
