#include "common/media/library/eventstream.h"

#include "common/media/address/medialogging.h"

#include <utility>

namespace vantrel {

namespace {

// Comments stay buffered until a message closes them; a server that sends nothing else must not make every
// read go through all of them again.
constexpr qsizetype maxComments = 1024;

} // namespace

EventStream::State EventStream::assemble(const QByteArray& piece)
{
    if (m_buffer.size() + piece.size() > maxBuffered) {
        m_buffer = QByteArray();
        m_message = QByteArray();
        return State::Overflow;
    }
    m_buffer.append(piece);
    return m_buffer.endsWith("\n\n") ? State::Complete : State::Waiting;
}

void EventStream::parse(const std::function<void(const QByteArray& data)>& onMessage)
{
    const QByteArray text = m_buffer; // a message clears the buffer while the lines are walked
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
    if (m_buffer.size() > maxComments)
        m_buffer.clear();
}

void EventStream::parseLine(const QByteArray& line)
{
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0) {
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
    m_buffer.clear();
    onMessage(std::exchange(m_message, QByteArray()));
}

} // namespace vantrel
