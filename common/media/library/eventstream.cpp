#include "common/media/library/eventstream.h"

#include "common/media/address/medialogging.h"

#include <algorithm>
#include <utility>

namespace vantrel {

EventStream::State EventStream::assemble(const QByteArray& piece)
{
    if (m_passed + m_buffer.size() + piece.size() > maxBuffered) {
        *this = EventStream();
        return State::Overflow;
    }
    // While much comes in, pieces end within messages: what is whole does not wait for the rest.
    const qsizetype from = std::max<qsizetype>(0, m_buffer.size() - 1);
    m_buffer.append(piece);
    if (m_buffer.indexOf("\n\n", from) >= 0)
        return State::Complete;
    if (m_buffer.size() > maxMessage) {
        m_passed += m_buffer.size() - 1;
        m_buffer = m_buffer.right(1); // half of a boundary
    }
    return State::Waiting;
}

bool EventStream::parse(const std::function<void(const QByteArray& data)>& onMessage,
                        const std::function<bool()>& goesOn)
{
    const QByteArray text = std::exchange(m_buffer, QByteArray());
    const qsizetype whole = std::max<qsizetype>(0, text.lastIndexOf("\n\n") + 2);
    qsizetype start = 0;
    while (start < whole) {
        const qsizetype boundary = text.indexOf("\n\n", start);
        const qsizetype end = boundary < 0 ? whole : boundary + 2; // a third line break may be left
        if (std::exchange(m_passed, 0) + end - start > maxMessage)
            onMessage(QByteArray());
        else
            parseMessage(text.mid(start, end - start), onMessage);
        start = end;
        if (!goesOn())
            break;
    }
    m_buffer = text.mid(start);
    return start >= whole;
}

void EventStream::parseMessage(const QByteArray& text,
                               const std::function<void(const QByteArray& data)>& onMessage)
{
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype end = text.indexOf('\n', start);
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
