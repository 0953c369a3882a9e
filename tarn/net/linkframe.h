#pragma once

#include "tarn/json/patch.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// The frames of the scene link, for both ends: a 4-byte big-endian length, then that many bytes of UTF-8
/// JSON, one array of operations.
namespace linkframe {

inline constexpr std::size_t headerSize = 4;
inline constexpr std::size_t maxPayload = 64u * 1024 * 1024;

/// The patch as one frame, or as several where one would be too large.
std::string encode(const Patch& patch);

/// Collects received bytes and gives out whole patches.
class Decoder
{
public:
    enum class Result { Patch, NeedMore, Error };
    void feed(std::string_view bytes);
    /// The next patch in out. Error is final: the link must end, message() says why.
    Result next(Patch& out);
    /// Bytes of the next frame, 0 as long as it is not whole: how much work next() has.
    std::size_t nextSize() const;
    /// Bytes of a frame that has begun, as it announces; 0 between two frames.
    std::size_t waitingSize() const;
    const std::string& message() const { return m_message; }

private:
    std::optional<std::size_t> nextLength() const;

    static constexpr std::size_t keptCapacity = 1024 * 1024;

    std::string m_buffer;
    std::size_t m_offset = 0;
    std::string m_message;
};

} // namespace linkframe
} // namespace vantrel
