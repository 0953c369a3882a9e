#include "common/media/library/eventstream.h"

#include "common/media/address/medialogging.h"

#include <algorithm>
#include <utility>

namespace vantrel {

EventStream::State EventStream::assemble(const QByteArray& piece)
{
    if (m_buffer.size() + piece.size() > maxBuffered) {
        m_buffer = QByteArray();
        m_message = QByteArray();
        return State::Overflow;
    }
    // While much comes in, pieces end within messages: what is whole does not wait for the rest.
    const qsizetype from = std::max<qsizetype>(0, m_buffer.size() - 1);
    m_buffer.append(piece);
    return m_buffer.indexOf("\n\n", from) >= 0 ? State::Complete : State::Waiting;
}

void EventStream::parse(const std::function<void(const QByteArray& data)>& onMessage)
{
    const qsizetype whole = m_buffer.lastIndexOf("\n\n") + 2;
    const QByteArray text = m_buffer.left(whole);
    m_buffer.remove(0, whole);
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0)
            end = text.size();
        if (end > start)
            parseLine(text.mid(start, end - start));
        else
            handleMessage(onMessage);
        start = end + 1;
    }
}

void EventStream::parseLine(const QByteArray& line)
{
    if (line.startsWith(':'))
        return; // a comment: what a server says to show that it is there
    const qsizetype colon = line.indexOf(':');
    if (colon < 0) {
        qCWarning(lcMedia) << "Invalid line in SSE stream: " << shortened(line);
        return;
    }
    if (line.left(colon).simplified() != "data") {
        qCWarning(lcMedia) << "Unhandled field in SSE stream: " << shortened(line);
        return;
    }
    m_message.append(line.mid(colon + 1).simplified());
    m_message.append('\n');
}

void EventStream::handleMessage(const std::function<void(const QByteArray& data)>& onMessage)
{
    if (m_message.isEmpty())
        return;
    onMessage(std::exchange(m_message, QByteArray()));
}

} // namespace vantrel
