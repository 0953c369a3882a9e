#include "ombra/display/drmfolder.h"

#include "tarn/edid/edid.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

namespace vantrel::ombra {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t bytesAtMost = 32768; // of a file there: an EDID has 256 blocks at most

/// Sizes are not to be trusted there: what is read counts.
std::string contentOf(const fs::path& file)
{
    std::string content(bytesAtMost, '\0');
    std::ifstream in(file, std::ios::binary);
    in.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, in.gcount())));
    return content;
}

std::string lineOf(const fs::path& file)
{
    const std::string content = contentOf(file);
    return content.substr(0, content.find('\n'));
}

std::string hexOf(const std::string& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (const char one : bytes) {
        hex += digits[static_cast<unsigned char>(one) >> 4];
        hex += digits[static_cast<unsigned char>(one) & 15];
    }
    return hex;
}

/// "card1-HDMI-A-1" is HDMI-1, as desktops call it.
std::string nameOf(const std::string& folder)
{
    std::string name = folder.substr(folder.find('-') + 1);
    if (const std::size_t kind = name.find("HDMI-A-"); kind == 0)
        name.erase(5, 2);
    return name;
}

/// In the order in which the kernel counts them, as far as it says so.
struct Rank
{
    int card = 0;
    int id = 0;
    std::string folder;
    auto operator<=>(const Rank&) const = default;
};

int numberOf(const std::string& text)
{
    return std::atoi(text.c_str());
}

std::map<Rank, fs::path> connectorFolders(const fs::path& root)
{
    std::map<Rank, fs::path> found;
    std::error_code code;
    for (fs::directory_iterator at(root, code), end; !code && at != end; at.increment(code)) {
        const std::string folder = at->path().filename().string();
        std::error_code ignored;
        if (!folder.starts_with("card") || folder.find('-') == std::string::npos ||
            folder.find("Writeback") != std::string::npos || !fs::exists(at->path() / "status", ignored))
            continue;
        found.emplace(Rank{numberOf(folder.substr(4)), numberOf(lineOf(at->path() / "connector_id")), folder},
                      at->path());
    }
    return found;
}

/// The modes of the display that the card offers: there they have sizes alone ("1920x1080", "1920x1080i").
void readModes(const fs::path& folder, Connector& out)
{
    std::set<std::string> sizes;
    const std::string list = contentOf(folder / "modes");
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find('\n', at), list.size());
        sizes.insert(list.substr(at, end - at));
        at = end + 1;
    }
    Edid edid;
    const auto bytes = bytesOfHex(out.edid);
    if (!bytes || !readEdid(*bytes, edid, nullptr))
        return;
    const auto isOffered = [&sizes](const VideoTiming& mode) {
        return sizes.contains(std::to_string(mode.width) + 'x' + std::to_string(mode.height) +
                              (mode.interlaced ? "i" : ""));
    };
    std::ranges::copy_if(edid.modes, std::back_inserter(out.modes), isOffered);
    if (edid.preferred && isOffered(*edid.preferred))
        out.preferred = edid.preferred;
}

} // namespace

std::vector<Connector> readDrmFolder(const fs::path& root)
{
    std::vector<Connector> connectors;
    int screens = 0;
    for (const auto& [rank, folder] : connectorFolders(root)) {
        Connector connector;
        connector.name = nameOf(rank.folder);
        const bool isKnown =
            std::ranges::find(connectors, connector.name, &Connector::name) != connectors.end();
        if (isKnown)
            connector.name += " (" + rank.folder.substr(0, rank.folder.find('-')) + ')';
        connector.isConnected = connector.isOn = lineOf(folder / "status") == "connected";
        if (connector.isConnected) {
            connector.edid = hexOf(contentOf(folder / "edid"));
            readModes(folder, connector);
            connector.screen = screens++;
        }
        connectors.push_back(std::move(connector));
    }
    return connectors;
}

std::string drmEdid(const fs::path& root, const std::string& name)
{
    for (const auto& [rank, folder] : connectorFolders(root)) {
        if (nameOf(rank.folder) == name && lineOf(folder / "status") == "connected")
            return hexOf(contentOf(folder / "edid"));
    }
    return {};
}

} // namespace vantrel::ombra
