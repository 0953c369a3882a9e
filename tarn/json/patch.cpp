#include "tarn/json/patch.h"

#include "tarn/json/jsontree.h"
#include "tarn/json/jsonwriter.h"
#include "tarn/json/patchnames.h"

#include <algorithm>
#include <array>

namespace vantrel {

namespace {
constexpr std::array names = {"add", "test", "replace", "remove", "move", "copy", "get", "invoke"};
} // namespace

const char* toStr(PatchOpType type) noexcept
{
    const auto at = static_cast<std::size_t>(type);
    return at < names.size() ? names[at] : "";
}

bool fromStr(std::string_view name, PatchOpType& out) noexcept
{
    const auto found = std::ranges::find(names, name);
    if (found == names.end())
        return false;
    out = static_cast<PatchOpType>(found - names.begin());
    return true;
}

namespace {

bool hasFrom(PatchOpType type) noexcept
{
    return type == PatchOpType::Move || type == PatchOpType::Copy;
}

bool needsValue(PatchOpType type) noexcept
{
    return type == PatchOpType::Add || type == PatchOpType::Replace || type == PatchOpType::Test;
}

bool hasValue(PatchOpType type) noexcept
{
    return needsValue(type) || type == PatchOpType::Invoke;
}

Json toJson(const PatchOp& op)
{
    // In the order of the names, so that each is appended.
    Json json = Json::object();
    if (hasFrom(op.op))
        json.set("from", op.from.toString());
    const std::string_view name = toStr(op.op);
    json.set("op", name.empty() ? Json() : Json(name));
    json.set("path", op.path.toString());
    if (hasValue(op.op))
        json.set("value", op.value);
    return json;
}

void write(JsonWriter& writer, const PatchOp& op)
{
    writer.put('{');
    if (hasFrom(op.op)) {
        writer.put(std::string_view("\"from\":"));
        writer.text(op.from.toString());
        writer.put(',');
    }
    writer.put(std::string_view("\"op\":"));
    const std::string_view name = toStr(op.op);
    writer.value(name.empty() ? Json() : Json(name));
    writer.put(std::string_view(",\"path\":"));
    writer.text(op.path.toString());
    if (hasValue(op.op)) {
        writer.put(std::string_view(",\"value\":"));
        writer.value(op.value);
    }
    writer.put('}');
}

/// Null when all is well, otherwise what is wrong.
const char* fromJson(const Json& json, PatchOp& op)
{
    const Json* const name = json.find("op");
    if (!name || !name->isString() || !fromStr(name->stringView(), op.op))
        return "unknown operation";
    const Json* const path = json.find("path");
    if (!path || !path->isString() || !Path::parse(path->stringView(), op.path))
        return "no valid path";
    const Json* const from = json.find("from");
    if (hasFrom(op.op) && (!from || !from->isString() || !Path::parse(from->stringView(), op.from)))
        return "no valid from";
    const Json* const value = json.find("value");
    if (needsValue(op.op) && !value)
        return "no value";
    if (op.op == PatchOpType::Invoke && value && !value->isObject())
        return "arguments that are no object";
    if (hasValue(op.op))
        op.value = value ? *value : Json::object();
    return nullptr;
}

bool refuse(std::string* error, std::string text)
{
    if (error)
        *error = std::move(text);
    return false;
}

/// Applies operations to one working copy. Functions return what went wrong, or None.
class Application
{
public:
    explicit Application(Json& root)
        : m_root(root)
    {
    }

    PatchError apply(const PatchOp& op)
    {
        switch (op.op) {
        case PatchOpType::Add:
            return deepEnough(op.path, op.value) ? add(op.path, op.value) : PatchError::InvalidTarget;
        case PatchOpType::Test:
            return test(op.path, op.value);
        case PatchOpType::Replace:
            return deepEnough(op.path, op.value) ? replace(op.path, op.value) : PatchError::InvalidTarget;
        case PatchOpType::Remove:
            return remove(op.path);
        case PatchOpType::Move:
            return move(op.from, op.path);
        case PatchOpType::Copy:
            return copy(op.from, op.path);
        case PatchOpType::Get:
        case PatchOpType::Invoke:
            break;
        }
        return PatchError::Unsupported;
    }

private:
    /// One step down from a container, without changing it.
    static PatchError step(const Json& parent, const PathElement& element, const Json*& out)
    {
        if (parent.isObject()) {
            out = parent.find(element.text());
            return out ? PatchError::None : PatchError::PathNotFound;
        }
        if (!parent.isArray())
            return PatchError::InvalidTarget;
        long long index = 0;
        if (!element.parseIndex(&index))
            return PatchError::InvalidIndex;
        out = parent.at(static_cast<std::size_t>(index));
        return out ? PatchError::None : PatchError::InvalidIndex;
    }

    PatchError find(PathView path, const Json*& out) const
    {
        out = &m_root;
        for (const PathElement& element : path) {
            if (const PatchError error = step(*out, element, out); error != PatchError::None)
                return error;
        }
        return PatchError::None;
    }

    /// The value at path, ready for a change in its place.
    PatchError edit(PathView path, Json*& out)
    {
        out = &m_root;
        for (const PathElement& element : path) {
            Json& parent = *out;
            long long index = 0;
            if (parent.isObject()) {
                out = JsonTree::edit(parent, JsonName(element.text()));
                if (!out)
                    return PatchError::PathNotFound;
            } else if (!parent.isArray()) {
                return PatchError::InvalidTarget;
            } else if (element.parseIndex(&index) && static_cast<std::size_t>(index) < parent.size()) {
                out = JsonTree::edit(parent, static_cast<std::size_t>(index));
            } else {
                return PatchError::InvalidIndex;
            }
        }
        return PatchError::None;
    }

    PatchError add(PathView path, const Json& value)
    {
        if (path.empty()) {
            m_root = value;
            return PatchError::None;
        }
        Json* parent = nullptr;
        if (const PatchError error = edit(path.first(path.size() - 1), parent); error != PatchError::None)
            return error;
        const PathElement& last = path.back();
        if (parent->isObject()) {
            parent->set(last.text(), value);
            return PatchError::None;
        }
        if (!parent->isArray())
            return PatchError::InvalidTarget;
        long long index = static_cast<long long>(parent->size());
        if (last.text() != "-" && !last.parseIndex(&index))
            return PatchError::InvalidIndex;
        if (static_cast<std::size_t>(index) > parent->size())
            return PatchError::InvalidIndex;
        parent->insert(static_cast<std::size_t>(index), value);
        return PatchError::None;
    }

    PatchError replace(PathView path, const Json& value)
    {
        Json* place = nullptr;
        const PatchError error = edit(path, place);
        if (error == PatchError::None)
            *place = value;
        return error;
    }

    PatchError remove(PathView path)
    {
        if (path.empty())
            return PatchError::InvalidTarget;
        Json* parent = nullptr;
        if (const PatchError error = edit(path.first(path.size() - 1), parent); error != PatchError::None)
            return error;
        const PathElement& last = path.back();
        if (parent->isObject())
            return parent->erase(last.text()) ? PatchError::None : PatchError::PathNotFound;
        if (!parent->isArray())
            return PatchError::InvalidTarget;
        long long index = 0;
        const bool removed = last.parseIndex(&index) && parent->erase(static_cast<std::size_t>(index));
        return removed ? PatchError::None : PatchError::InvalidIndex;
    }

    PatchError test(PathView path, const Json& value) const
    {
        const Json* there = nullptr;
        if (const PatchError error = find(path, there); error != PatchError::None)
            return error;
        return *there == value ? PatchError::None : PatchError::TestFailed;
    }

    PatchError move(const Path& from, const Path& to)
    {
        const Json* there = nullptr;
        if (const PatchError error = find(from, there); error != PatchError::None)
            return error;
        if (from == to)
            return PatchError::None;
        const auto start = PathView(to).first(std::min(from.size(), to.size())).toPath();
        if (start == from)
            return PatchError::InvalidTarget; // into its own child
        if (!deepEnough(to, *there))
            return PatchError::InvalidTarget;
        const Json value = *there;
        remove(from);
        return add(to, value);
    }

    PatchError copy(const Path& from, const Path& to)
    {
        const Json* there = nullptr;
        if (const PatchError error = find(from, there); error != PatchError::None)
            return error;
        if (!measure(*there, to.size(), &m_copied))
            return PatchError::InvalidTarget;
        const Json value = *there;
        return add(to, value);
    }

    static bool deepEnough(PathView path, const Json& value) { return measure(value, path.size(), nullptr); }

    /// Whether value, depth levels below the root, stays within the depth that can be read back; counts its
    /// values. A copy is one pointer here but a full text to whoever reads the document: thirty copies of a
    /// document into itself would be a thousand million values, so their number has an end.
    static bool measure(const Json& value, std::size_t depth, std::size_t* copied)
    {
        constexpr std::size_t mostCopied = 20'000'000;
        if (copied && (*copied += 1 + value.size()) > mostCopied)
            return false;
        if (!value.isObject() && !value.isArray())
            return depth <= std::size_t(Json::maxDepth);
        if (depth >= std::size_t(Json::maxDepth))
            return false;
        bool good = true;
        const auto below = [&](const Json& item) {
            if (item.isObject() || item.isArray())
                good = measure(item, depth + 1, copied);
            return good;
        };
        if (value.isObject())
            value.forEachMember([&](std::string_view, const Json& item) { return below(item); });
        else
            value.forEachItem(below);
        return good;
    }

    Json& m_root;
    std::size_t m_copied = 0; // values, by all copies of the patch
};

const char* describe(PatchError error) noexcept
{
    switch (error) {
    case PatchError::None:
        break;
    case PatchError::PathNotFound:
        return "path not found";
    case PatchError::InvalidIndex:
        return "invalid array index";
    case PatchError::TestFailed:
        return "the value is another one";
    case PatchError::InvalidTarget:
        return "invalid target";
    case PatchError::Unsupported:
        return "not an operation on a document";
    case PatchError::Malformed:
        return "malformed";
    }
    return "";
}

std::string describe(std::size_t index, const PatchOp& op, PatchError error)
{
    const auto type = static_cast<std::size_t>(op.op);
    std::string text = "operation " + std::to_string(index) + ": ";
    text += type < names.size() ? names[type] : std::string_view("?");
    text += " \"" + op.path.toString() + "\"";
    if (hasFrom(op.op))
        text += " from \"" + op.from.toString() + "\"";
    return text + ": " + describe(error);
}

} // namespace

PatchOp PatchOp::get(std::string_view path)
{
    PatchOp op;
    op.op = PatchOpType::Get;
    op.path = Path(path);
    return op;
}

PatchOp PatchOp::invoke(PathView methodPath, const std::map<std::string, Json>& args)
{
    PatchOp op;
    op.op = PatchOpType::Invoke;
    op.path = methodPath.toPath();
    op.value = Json::object();
    for (const auto& [name, value] : args)
        op.value.set(name, value);
    return op;
}

Json Patch::toJson() const
{
    Json json = Json::array();
    for (const PatchOp& op : m_ops)
        json.append(vantrel::toJson(op));
    return json;
}

std::string Patch::toString() const
{
    JsonWriter writer(false);
    writer.put('[');
    for (std::size_t i = 0; i < m_ops.size(); ++i) {
        if (i > 0)
            writer.put(',');
        write(writer, m_ops[i]);
    }
    writer.put(']');
    return writer.take();
}

bool Patch::fromJson(const Json& json, Patch& out, std::string* error)
{
    out.m_ops.clear();
    if (!json.isArray())
        return refuse(error, "a patch must be an array");
    Patch patch;
    patch.m_ops.reserve(json.size());
    const char* fault = nullptr;
    json.forEachItem([&](const Json& item) {
        PatchOp op;
        fault = item.isObject() ? vantrel::fromJson(item, op) : "no object";
        if (!fault)
            patch.m_ops.push_back(std::move(op));
        return !fault;
    });
    if (fault)
        return refuse(error, "operation " + std::to_string(patch.size()) + ": " + fault);
    out = std::move(patch);
    return true;
}

bool Patch::parseString(std::string_view text, Patch& out, std::string* error)
{
    Json json;
    out.m_ops.clear();
    return Json::parseString(text, json, error) && fromJson(json, out, error);
}

PatchResult Patch::apply(Json& document) const
{
    Json work = document;
    Application application(work);
    for (std::size_t i = 0; i < m_ops.size(); ++i) {
        if (const PatchError error = application.apply(m_ops[i]); error != PatchError::None)
            return {error, describe(i, m_ops[i], error)};
    }
    document = std::move(work);
    return {};
}

} // namespace vantrel
