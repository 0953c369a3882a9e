#pragma once

#include <QByteArray>

#include <functional>

namespace vantrel {

/// Puts server-sent events together from the pieces in which they arrive, and hands on the data of each
/// message. Owned by the one that reads the stream.
class EventStream
{
public:
    /// What may wait for the end of a message, in bytes.
    static constexpr qsizetype maxBuffered = 64 * 1024 * 1024;

    enum class State {
        Waiting,  // no message is whole
        Complete, // the last piece ended at least one: call parse()
        Overflow, // more than maxBuffered without a boundary; what was buffered is dropped
    };

    /// Costs what the piece costs.
    State assemble(const QByteArray& piece);
    /// Reads all messages that are whole, and keeps the beginning of the next. Each message's data lines go
    /// to the handler, joined by line feeds.
    void parse(const std::function<void(const QByteArray& data)>& onMessage);

    qsizetype buffered() const { return m_buffer.size(); }

private:
    void parseLine(const QByteArray& line);
    void handleMessage(const std::function<void(const QByteArray& data)>& onMessage);

    QByteArray m_message;
    QByteArray m_buffer;
};

} // namespace vantrel
