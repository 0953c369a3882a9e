#include "tarn/scene/scenetypes.h"

#include "tarn/media/channelenums.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"

namespace vantrel {

namespace {

using Types = std::map<std::string, TypeInfo, std::less<>>;

/// Builds one type up in the order of its declaration.
class Declaration
{
public:
    Declaration(Types& types, const char* name, const char* base = "Object")
        : m_type(types[name])
    {
        m_type.name = name;
        const auto found = types.find(base);
        m_type.base = found != types.end() && &found->second != &m_type ? &found->second : nullptr;
    }

    Declaration& property(const char* name, const Variant& def, Variant min = {}, Variant max = {})
    {
        PropertyInfo info;
        info.name = name;
        info.type = def.type();
        info.def = def;
        info.min = std::move(min);
        info.max = std::move(max);
        info.index = static_cast<int>(m_type.properties.size());
        m_type.properties.push_back(std::move(info));
        return *this;
    }

    Declaration& readOnly(const char* name, const Variant& def)
    {
        property(name, def);
        m_type.properties.back().readOnly = true;
        return *this;
    }

    Declaration& text(const char* name, const char* def = "") { return property(name, Variant::from(def)); }
    Declaration& flag(const char* name) { return property(name, Variant::from(false)); }
    Declaration& integer(const char* name) { return property(name, Variant::from(0)); }
    Declaration& number(const char* name, double def = 0) { return property(name, Variant::from(def)); }

    Declaration& methods(std::initializer_list<const char*> names)
    {
        for (const char* name : names)
            m_type.methods.push_back({name});
        return *this;
    }

    Declaration& child(const char* name, const char* typeName, ChildInfo::Kind kind = ChildInfo::Kind::Object)
    {
        m_type.children.push_back({name, kind, typeName, nullptr});
        return *this;
    }

    void container() { m_type.isContainer = true; }

private:
    TypeInfo& m_type;
};

void declarePlayback(Types& types)
{
    Declaration(types, "Playback")
        .text("media")
        .property("endAction", Variant::from(EndAction::Next))
        .readOnly("sourceMode", Variant::from(SourceMode::None))
        .property("audioDevice", Variant::from(AudioPlaybackDevice::Off))
        .property("audioOffset", Variant::from(0.0), Variant::from(-0.25), Variant::from(0.25))
        .property("volume", Variant::from(1.0), Variant::from(0.0), Variant::from(1.0))
        .flag("muted")
        .number("inpoint")
        .number("outpoint")
        .number("duration")
        .number("mediaPosition")
        .number("fps")
        .property("state", Variant::from(SourcePlayState::Stop))
        .readOnly("takeProgress", Variant::from(0.0))
        .readOnly("resourceConstrained", Variant::from(false))
        // Stopped for want of its medium only: it plays as soon as that is there.
        .readOnly("waitsToPlay", Variant::from(false))
        // The content URL of what plays on though the library has it no more; empty otherwise.
        .readOnly("heldMedia", Variant::from(std::string()))
        // The entry after the one that plays in its list, without those that cannot be played; empty where
        // none follows, or no list plays.
        .readOnly("nextMedia", Variant::from(std::string()))
        .methods({"playMedia", "seekMedia", "step", "seekInpoint", "seekOutpoint", "prevMedia", "nextMedia",
                  "selectAudioDevice"});

    Declaration(types, "GpuMapping")
        .text("target")
        .property("defaultScaleMode", Variant::from(ScaleMode::Fit))
        .property("backgroundColor", Variant::from(ColorValue{}))
        .flag("linearTransitions")
        // Its target only stands in for one that this machine does not have, or that never had a display.
        .readOnly("standsIn", Variant::from(false))
        .methods({"selectDefaultScaleMode", "selectBackgroundColor", "selectLinearTransitions"});

    Declaration(types, "Channel")
        .text("name")
        .methods({"take", "configure"})
        .child("preview", "Playback")
        .child("program", "Playback")
        .child("mappings", "GpuMapping", ChildInfo::Kind::Array);
}

void declareOutputs(Types& types)
{
    Declaration(types, "Modeline")
        .text("id")
        .text("label")
        .integer("width")
        .integer("height")
        .flag("standard")
        .flag("interlaced")
        .number("refreshRate");

    Declaration(types, "Output")
        .text("name")
        .integer("width")
        .integer("height")
        .integer("hTotal")
        .integer("vTotal")
        .integer("hSyncPolarity")
        .integer("vSyncPolarity")
        .flag("interlaced")
        .integer("dotClock")
        .integer("bpc")
        .text("colorspace")
        .integer("currentLaneCount")
        .integer("currentLinkRate")
        .integer("reportedLaneCount")
        .integer("reportedLinkRate")
        .flag("connected")
        .flag("error")
        .text("errorText")
        .text("product")
        .text("modelineId")
        .text("preferredModelineId")
        .text("edid")
        .text("edidOverride")
        .text("edidOverrideFilename")
        .flag("maxLinkRate")
        .integer("phyRepeaterCount")
        .text("phyRepeaterMode")
        .text("subconnector")
        .flag("fec")
        .flag("dsc")
        // Until the mode goes back by itself unless somebody keeps it; 0 where none waits for that.
        .readOnly("confirmSeconds", Variant::from(0))
        // Of the real screen that program is shown on; what is counted, of the last minute.
        .readOnly("screenRate", Variant::from(0.0))
        .readOnly("droppedPictures", Variant::from(0))
        .readOnly("latePictures", Variant::from(0))
        .readOnly("decodeLoad", Variant::from(0.0))
        .readOnly("paintLoad", Variant::from(0.0))
        .readOnly("softwareRenderer", Variant::from(false))
        // It shows its number, name and mode for want of a program.
        .readOnly("identified", Variant::from(false))
        .methods({"selectModeline", "setEdidOverride", "resetEdid", "keepMode", "revertMode", "identify"})
        .child("modelines", "Modeline", ChildInfo::Kind::Array);

    Declaration(types, "Gpu").text("name").child("outputs", "Output", ChildInfo::Kind::Array);

    Declaration(types, "System")
        .text("name")
        .readOnly("notice", Variant::from(""))
        .methods({"reboot", "resetOutputConfiguration"})
        .child("gpus", "Gpu", ChildInfo::Kind::Array);
}

void declareSurfaces(Types& types)
{
    // A corner of a surface, in the unit square of the output that it lies on.
    Declaration(types, "Corner").number("x").number("y");

    Declaration(types, "Surface")
        .text("name")
        .text("source")
        .number("x")
        .number("y")
        .property("width", Variant::from(1.0), Variant::from(0.0))
        .property("height", Variant::from(1.0), Variant::from(0.0))
        .number("rotation")
        .property("opacity", Variant::from(1.0), Variant::from(0.0), Variant::from(1.0))
        .flag("locked")
        .child("corners", "Corner", ChildInfo::Kind::Map);
}

// By reference: the types point at each other, so that the map must not move.
void declareAll(Types& types)
{
    Declaration(types, "Object");
    Declaration(types, "ObjectArray").container();
    Declaration(types, "ObjectMap").container();
    declarePlayback(types);
    declareOutputs(types);
    declareSurfaces(types);
    Declaration(types, "ShowConfiguration")
        .flag("autoSave")
        .text("autoStartShow")
        .text("autoStartPlayState")
        .text("autoStartShowList")
        .readOnly("showName", Variant::from("default"))
        .readOnly("showModified", Variant::from(false))
        .methods({"clearShow", "revertShow", "saveShow"});
    Declaration(types, "Device")
        .child("channels", "Channel", ChildInfo::Kind::Array)
        .child("system", "System")
        .child("showConfiguration", "ShowConfiguration")
        .child("surfaces", "Surface", ChildInfo::Kind::Array);
    Declaration(types, "Scene").child("device", "Device");
    for (auto& [name, type] : types) {
        for (ChildInfo& child : type.children)
            child.type = &types.at(child.typeName);
    }
}

} // namespace

const Types& sceneTypes()
{
    static const Types* const types = [] {
        auto* all = new Types;
        declareAll(*all);
        return all;
    }();
    return *types;
}

} // namespace vantrel
