// Bytes from the scene link: whatever comes, in whatever pieces, the decoder either gives patches or ends,
// and a scene that applies them stays one that can be written and built again.
#include "tarn/net/linkframe.h"

#include "tarn/log/log.h"
#include "tarn/scene/scene.h"

#include <cstdlib>

using namespace vantrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool isQuiet = [] {
        Log::setSink([](LogLevel, const LogLoc&, std::string_view, std::string_view) {});
        return true;
    }();
    if (!isQuiet || size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t piece = data[0] + std::size_t{1};
    linkframe::Decoder decoder;
    Scene scene;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        decoder.feed(bytes.substr(at, piece));
        Patch patch;
        auto result = decoder.next(patch);
        for (; result == linkframe::Decoder::Result::Patch; result = decoder.next(patch))
            scene.apply(patch, false);
        if (result == linkframe::Decoder::Result::Error) {
            if (decoder.message().empty())
                std::abort();
            break;
        }
    }
    Scene copy;
    Patch received;
    if (!Patch::parseString(scene.snapshot().toJson().toString(), received) || !copy.apply(received, true) ||
        !(Scene::toJson(copy.root()) == Scene::toJson(scene.root())))
        std::abort();
    return 0;
}
