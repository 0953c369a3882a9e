#include "common/media/library/turn.h"

#include <algorithm>
#include <deque>

namespace vantrel {

namespace {

std::deque<Turn*> waiting; // the next one first

} // namespace

Turn::Turn(QObject* parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &Turn::take);
}

Turn::~Turn()
{
    stop();
}

void Turn::ask()
{
    if (isAsked())
        return;
    waiting.push_back(this);
    waiting.front()->m_timer.start();
}

void Turn::stop()
{
    std::erase(waiting, this);
    m_timer.stop();
    if (!waiting.empty())
        waiting.front()->m_timer.start();
}

bool Turn::isAsked() const
{
    return std::ranges::find(waiting, this) != waiting.end();
}

void Turn::take()
{
    stop();
    Q_EMIT come();
}

} // namespace vantrel
