// A server's whole scene in one frame of 100,000 operations: decoding, parsing, applying and telling a
// listener that does what an item model does, against parsing the same text and applying it with
// nlohmann::json.
#include "tarn/net/linkframe.h"
#include "tarn/scene/scene.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

using namespace vantrel;

namespace {

/// Finds the parent and the row of whatever comes and goes, as an item model must.
struct ModelLikeListener : SceneStructureObserver
{
    static void onChange(Scene*, int count, const SceneChange* changes, void* user)
    {
        auto* self = static_cast<ModelLikeListener*>(user);
        for (int i = 0; i < count; ++i) {
            Object* parent = changes[i].object->getParent();
            self->checksum += static_cast<std::size_t>(parent->childIndex(changes[i].object));
            if (Object* above = parent->getParent())
                self->checksum += static_cast<std::size_t>(above->childIndex(parent));
        }
    }
    void rowAboutToBeInserted(Object* parent, int row) override { locate(parent, row); }
    void rowInserted(Object* parent, int row) override { locate(parent, row); }
    void rowAboutToBeRemoved(Object* parent, int row) override { locate(parent, row); }
    void rowRemoved(Object* parent, int row) override { locate(parent, row); }
    void locate(Object* parent, int row)
    {
        if (Object* above = parent->getParent())
            checksum += static_cast<std::size_t>(above->childIndex(parent) + row);
    }

    std::size_t checksum = 0;
};

std::string operations()
{
    std::string text = "[";
    const auto op = [&](const char* kind, const std::string& path, const std::string& value) {
        text += text.size() > 1 ? ",{\"op\":\"" : "{\"op\":\"";
        text += kind + std::string("\",\"path\":\"") + path + "\",\"value\":" + value + "}";
    };
    for (int i = 0; i < 25'000; ++i) {
        const std::string number = std::to_string(i);
        const std::string path = "/device/surfaces/" + number;
        op("add", path,
           R"({"type":"Surface","properties":{"name":"surface )" + number +
               R"(","source":"brume://collections/1/slots/)" + number + R"(","x":)" + number +
               R"(.5,"y":0.25,"width":1,"height":1,"rotation":0,"opacity":1,"locked":false},"corners":{}})");
        op("add", path + "/corners/topLeft",
           R"({"type":"Corner","properties":{"x":0.125,"y":)" + number + "}}");
        op("replace", path + "/properties/rotation", number + ".25");
        op("replace", path + "/properties/opacity", "0.5");
    }
    return text + "]";
}

template <typename F>
double milliseconds(F&& f)
{
    const auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main()
{
    const std::string text = operations();
    std::string frame;
    for (int shift = 24; shift >= 0; shift -= 8)
        frame += static_cast<char>(text.size() >> shift & 0xff);
    frame += text;
    const std::string empty = Scene::toJson(Scene().root()).toString();

    std::vector<double> ours;
    std::vector<double> theirs;
    for (int round = 0; round < 5; ++round) {
        ModelLikeListener listener;
        Scene scene;
        scene.addChangeCallback(&ModelLikeListener::onChange, &listener);
        scene.addStructureObserver(&listener);
        ours.push_back(milliseconds([&] {
            linkframe::Decoder decoder;
            Patch patch;
            decoder.feed(frame);
            if (decoder.next(patch) != linkframe::Decoder::Result::Patch || !scene.apply(patch, false))
                std::abort();
        }));
        nlohmann::json document = nlohmann::json::parse(empty);
        theirs.push_back(milliseconds([&] { document.patch_inplace(nlohmann::json::parse(text)); }));
        // Both must have built the same.
        if (nlohmann::json::parse(Scene::toJson(scene.root()).toString()) != document ||
            listener.checksum == 0)
            std::abort();
    }
    const double mine = *std::ranges::min_element(ours);
    const double peer = *std::ranges::min_element(theirs);
    const double goal = 2;
    std::printf("{\"name\":\"scene/load-100000-ops\",\"peer\":\"nlohmann::json parse + patch\",\"ours\":%.1f,"
                "\"theirs\":%.1f,\"unit\":\"ms\",\"ratio\":%.3f,\"goal\":%.1f,\"met\":%s}\n",
                mine, peer, peer / mine, goal, peer >= goal * mine ? "true" : "false");
    return 0;
}
