#pragma once

#include <QByteArray>

#include <functional>

namespace vantrel {

/// Puts server-sent events together from the pieces in which they arrive, and hands on the data of each
/// message. Owned by the one that reads the stream.
class EventStream
{
public:
    /// What a message may have, in bytes. A larger one is passed over: to read it would hold the window.
    static constexpr qsizetype maxMessage = 2 * 1024 * 1024;
    /// What may come without the end of a message, in bytes.
    static constexpr qsizetype maxBuffered = 64 * 1024 * 1024;

    enum class State {
        Waiting,  // no message is whole
        Complete, // the last piece ended at least one: call parse()
        Overflow, // more than maxBuffered without a boundary; what was buffered is dropped
    };

    /// Costs what the piece costs.
    State assemble(const QByteArray& piece);
    /// Reads all messages that are whole, and keeps the beginning of the next. Each message's data lines go
    /// to the handler, joined by line feeds; null data stand for a message that is passed over. After each,
    /// goesOn tells whether the next is to follow; returns false when messages are left that are whole.
    bool parse(
        const std::function<void(const QByteArray& data)>& onMessage,
        const std::function<bool()>& goesOn = [] { return true; });

    qsizetype buffered() const { return m_buffer.size(); }

private:
    void parseMessage(const QByteArray& text, const std::function<void(const QByteArray& data)>& onMessage);
    void parseLine(const QByteArray& line);
    void handleMessage(const std::function<void(const QByteArray& data)>& onMessage);

    QByteArray m_message;
    QByteArray m_buffer;
    qsizetype m_passed = 0; // bytes that were dropped of the message that is coming in
};

} // namespace vantrel
