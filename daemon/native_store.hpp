// The device's native datastore: the native roots as plain trees, the edits
// the mapping library produces applied to them, the reads it produces answered
// from them as subtree filters, and the one file that holds them.
#pragma once

#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/standin.hpp"

namespace ocsysmapd {

// One node of the store. A leaf has a value (an empty leaf has the empty one);
// a container or list entry has children and no value.
struct Node {
    std::string tag;
    std::string ns;
    std::string value;
    bool has_value = false;
    std::vector<Node> children;
};

// The native roots, in the order they were first written.
using Forest = std::vector<Node>;

// An edit the store refuses; `tag` is the NETCONF error tag ("data-missing",
// "data-exists", "missing-element") and `path` the native path of the node.
struct EditError : std::runtime_error {
    EditError(std::string tag_, std::string path_, const std::string &message)
        : std::runtime_error(message), tag(std::move(tag_)), path(std::move(path_)) {}
    std::string tag;
    std::string path;
};

// What a node without an operation does: merge its content, or only lead to
// the nodes below that carry one.
enum class DefaultOperation { merge, none };

// A framework tree as a store node; a node without a namespace takes its
// parent's.
Node to_node(const tidl_yfw_datatree &tree, std::string_view parent_ns = {});
// The forest as a framework document in `arena` (a root without a tag).
tidl_yfw_datatree *to_document(yfw::Arena &arena, const Forest &forest);

// A root as it was before an edit (none when the edit made it) and where.
struct RootUndo {
    std::string tag;
    std::string ns;
    std::size_t index;
    std::vector<Node> root; // the root, or nothing
};
using Undo = std::vector<RootUndo>;

// Applies the native edit tree (the roots of a mapped document, each node with
// the operation it carries or inherits) to `store`, and answers how to undo
// it. Throws EditError and then leaves `store` as it was.
Undo apply_edit(Forest &store, std::span<const tidl_yfw_datatree> edit,
                DefaultOperation default_op);
// Puts back what apply_edit changed.
void revert(Forest &store, Undo undo);

// The part of `store` that the native request selects, read as a subtree
// filter: a leaf with a value matches content, one without selects, a node
// with children contains. An empty request selects nothing.
Forest select(const Forest &store, std::span<const tidl_yfw_datatree> request);

// Refuses (std::runtime_error naming `what`) a file that group or others may
// write: the store and the host key hold secrets. No file passes.
void check_private(const std::filesystem::path &path, std::string_view what);

// The store's file. load() reads it (no file is an empty store) and throws
// std::runtime_error when it does not parse or is not private. save()
// replaces it whole through a temporary file, fsync and rename, so the file
// is always the old store or the new one. Both are the owner's alone (0600):
// users' passwords and TACACS keys are in them as given.
class StoreFile {
public:
    explicit StoreFile(std::filesystem::path path) : path_(std::move(path)) {}
    Forest load() const;
    void save(const Forest &forest) const;
    const std::filesystem::path &path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace ocsysmapd
