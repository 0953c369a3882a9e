#include "ombra/base/memory.h"
#include "ombra/base/version.h"
#include "ombra/decode/graphicscard.h"
#include "ombra/programout.h"
#include "ombra/server.h"
#include "ombra/sound/sounddevice.h"
#include "ombra/sound/soundout.h"
#include "tarn/log/logwriter.h"
#include "tarn/media/enumtext.h"

#include <boost/asio/signal_set.hpp>

#include <charconv>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

namespace {

using namespace vantrel;
using namespace vantrel::ombra;

constexpr const char* usage =
    "usage: ombra --media DIR --state DIR [--bind ADDR] [--http-port N] [--link-port N] [--preview-port N]\n"
    "             [--ftp-port N] [--host-name NAME]... [--no-discovery] [--simulate-outputs] [--log FILE]\n"
    "             [--display [window]] [--display-preview] [--paint-by card|processor]\n"
    "             [--decode-by card|processor]\n"
    "             [--sound [DEVICE]]... [--no-sound] [--sound-offset MS] [--sound-preview [DEVICE]]\n"
    "       ombra --sound-devices\n"
    "\n"
    "  --media DIR        the folder of the media files\n"
    "  --state DIR        where the show is kept; made where needed\n"
    "  --bind ADDR        the address to serve on (127.0.0.1)\n"
    "  --http-port N      of the library and the media data (80); 0 takes a free port, as for the others\n"
    "  --link-port N      of the scene (11060)\n"
    "  --preview-port N   of the preview pictures (11061)\n"
    "  --ftp-port N       of the media folder over FTP (21)\n"
    "  --host-name NAME   a name that clients may call it by, beside the machine's own; several are "
    "possible\n"
    "  --no-discovery     do not answer searches of the network\n"
    "  --display          program full screen on the output that its mapping names, the second one at first, "
    "or "
    "the only one\n"
    "                     there is; \"--display window\" in a window\n"
    "  --display-preview  preview as well, on its own\n"
    "  --paint-by WHAT    screens are painted by the \"card\", or by the \"processor\" on a desktop without "
    "one, as "
    "the machine\n"
    "                     has it; this says so\n"
    "  --decode-by WHAT   videos are decoded by the \"card\" (VA-API) where it can and as long as it does,\n"
    "                     by the processor elsewhere, as the log says; or by the \"processor\" alone (card)\n"
    "  --sound            program's sound on the machine's own sound device, or on the one of that name, or "
    "part "
    "of it;\n"
    "                     --display has it as well\n"
    "                     \"--sound xlr=DEVICE\" for that choice of the operator alone, also embedded and "
    "dante\n"
    "  --no-sound         pictures alone\n"
    "  --sound-offset MS  program's sound so much later than its pictures, -250 to 250 (0): for what "
    "amplifiers "
    "and screens\n"
    "                     take; until an operator sets another in the OUTPUTS tab\n"
    "  --sound-preview    preview's sound on a sound device of its own: the one of that name, or part of it\n"
    "  --sound-devices    the names of the sound devices that are there\n"
    "  --simulate-outputs displays are plugged in and out by POST /api/brume/v1/simulate/outputs/0 and 1\n"
    "  --log FILE         write the log there instead of to standard error: 10 MB a file, FILE and FILE.1 to "
    "FILE.4\n";

bool parsePort(std::string_view text, unsigned short& out)
{
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), out);
    return code == std::errc() && end == text.data() + text.size();
}

bool parseOffset(std::string_view text, double& seconds)
{
    int milliseconds = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), milliseconds);
    seconds = milliseconds / 1000.0;
    return code == std::errc() && end == text.data() + text.size() &&
           std::abs(seconds) <= SoundOut::largestOffset;
}

struct Arguments
{
    ServerOptions server;
    bool noSound = false;
    bool decodesByCard = true;
    std::string log;
};

/// "DEVICE", or "embedded=DEVICE" for one of the devices that the scene knows.
void setSound(ServerOptions& options, const std::string& value)
{
    const std::size_t sign = value.find('=');
    AudioPlaybackDevice device{};
    if (sign != std::string::npos && fromStr(std::string_view(value).substr(0, sign), device)) {
        options.soundOf[device] = value.substr(sign + 1);
        options.sound = options.sound.value_or("");
    } else
        options.sound = value;
}

bool parseOption(std::string_view name, const char* value, Arguments& arguments)
{
    ServerOptions& options = arguments.server;
    if (name == "--media")
        options.media = value;
    else if (name == "--state")
        options.state = value;
    else if (name == "--log")
        arguments.log = value;
    else if (name == "--host-name")
        options.hostNames.emplace_back(value);
    else if (name == "--http-port")
        return parsePort(value, options.httpPort);
    else if (name == "--link-port")
        return parsePort(value, options.linkPort);
    else if (name == "--preview-port")
        return parsePort(value, options.previewPort);
    else if (name == "--ftp-port")
        return parsePort(value, options.ftpPort);
    else if (name == "--sound-offset")
        return parseOffset(value, options.soundOffset);
    else if (name == "--bind") {
        boost::system::error_code code;
        options.bind = boost::asio::ip::make_address(value, code);
        return !code;
    } else
        return false;
    return true;
}

bool parseIsCard(const char* text, bool& out)
{
    out = std::strcmp(text, "card") == 0;
    return out || std::strcmp(text, "processor") == 0;
}

bool parsePaintBy(const char* text, PaintBy& out)
{
    bool isCard = false;
    if (!parseIsCard(text, isCard))
        return false;
    out = isCard ? PaintBy::Card : PaintBy::Processor;
    return true;
}

/// Nothing, with a line of what is wrong, when the arguments make no sense.
std::optional<Arguments> parseArguments(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--no-discovery") == 0) {
            arguments.server.discovery = false;
        } else if (std::strcmp(argv[i], "--simulate-outputs") == 0) {
            arguments.server.simulateOutputs = true;
        } else if (std::strcmp(argv[i], "--display") == 0) {
            const bool isWindow = i + 1 < argc && std::strcmp(argv[i + 1], "window") == 0;
            arguments.server.screen = isWindow ? ServerOptions::Screen::Window : ServerOptions::Screen::Full;
            i += isWindow ? 1 : 0;
        } else if (std::strcmp(argv[i], "--decode-by") == 0 && i + 1 < argc &&
                   parseIsCard(argv[i + 1], arguments.decodesByCard)) {
            ++i;
        } else if (std::strcmp(argv[i], "--display-preview") == 0) {
            arguments.server.showsPreview = true;
        } else if (std::strcmp(argv[i], "--paint-by") == 0 && i + 1 < argc &&
                   parsePaintBy(argv[i + 1], arguments.server.paintBy)) {
            ++i;
        } else if (std::strcmp(argv[i], "--sound") == 0) {
            const bool isNamed = i + 1 < argc && argv[i + 1][0] != '-';
            setSound(arguments.server, isNamed ? argv[++i] : "");
        } else if (std::strcmp(argv[i], "--sound-preview") == 0) {
            const bool isNamed = i + 1 < argc && argv[i + 1][0] != '-';
            arguments.server.previewSound = isNamed ? argv[++i] : "";
        } else if (std::strcmp(argv[i], "--no-sound") == 0) {
            arguments.noSound = true;
        } else if (i + 1 >= argc || !parseOption(argv[i], argv[i + 1], arguments)) {
            std::fprintf(stderr, "ombra: cannot use \"%s%s%s\"\n%s", argv[i], i + 1 < argc ? " " : "",
                         i + 1 < argc ? argv[i + 1] : "", usage);
            return std::nullopt;
        } else {
            ++i;
        }
    }
    if (arguments.server.media.empty() || arguments.server.state.empty()) {
        std::fprintf(stderr, "ombra: --media and --state are needed\n%s", usage);
        return std::nullopt;
    }
    if (arguments.server.showsPreview && arguments.server.screen == ServerOptions::Screen::None) {
        std::fprintf(stderr, "ombra: --display-preview needs --display\n%s", usage);
        return std::nullopt;
    }
    if (arguments.noSound)
        arguments.server.sound = arguments.server.previewSound = std::nullopt;
    else if (arguments.server.screen != ServerOptions::Screen::None && !arguments.server.sound)
        arguments.server.sound = "";
    return arguments;
}

/// The log in the given file for as long as it lives; without a file it stays with standard error.
class LogToFile
{
public:
    explicit LogToFile(const std::string& file)
    {
        if (file.empty())
            return;
        const auto writer = std::make_shared<LogWriter>(file);
        Log::setSink([writer](LogLevel level, const LogLoc& from, std::string_view module,
                              std::string_view message) { writer->write(level, from, module, message); });
    }
    ~LogToFile() { Log::setSink({}); }
    LogToFile(const LogToFile&) = delete;
    LogToFile& operator=(const LogToFile&) = delete;
};

int listSoundDevices()
{
    std::string error;
    for (const std::string& name : SoundDevice::names(&error))
        std::printf("%s\n", name.c_str());
    if (!error.empty())
        std::fprintf(stderr, "ombra: %s\n", error.c_str());
    return error.empty() ? 0 : 1;
}

int serve(const ServerOptions& options)
{
    boost::asio::io_context io{1};
    boost::asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](boost::system::error_code code, int) {
        if (!code)
            io.stop();
    });
    Server server(io, options);
    std::string error;
    if (!server.start(&error)) {
        std::fprintf(stderr, "ombra: %s\n", error.c_str());
        return 1;
    }
    std::printf("ombra ready http=%u link=%u preview=%u ftp=%u\n", server.httpPort(), server.linkPort(),
                server.previewPort(), server.ftpPort());
    std::fflush(stdout);
    while (!io.stopped()) {
        try {
            io.run();
        } catch (const std::exception& e) {
            Log::write(LogLevel::Error, "vantrel.server", std::string("an operation failed: ") + e.what());
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    arrangeMemory();
    if (argc == 2 && std::strcmp(argv[1], "--sound-devices") == 0)
        return listSoundDevices();
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "--version") == 0)) {
        if (std::strcmp(argv[1], "--help") == 0)
            std::fputs(usage, stdout);
        else
            std::printf("ombra %s\n", versionText().c_str());
        return 0;
    }
    const auto arguments = parseArguments(argc, argv);
    if (!arguments)
        return 2;
    const LogToFile log(arguments->log);
    if (arguments->decodesByCard)
        GraphicsCard::allow();
    try {
        const int code = serve(arguments->server);
        if (SoundOut::isHanging() || ProgramOut::isHanging()) {
            Log::setSink({});
            std::_Exit(code);
        }
        return code;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "ombra: %s\n", e.what());
        return 1;
    }
}
