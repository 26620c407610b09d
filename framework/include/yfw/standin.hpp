// The stand-in framework's own C++ interface: what a host (the ocsysmap tool,
// the tests, the benchmarks) uses to build trees, run a request and read back
// what the mapping library left. The library itself sees only the C operations
// of yfw_map.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "yfw_map.h"

namespace yfw {

// ---- Schema registry ------------------------------------------------------

// A YANG module the framework knows: its name and namespace URI.
struct Module {
    std::string_view name;
    std::string_view ns;
};

// Every module of both models, OpenConfig and native.
std::span<const Module> modules();
const Module *module_by_name(std::string_view name);
const Module *module_by_namespace(std::string_view ns);

// Key leaf names, in key order, of the list at a schema path such as
// "/banners/banner" or "/system/dns/servers/server" (module prefixes such as
// "a1:" are ignored). Empty for a path that is not a list.
std::span<const std::string_view> list_keys(std::string_view schema_path);

// ---- Path adds ------------------------------------------------------------
//
// How yfw_map_datatree_add_path_flagged (and the adds built on it) treat an
// output tree:
//  - A list segment goes to the list's current entry. A flagged add of the
//    entry itself starts a new entry when the current one has all its keys;
//    an add of a key with a value picks the entry with that key, and an entry
//    whose keys come to equal an earlier one's merges into it.
//  - While a native list walker has an output list open for an input entry,
//    the innermost list of an add goes to the entry under that input entry's
//    keys, when the list has keys of the same names: the entry formed for it
//    and still without keys, else the one with those keys, found or made. So
//    the leaves of an entry whose key comes last still land in it. An add
//    that sets the key itself decides instead.
//  - On an existing node, an add with a null value leaves the value alone.
//  - Of two adds with a source node that meet on one node, the later sets the
//    operation: the source's own or inherited one, or none when it has none.
//    An add without a source leaves the operation alone.

// ---- Trees ---------------------------------------------------------------

// Owns node arrays and texts. Every array it hands out can grow, and it knows
// the parent of every node in its arrays (for operation inheritance).
class Arena {
public:
    Arena();
    ~Arena();
    Arena(const Arena &) = delete;
    Arena &operator=(const Arena &) = delete;

    // A copy of `text`, alive as long as the arena; equal texts may share storage.
    char *text(std::string_view text);
    // A copy of `text`, alive as long as the arena and shared with nothing:
    // for values, which are mostly met once and not worth a look-up.
    char *copy(std::string_view text);
    // A single zeroed node, the root of a tree.
    tidl_yfw_datatree *new_root();
    // Appends a zeroed child to `parent`, growing its array; raises present_subtrees.
    // Pointers to earlier children of `parent` are invalid afterwards.
    tidl_yfw_datatree *append_child(tidl_yfw_datatree *parent);

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

// Ends every subtree below `node`, which is left without children: for a
// host that reads a large tree once and lets each part go as it is done with
// it. A slab of an arena whose arrays have all gone returns to the system at
// once, not to the memory kept for later arenas.
void release_subtrees(tidl_yfw_datatree *node);

// Hands back to the system the memory that ended arenas keep for the next
// ones: for a host that is done with its trees and about to need much memory
// of another kind. Arenas still alive keep theirs.
void release_kept_memory();

// The nearest enclosing node of `node` in arrays that an arena owns, or null.
const tidl_yfw_datatree *parent_of(const tidl_yfw_datatree *node);
// The node's operation, else the nearest enclosing node's; -1 when none has one.
int32_t effective_operation(const tidl_yfw_datatree *node);

// One path segment as the tool and the error path print it: "tag", with
// "module:" before it when its namespace differs from `parent_ns`, and
// "[key='value']" predicates when `schema_path` (the node's own path) is a list.
std::string describe_segment(const tidl_yfw_datatree &node, std::string_view schema_path,
                             const char *parent_ns);
// The same, appended to `out`.
void append_segment(std::string &out, const tidl_yfw_datatree &node, std::string_view schema_path,
                    const char *parent_ns);

// ---- A request ------------------------------------------------------------

// One mapping run: the context with its state and request, the output document
// root, the trace sinks and the framework's bookkeeping. A root walker is
// called with ctx(), an input root and output().
class Session {
public:
    explicit Session(uint32_t request_kind, bool oper_only = false);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    yfw_map_ctx *ctx();
    yfw_map_state *state();
    yfw_request *request();
    // The output tree: a document root without a tag; module roots are its children.
    tidl_yfw_datatree *output();
    // Where inputs of this session should be built.
    Arena &arena();

    // Records an input root in node_data for print_data (the tool maps several roots).
    void note_input(tidl_yfw_datatree *root);

    // The two sinks, off by default, each switched on its own.
    void set_debug_log(bool on);
    void set_ring_trace(bool on);
    const std::vector<std::string> &debug_log() const;
    const std::vector<std::string> &ring_trace() const;

    // The error path recorded by the last yfw_oc_error_path, empty if none.
    const std::string &error_path() const;
    // What the library's last error line said, empty if it wrote none. Error
    // lines always reach the framework, the debug log only while it is on.
    const std::string &error_line() const;

    // Bookkeeping, for tests.
    std::size_t hierarchy_depth() const;
    std::size_t itree_depth() const;
    std::size_t output_lists_open() const;

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

// ---- Memory layer ---------------------------------------------------------

// Live allocations of yfw_strdup under `label`.
std::size_t live_allocations(std::string_view label = YFW_MAP_ALLOC_LABEL);

// ---- Ring trace -----------------------------------------------------------

// Sequence numbers drawn so far by ret_nc_yfw_trace_index_incr.
uint32_t trace_index_drawn();

// ---- System database ------------------------------------------------------

namespace sysdb {
// The stand-in database. Items are kept by full path, such as
// "/cfg/gl/ems/ord_A/grpc/name"; an item read through a connection is found
// under the bind point followed by the key. An empty value is an item of size
// 0, told apart from a missing one.
void set_item(std::string_view path, std::string_view value);
void erase_item(std::string_view path);
// Whether the database exists on this host: access("/pkg/lib/libsysdb.so",
// R_OK) answers from it, and binds fail while it is absent. Absent at start.
void set_present(bool present);
bool present();
// Whether binding fails although the database is present.
void set_bind_fails(bool fails);
// No items, binding works, and the database is absent.
void clear();
} // namespace sysdb

} // namespace yfw
