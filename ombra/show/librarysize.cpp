#include "ombra/show/librarysize.h"

#include "tarn/json/patch.h"

#include <algorithm>

namespace vantrel::ombra::librarysize {

namespace {

constexpr std::size_t longestNumber = 24;

std::size_t textSize(std::string_view text)
{
    std::size_t size = text.size() + 3; // the quotes and a comma or colon
    for (const char c : text) {
        if (c == '"' || c == '\\')
            size += 1;
        else if (static_cast<unsigned char>(c) < 0x20)
            size += 5; // as \u001f
    }
    return size;
}

/// False when the count has passed the limit.
bool count(const Json& value, std::size_t& size)
{
    if (value.isString())
        size += textSize(value.stringView());
    else if (value.isObject() || value.isArray())
        size += 3;
    else
        size += longestNumber;
    if (size <= limit && value.isObject())
        value.forEachMember([&](std::string_view key, const Json& member) {
            size += textSize(key);
            return count(member, size);
        });
    else if (size <= limit && value.isArray())
        value.forEachItem([&](const Json& item) { return count(item, size); });
    return size <= limit;
}

const Json* valueAt(const Json& document, const Path& path)
{
    const Json* value = &document;
    long long index = 0;
    for (const PathElement& element : path) {
        if (value && value->isArray())
            value = element.parseIndex(&index) ? value->at(static_cast<std::size_t>(index)) : nullptr;
        else if (value)
            value = value->find(element.text());
    }
    return value;
}

} // namespace

std::size_t of(const Json& library)
{
    std::size_t size = 0;
    count(library, size);
    return size;
}

std::size_t after(std::size_t bytes, const Json& from, const Json& to)
{
    Patch difference;
    Patch::diff(from, to, difference);
    std::size_t gone = 0;
    std::size_t come = 0;
    for (const PatchOp& op : difference) {
        const std::size_t key = op.path.empty() ? 0 : textSize(op.path.back().text());
        const Json* old = op.op == PatchOpType::Add ? nullptr : valueAt(from, op.path);
        if (old)
            gone += of(*old) + key;
        if (op.op != PatchOpType::Remove)
            come += of(op.value) + key;
        if (come > 2 * limit)
            break;
    }
    return bytes + come - std::min(gone, bytes + come);
}

} // namespace vantrel::ombra::librarysize
