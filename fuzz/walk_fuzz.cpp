// A request built from the bytes: its kind, a root walker of the registered
// trees and an input tree whose tags, namespaces and values come from the
// names the library's own tables hold (and a few they do not), mostly as the
// walker rows nest them, so that most inputs get past the root tests into the
// mappers, augments included. Whatever the walk returns, it must return a
// known status and leave the context, the framework's bookkeeping and the
// named allocations as it found them.
//
// Input layout, one byte each, reads past the end give 0:
//   header   bits 0-2 request kind, 3 oper_only, 4 debug log, 5 ring trace,
//            6 print_data after the walk, 7 a system database whose
//            running gRPC server is named "router1"
//   root     a registered root, either direction (schema_words.hpp's order)
//   node     tag (0 at the root: the walker's own root tag; 0xff: none;
//            below 0xc0 a child of the parent's walker row; else two more
//            bytes pick any name of the tables, or from 0xf8 a strange one),
//            namespace (below 0xa0 that of the node's walker row, else any
//            of the tables' or none), flags (bits 0-2 operation, 3-4 value,
//            5 xpath error mark, 6+7 children announced but missing),
//            [value], [bogus count], child count (mod 5), then the children,
//            depth first
//   Set WALK_FUZZ_VERBOSE to print the input and output of each run.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ocsysmap_io.hpp"
#include "schema_words.hpp"
#include "statuses.hpp"
#include "yfw/standin.hpp"
#include "yfw_map.h"
#include "ymap_ocsystem.h"

namespace {

constexpr std::size_t kMaxDepth = 8;
constexpr std::size_t kMaxNodes = 200;
constexpr uint32_t kMaxChildren = 4;

// 3 is no kind of the contract: a walker must still leave a known status.
constexpr std::array<uint32_t, 6> kKinds = {KIND_GET_CONFIG, KIND_GET,    KIND_EDIT_A,
                                            KIND_EDIT_B,     KIND_EDIT_C, 3};

// Tags no table names, for the walkers' refusals; every other tag comes from
// the library's own rows (schema_words.hpp).
constexpr auto kStrangeTags = std::to_array<std::string_view>({
    "unknown",
    "x",
    "",
    "config-x",
    "Config",
    "system ",
    "a:system",
    "state/index",
    "cpus[index='0']",
    "-",
});

constexpr auto kValues = std::to_array<std::string_view>({
    "0",
    "1",
    "7",
    "-1",
    "4294967296",
    "router1",
    "host name",
    "login",
    "motd",
    "UTC",
    "Europe/Paris",
    "America",
    "MINOR",
    "CRITICAL",
    "equipment-failure",
    "NONE",
    "INFORMATIONAL",
    "info",
    "disable",
    "192.0.2.1",
    "::ffff:192.0.2.1",
    "65536",
    "true",
    "a'b",
    "a\"b",
    "/system",
    "cpu[0]",
    "x:y",
    "  ",
    "\xc3\xa9t\xc3\xa9",
    "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef",
    "2001:db8::1",
    "DEFAULT",
});

class Bytes {
public:
    explicit Bytes(std::span<const uint8_t> data) : data_(data) {}
    uint8_t next() { return pos_ < data_.size() ? data_[pos_++] : 0; }

private:
    std::span<const uint8_t> data_;
    std::size_t pos_ = 0;
};

using fuzzwords::Pick;
using fuzzwords::Root;

const Root &pick_root(uint8_t selector) {
    const auto &roots = fuzzwords::schema().roots;
    return roots[selector % roots.size()];
}

class TreeBuilder {
public:
    TreeBuilder(Bytes &bytes, yfw::Arena &arena, const Root &root)
        : bytes_(bytes), arena_(arena), root_(root) {}

    tidl_yfw_datatree *build() {
        tidl_yfw_datatree *root = arena_.new_root();
        ++nodes_;
        fill(root, root_.ns.c_str(), root_.row, 0);
        return root;
    }

private:
    // A tag below `row`: mostly one of the row's children, else any name the
    // tables hold or none of theirs.
    Pick pick_tag(uint8_t tag, const ymap::WalkerRow *row) {
        const auto &words = fuzzwords::schema();
        const auto &picks = words.picks_of(row);
        if (tag < 0xc0 && !picks.empty()) {
            return picks[tag % picks.size()];
        }
        const std::size_t any = (std::size_t{bytes_.next()} << 8) | bytes_.next();
        if (tag >= 0xf8) {
            return {arena_.text(kStrangeTags[any % kStrangeTags.size()]), nullptr};
        }
        const std::string &name = words.tags[any % words.tags.size()];
        auto it = words.row_by_tag.find(name);
        return {name.c_str(), it != words.row_by_tag.end() ? it->second : nullptr};
    }

    // A value of the hand list, or a fixed key value of the tables.
    static std::string_view value(uint8_t at) {
        const auto &fixed = fuzzwords::schema().values;
        return at < kValues.size() || fixed.empty() ? kValues[at % kValues.size()]
                                                    : fixed[at % fixed.size()];
    }

    // Children are appended one at a time and each is filled before the next
    // append, since an append may move the earlier children of the same parent.
    void fill(tidl_yfw_datatree *node, const char *parent_ns, const ymap::WalkerRow *parent_row,
              std::size_t depth) {
        const uint8_t tag = bytes_.next();
        const ymap::WalkerRow *row = nullptr;
        if (depth == 0 && tag == 0) {
            node->tag = arena_.text(root_.tag);
            row = root_.row;
        } else if (tag != 0xff) {
            const Pick pick = pick_tag(tag, parent_row);
            node->tag = arena_.text(pick.tag);
            row = pick.row;
        }

        // Mostly the namespace of the row that walks the node, as a parsed
        // document has it; else any of the tables', or none.
        const uint8_t ns = bytes_.next();
        const auto &namespaces = fuzzwords::schema().namespaces;
        const char *chosen = row != nullptr && row->ns != nullptr ? row->ns : parent_ns;
        if (ns >= 0xa0) {
            const std::size_t at = (ns - 0xa0u) % (namespaces.size() + 1);
            chosen = at < namespaces.size() ? namespaces[at].c_str() : nullptr;
        }
        node->namespace_ = chosen != nullptr ? arena_.text(chosen) : nullptr;

        const uint8_t flags = bytes_.next();
        switch (flags & 7) {
        case 3:
            yfw_dt_set_operation(node, OP_MERGE);
            break;
        case 4:
            yfw_dt_set_operation(node, OP_REPLACE);
            break;
        case 5:
            yfw_dt_set_operation(node, OP_DELETE);
            break;
        case 6:
            yfw_dt_set_operation(node, OP_REMOVE);
            break;
        default:
            break;
        }
        switch ((flags >> 3) & 3) {
        case 1:
            node->value = arena_.text("");
            node->present_value = 1;
            break;
        case 2:
        case 3:
            node->value = arena_.text(value(bytes_.next()));
            node->present_value = 1;
            break;
        default:
            break;
        }
        if ((flags & 0x20) != 0) {
            node->error_kind = YFW_MAP_ERROR_KIND_XPATH;
            node->present_error_kind = 1;
        }
        if ((flags & 0xc0) == 0xc0) {
            // Children announced but not there: the framework refuses such a node.
            node->present_subtrees = 1;
            node->subtrees = nullptr;
            node->subtree_count = 1 + bytes_.next() % 3;
            return;
        }

        const uint32_t count = bytes_.next() % (kMaxChildren + 1);
        if (depth >= kMaxDepth) {
            return;
        }
        for (uint32_t i = 0; i < count && nodes_ < kMaxNodes; ++i) {
            tidl_yfw_datatree *child = arena_.append_child(node);
            ++nodes_;
            fill(child, node->namespace_, row, depth + 1);
        }
    }

    Bytes &bytes_;
    yfw::Arena &arena_;
    const Root &root_;
    std::size_t nodes_ = 0;
};

// The bytes that TreeBuilder turns into `tree` (as near as the choices
// allow): how walk_seeds makes seeds of the examples. A node beyond the
// builder's reach (a fifth child, a depth past kMaxDepth, a tag no table
// holds) is left out, a value of no list becomes one of kValues.
class SeedWriter {
public:
    std::string write(const tidl_yfw_datatree &tree, uint32_t kind) {
        const auto &roots = fuzzwords::schema().roots;
        const auto at = std::find_if(roots.begin(), roots.end(), [&](const Root &r) {
            return tree.tag != nullptr && tree.namespace_ != nullptr && r.tag == tree.tag &&
                   r.ns == tree.namespace_;
        });
        if (at == roots.end()) {
            return {};
        }
        const auto k = std::find(kKinds.begin(), kKinds.end(), kind);
        out_ += static_cast<char>(k - kKinds.begin());
        out_ += static_cast<char>(at - roots.begin());
        node(tree, at->ns.c_str(), at->row, 0, true);
        return out_;
    }

private:
    // The tag byte (and the two that may follow) and the row the builder
    // then takes; false when no byte gives the tag.
    bool tag(std::string_view name, const ymap::WalkerRow *parent, const ymap::WalkerRow *&row) {
        const auto &words = fuzzwords::schema();
        const auto &picks = words.picks_of(parent);
        for (std::size_t i = 0; i < picks.size() && i < 0xc0; ++i) {
            if (picks[i].tag == name) {
                out_ += static_cast<char>(i);
                row = picks[i].row;
                return true;
            }
        }
        const auto it = std::find(words.tags.begin(), words.tags.end(), name);
        if (it == words.tags.end()) {
            return false;
        }
        const std::size_t any = static_cast<std::size_t>(it - words.tags.begin());
        out_ += static_cast<char>(0xc0);
        out_ += static_cast<char>(any >> 8);
        out_ += static_cast<char>(any & 0xff);
        const auto found = words.row_by_tag.find(name);
        row = found != words.row_by_tag.end() ? found->second : nullptr;
        return true;
    }

    static bool reachable(const tidl_yfw_datatree &n) {
        const auto &words = fuzzwords::schema();
        return n.tag != nullptr &&
               std::find(words.tags.begin(), words.tags.end(), n.tag) != words.tags.end();
    }

    void node(const tidl_yfw_datatree &n, const char *parent_ns, const ymap::WalkerRow *parent,
              std::size_t depth, bool root) {
        const ymap::WalkerRow *row = parent;
        if (root) {
            out_ += '\0';
        } else {
            (void)tag(n.tag, parent, row);
        }
        const char *ns = n.namespace_ != nullptr ? n.namespace_ : parent_ns;
        const char *natural = row != nullptr && row->ns != nullptr ? row->ns : parent_ns;
        const auto &namespaces = fuzzwords::schema().namespaces;
        const auto named = std::find(namespaces.begin(), namespaces.end(), ns ? ns : "");
        if (ns == nullptr || (natural != nullptr && std::strcmp(ns, natural) == 0) ||
            named == namespaces.end() || named - namespaces.begin() >= 0x60) {
            out_ += '\0';
            ns = natural;
        } else {
            out_ += static_cast<char>(0xa0 + (named - namespaces.begin()));
        }
        uint8_t flags = 0;
        if (n.present_operation) {
            flags = n.operation == OP_MERGE     ? 3
                    : n.operation == OP_REPLACE ? 4
                    : n.operation == OP_DELETE  ? 5
                    : n.operation == OP_REMOVE  ? 6
                                                : 0;
        }
        const bool valued = n.present_value && n.value != nullptr;
        if (valued) {
            flags |= *n.value == '\0' ? 0x08 : 0x10;
        }
        out_ += static_cast<char>(flags);
        if (valued && *n.value != '\0') {
            out_ += static_cast<char>(value_index(n.value));
        }
        std::vector<const tidl_yfw_datatree *> kids;
        for (uint32_t i = 0; i < n.subtree_count && n.subtrees != nullptr; ++i) {
            if (kids.size() < kMaxChildren && depth < kMaxDepth && reachable(n.subtrees[i])) {
                kids.push_back(&n.subtrees[i]);
            }
        }
        out_ += static_cast<char>(kids.size());
        for (const tidl_yfw_datatree *kid : kids) {
            node(*kid, ns, row, depth + 1, false);
        }
    }

    static uint8_t value_index(std::string_view value) {
        if (const auto it = std::find(kValues.begin(), kValues.end(), value); it != kValues.end()) {
            return static_cast<uint8_t>(it - kValues.begin());
        }
        const auto &fixed = fuzzwords::schema().values;
        if (const auto it = std::find(fixed.begin(), fixed.end(), value); it != fixed.end()) {
            for (std::size_t at = kValues.size(); at < 256; ++at) {
                if (at % fixed.size() == static_cast<std::size_t>(it - fixed.begin())) {
                    return static_cast<uint8_t>(at);
                }
            }
        }
        return static_cast<uint8_t>(std::hash<std::string_view>{}(value) % kValues.size());
    }

    std::string out_;
};

void require(bool holds, const char *what) {
    if (!holds) {
        std::fprintf(stderr, "walk_fuzz: broken: %s\n", what);
        std::abort();
    }
}

// A root walker ends with a status of the table, never a skip: walkers turn
// that into success.
bool known_status(cerrno status) {
    return ocsysmap::status_row(status) != nullptr && status != YFW_MAP_SKIP_NODE;
}

void walk_once(Bytes &bytes) {
    const uint8_t header = bytes.next();
    const uint32_t kind = kKinds[(header & 7) % kKinds.size()];
    const Root root = pick_root(bytes.next());

    yfw::sysdb::clear();
    if ((header & 0x80) != 0) {
        yfw::sysdb::set_present(true);
        yfw::sysdb::set_item("/cfg/gl/ems/ord_A/grpc/running", "");
        yfw::sysdb::set_item("/cfg/gl/ems/ord_A/grpc/name", "router1");
    }
    yfw::Session session(kind, (header & 0x08) != 0);
    session.set_debug_log((header & 0x10) != 0);
    session.set_ring_trace((header & 0x20) != 0);
    tidl_yfw_datatree *input = TreeBuilder(bytes, session.arena(), root).build();
    session.note_input(input);

    const cerrno status = root.walker(session.ctx(), input, session.output());

    if (std::getenv("WALK_FUZZ_VERBOSE") != nullptr) {
        std::fprintf(stderr, "walk_fuzz: kind %u oper_only %d status 0x%x hierarchy %zu\n", kind,
                     (header & 0x08) != 0 ? 1 : 0, status, session.hierarchy_depth());
        const std::string in = ocsysmap::to_paths(*ocsysmap::document_of(
            session.arena(), std::span<tidl_yfw_datatree *const>(&input, 1)));
        const std::string out = ocsysmap::to_paths(*session.output());
        std::fprintf(stderr, "-- input\n%s-- output\n%s", in.c_str(), out.c_str());
    }
    require(known_status(status), "status is not a named status");
    const yfw_map_state *state = session.state();
    require(state->walk_all == 0, "walk_all != 0");
    require(state->walk_suppress == YFW_MAP_SUPPRESS_NONE, "walk_suppress != 0");
    require((state->state_flags & ~YFW_MAP_STATE_XPATH_ERROR) == 0,
            "state_flags other than the xpath error bit");
    require(state->replace_active == 0, "replace_active != 0");
    require(state->output_list_count == 0, "output_list_count != 0");
    require(session.ctx()->list_index == 0, "ctx->list_index != 0");
    require(session.itree_depth() == 0, "input-tree stack not empty");
    // A failed leafref check leaves the hierarchy for the error path.
    require(session.hierarchy_depth() == 0 || status == YFW_ERR_LIST_KEY,
            "node hierarchy not empty");

    (void)ocsysmap::to_paths(*session.output());
    if ((header & 0x40) != 0) {
        print_data(session.ctx());
    }
}

} // namespace

std::string walk_fuzz_seed(const tidl_yfw_datatree &root, uint32_t kind) {
    return SeedWriter().write(root, kind);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::size_t live_before = yfw::live_allocations();
    {
        Bytes bytes({data, size});
        walk_once(bytes);
    }
    require(yfw::live_allocations() == live_before, "named allocations leaked");
    return 0;
}
