#pragma once

#include "ombra/sound/soundstream.h"

#include <memory>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// A sound device of this machine that plays a stream. To open and to close one may take as long as its
/// driver likes.
class SoundDevice
{
public:
    /// The device whose name that is, or holds that; an empty one means the machine's own choice. Null, and
    /// the reason, where there is none.
    static std::unique_ptr<SoundDevice> open(const std::string& name, std::string* error);
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;

    /// The names of those that are there.
    static std::vector<std::string> names(std::string* error);

    const std::shared_ptr<SoundStream>& stream() const { return m_stream; }
    const std::string& name() const { return m_name; }
    int channels() const { return m_channels; }
    int rate() const { return m_rate; } // frames a second
    int framesAtOnce() const { return m_framesAtOnce; }
    /// Whether it is still there, as far as its driver says.
    bool isAlive() const;

private:
    SoundDevice() = default;
    bool start(std::string* error);
    static void fill(void* stream, unsigned char* out, int bytes);

    std::string m_name; // empty: the machine's own choice
    unsigned m_id = 0;
    int m_channels = 0, m_rate = 0, m_framesAtOnce = 0;
    std::shared_ptr<SoundStream> m_stream;
};

} // namespace vantrel::ombra
