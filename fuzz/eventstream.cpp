// How a stream is cut, a line break, the stream: it brings the same messages in pieces as in one, and keeps
// nothing but a few comments.
#include "common/media/library/eventstream.h"

#include <QtGlobal>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

using namespace vantrel;

namespace {

void check(bool good)
{
    if (!good)
        std::abort();
}

/// Reads the stream in pieces whose sizes are given in turn.
std::vector<QByteArray> read(const QByteArray& bytes, std::string_view sizes)
{
    EventStream stream;
    std::vector<QByteArray> messages;
    qsizetype at = 0;
    for (std::size_t turn = 0; at < bytes.size(); ++turn) {
        const qsizetype size =
            sizes.empty() ? bytes.size() : 1 + static_cast<unsigned char>(sizes[turn % sizes.size()]);
        const QByteArray piece = bytes.mid(at, size);
        at += piece.size();
        const EventStream::State state = stream.assemble(piece);
        check(state != EventStream::State::Overflow);
        if (state == EventStream::State::Complete)
            stream.parse([&](const QByteArray& data) {
                check(!data.isEmpty() && data.endsWith('\n'));
                messages.push_back(data);
            });
    }
    check(stream.buffered() <= 1024);
    return messages;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(text.find('\n'), size);
    const std::string_view rest = text.substr(std::min(split + 1, size));
    const QByteArray stream = QByteArray(rest.data(), static_cast<qsizetype>(rest.size())) + "\n\n";
    check(read(stream, text.substr(0, split)) == read(stream, {}));
    return 0;
}
