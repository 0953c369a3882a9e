#pragma once

#include "tarn/json/json.h"
#include "tarn/json/path.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// Kinds of operation; the numbers are part of the interface.
enum class PatchOpType : std::int32_t {
    Add = 0,
    Test = 1,
    Replace = 2,
    Remove = 3,
    Move = 4,
    Copy = 5,
    Get = 6,
    Invoke = 7,
};

/// Why a patch was refused.
enum class PatchError {
    None = 0,
    PathNotFound,  // a path, or the parent of a target, is not in the document
    InvalidIndex,  // an array index that is out of range, has leading zeros or is no number
    TestFailed,    // a test found another value
    InvalidTarget, // a move into its own child, a removal of the root, a scalar where a container is needed
    Unsupported,   // get or invoke, which mean nothing to a document
    Malformed,     // the patch itself is no array of operations
};

struct PatchResult
{
    PatchError error = PatchError::None;
    std::string message; // for the log and for a client: names the operation and the path
    explicit operator bool() const noexcept { return error == PatchError::None; }
};

/// One operation: those of RFC 6902, and "get" and "invoke", by which a client asks the server for a subtree
/// and calls a method. An invoke carries its arguments as the object in value.
struct PatchOp
{
    PatchOpType op = PatchOpType::Add;
    Path path;
    Path from;
    Json value;

    static PatchOp get(std::string_view path);
    static PatchOp invoke(PathView methodPath, const std::map<std::string, Json>& args);
};

/// An ordered list of operations on one document.
class Patch
{
public:
    void append(PatchOp op) { m_ops.push_back(std::move(op)); }
    std::size_t size() const noexcept { return m_ops.size(); }
    bool empty() const noexcept { return m_ops.empty(); }
    const PatchOp& operator[](std::size_t i) const noexcept { return m_ops[i]; }
    auto begin() const noexcept { return m_ops.begin(); }
    auto end() const noexcept { return m_ops.end(); }

    /// The JSON array form of RFC 6902.
    Json toJson() const;
    /// Its text, without the tree in between.
    std::string toString() const;
    static bool fromJson(const Json& json, Patch& out, std::string* error = nullptr);
    /// Strict: text that is no array of known operations gives an empty patch and false.
    static bool parseString(std::string_view text, Patch& out, std::string* error = nullptr);

    /// Appends to out what turns from into to. Costs what differs: equal nodes are passed over unread.
    static void diff(const Json& from, const Json& to, Patch& out);
    /// Both directions in one walk.
    static void diff(const Json& from, const Json& to, Patch& redo, Patch& undo);

    /// All operations or none: on failure the document is as it was.
    PatchResult apply(Json& document) const;

private:
    std::vector<PatchOp> m_ops;
};

} // namespace vantrel
