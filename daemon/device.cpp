// A request as the device runs it: through the OpenConfig root walker to a
// native tree, against the store, and back through each native root's walker.
#include "device.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>
#include <utility>
#include <vector>

#include <libyang/libyang.h>

#include "io/io_detail.hpp"
#include "oper/oper_state.hpp"
#include "registered_trees.hpp"
#include "statuses.hpp"
#include "ymap_namespaces.h"

namespace ocsysmapd {
namespace {

using ocsysmap::detail::children_of;
namespace yang = ocsysmap::yang;

constexpr std::string_view kOcSystemNs = NS_OPENCONFIG_SYSTEM;
constexpr std::string_view kOcGrpcNs = NS_OPENCONFIG_SYSTEM_GRPC;
constexpr std::string_view kGrpcServers = "grpc-servers";

Failure mapping_failure(cerrno status, yfw::Session &session) {
    Failure f;
    if (const ocsysmap::StatusRow *row = ocsysmap::status_row(status)) {
        f.tag = row->error_tag;
        f.app_tag = row->name;
        f.message = row->text;
    } else {
        f.tag = "operation-failed";
        f.app_tag = ocsysmap::status_hex(status);
        f.message = "the mapping failed";
    }
    if (const std::string_view said = ocsysmap::library_message(session); !said.empty()) {
        f.message = said;
    }
    const yfw_map_state *state = session.state();
    if (state->error_tag != nullptr) {
        f.element = state->error_tag;
    }
    f.path = session.error_path();
    return f;
}

// What the models refuse never reaches the walkers.
Failure model_failure(const yang::YangError &e) {
    if (e.diagnostics.empty()) {
        return {"invalid-value", {}, {}, {}, e.what()};
    }
    const yang::Diagnostic &first = e.diagnostics.front();
    if (!first.unknown_element.empty()) {
        return {"unknown-element", {}, first.unknown_element, first.path, first.message};
    }
    return {"invalid-value", {}, {}, first.path, first.message};
}

// A native root the device holds but no registered tree maps back: the
// registrations and the store disagree, which the client hears of.
Failure unmapped_root(const Node &root) {
    return {"operation-failed",
            {},
            root.tag,
            {},
            "no registered tree maps the native root \"" + root.tag + "\" in namespace \"" +
                root.ns + "\""};
}

// default-operation replace: the root is replaced, and with it the gRPC
// servers, which the root walker's replace leaves to what the client names.
void replace_whole(yfw::Arena &arena, tidl_yfw_datatree &root) {
    if (!root.present_operation) {
        yfw_dt_set_operation(&root, OP_REPLACE);
    }
    const bool named = std::any_of(children_of(root).begin(), children_of(root).end(),
                                   [](const tidl_yfw_datatree &c) {
                                       return c.tag != nullptr && c.tag == kGrpcServers &&
                                              c.namespace_ != nullptr && c.namespace_ == kOcGrpcNs;
                                   });
    if (!named) {
        tidl_yfw_datatree *grpc = arena.append_child(&root);
        grpc->tag = arena.text(kGrpcServers);
        grpc->namespace_ = arena.text(kOcGrpcNs);
        yfw_dt_set_operation(grpc, OP_REPLACE);
    }
}

std::string_view text_or_empty(const char *text) {
    return text != nullptr ? text : "";
}

bool is_replace(const tidl_yfw_datatree &n) {
    return n.present_operation && n.operation == OP_REPLACE;
}

std::span<tidl_yfw_datatree> children_to_change(tidl_yfw_datatree &n) {
    if (!n.present_subtrees || n.subtrees == nullptr) {
        return {};
    }
    return {n.subtrees, n.subtree_count};
}

// Every replace at or below `n` becomes a merge.
void as_merge(tidl_yfw_datatree &n) {
    if (is_replace(n)) {
        yfw_dt_set_operation(&n, OP_MERGE);
    }
    for (tidl_yfw_datatree &c : children_to_change(n)) {
        as_merge(c);
    }
}

// `from` without its content under `parent`: its tag, namespace and, for a
// list entry (`path` is the list's), its keys.
tidl_yfw_datatree *bare_copy(yfw::Arena &arena, tidl_yfw_datatree *parent,
                             const tidl_yfw_datatree &from, const std::string &path) {
    tidl_yfw_datatree *copy = parent != nullptr ? arena.append_child(parent) : arena.new_root();
    copy->tag = from.tag;
    copy->namespace_ = from.namespace_;
    for (std::string_view key : yfw::list_keys(path)) {
        for (const tidl_yfw_datatree &c : children_of(from)) {
            if (c.tag != nullptr && c.tag == key) {
                tidl_yfw_datatree *k = arena.append_child(copy);
                *k = tidl_yfw_datatree{};
                k->tag = c.tag;
                k->namespace_ = c.namespace_;
                k->value = c.value;
                k->present_value = c.present_value;
            }
        }
    }
    return copy;
}

// A replace of a leaf or container runs as two edits, each mapped on its
// own: the removal of what it replaces, then the merge of the new content.
// Mapped as one, the walkers' two passes meet in one native tree, where the
// removal of all of a list's entries and the entry the merge names fall into
// one node that says less than the client did. A list entry's two passes
// name the entry alike, and stay together.
bool splits(const tidl_yfw_datatree &n, const std::string &path) {
    if (is_replace(n)) {
        return yfw::list_keys(path).empty();
    }
    return std::any_of(children_of(n).begin(), children_of(n).end(),
                       [&](const tidl_yfw_datatree &c) {
                           return c.tag != nullptr && splits(c, path + "/" + c.tag);
                       });
}

// Under `mirror`, the nodes below `node` whose replace splits, bare and as
// removals, with the nodes that lead to them; in `node` those become merges.
void split_replace(yfw::Arena &arena, tidl_yfw_datatree &node, tidl_yfw_datatree &mirror,
                   const std::string &path) {
    for (tidl_yfw_datatree &c : children_to_change(node)) {
        if (c.tag == nullptr || !splits(c, path + "/" + c.tag)) {
            continue;
        }
        const std::string below = path + "/" + c.tag;
        tidl_yfw_datatree *m = bare_copy(arena, &mirror, c, below);
        if (is_replace(c)) {
            yfw_dt_set_operation(m, OP_REMOVE);
            as_merge(c);
        } else {
            split_replace(arena, c, *m, below);
        }
    }
}

// The removal half of the replaces in `root`, mapped into `removals`.
std::optional<Failure> map_removals(const yfw_map_reg_mod_t &tree, yfw::Session &removals,
                                    tidl_yfw_datatree &root) {
    std::vector<tidl_yfw_datatree *> halves;
    const std::string path = std::string("/").append(text_or_empty(root.tag));
    if (is_replace(root)) {
        halves.push_back(bare_copy(removals.arena(), nullptr, root, path));
        yfw_dt_set_operation(halves.back(), OP_REMOVE);
        yfw_dt_set_operation(&root, OP_MERGE);
    }
    tidl_yfw_datatree *mirror = bare_copy(removals.arena(), nullptr, root, path);
    split_replace(removals.arena(), root, *mirror, path);
    if (!children_of(*mirror).empty()) {
        halves.push_back(mirror);
    }
    for (tidl_yfw_datatree *half : halves) {
        removals.note_input(half);
        const cerrno status = tree.oc_to_native(removals.ctx(), half, removals.output());
        if (status != YFW_SUCCESS) {
            return mapping_failure(status, removals);
        }
    }
    return std::nullopt;
}

// Parses OpenConfig roots and runs each through the OpenConfig root walker;
// the native tree is then the session's output. In an edit, the removal half
// of its replaces goes to `removals` first.
std::optional<Failure> to_native(std::span<const yfw_map_reg_mod_t> trees,
                                 const yang::Models &models, yfw::Session &session,
                                 std::string_view text, bool read_kind,
                                 std::vector<tidl_yfw_datatree *> &roots, const EditOptions *edit,
                                 const std::function<void(lyd_node *)> &prepare = {},
                                 yfw::Session *removals = nullptr) {
    try {
        const yang::Data data =
            yang::parse(models, text, yang::Format::xml,
                        read_kind ? yang::Content::filter : yang::Content::edit);
        if (data && prepare) {
            prepare(data.get());
        }
        if (data) {
            roots = yang::from_lyd(session.arena(), data.get(), read_kind);
        }
    } catch (const yang::YangError &e) {
        return model_failure(e);
    }
    if (edit != nullptr && edit->default_operation == EditDefault::replace && roots.empty()) {
        // Nothing given replaces everything with nothing.
        tidl_yfw_datatree *root = session.arena().new_root();
        root->tag = session.arena().text(trees.front().oc_root);
        root->namespace_ = session.arena().text(trees.front().oc_namespace);
        roots.push_back(root);
    }
    for (tidl_yfw_datatree *root : roots) {
        const ocsysmap::RootMapping mapping = ocsysmap::mapping_of(trees, *root);
        if (!mapping || !mapping.from_openconfig) {
            // Nothing of another module lives on this device: a read selects
            // nothing there, an edit is refused.
            if (read_kind) {
                continue;
            }
            return Failure{"unknown-element",
                           {},
                           root->tag != nullptr ? root->tag : "",
                           {},
                           "only the OpenConfig system root is configured here"};
        }
        if (edit != nullptr && edit->default_operation == EditDefault::replace) {
            replace_whole(session.arena(), *root);
        }
        if (removals != nullptr &&
            splits(*root, std::string("/").append(text_or_empty(root->tag)))) {
            if (auto failed = map_removals(*mapping.tree, *removals, *root)) {
                return failed;
            }
        }
        session.note_input(root);
        const cerrno status = mapping.walker(session.ctx(), root, session.output());
        if (status != YFW_SUCCESS) {
            return mapping_failure(status, session);
        }
    }
    return std::nullopt;
}

bool takes_identity(const lysc_node *schema) {
    if (schema == nullptr || (schema->nodetype & LYD_NODE_TERM) == 0) {
        return false;
    }
    const lysc_type *type = reinterpret_cast<const lysc_node_leaf *>(schema)->type;
    if (type->basetype != LY_TYPE_UNION) {
        return false;
    }
    const auto *u = reinterpret_cast<const lysc_type_union *>(type);
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(u->types, i) {
        if (u->types[i]->basetype == LY_TYPE_IDENT) {
            return true;
        }
    }
    return false;
}

// The module of "module:IDENTITY" when it defines that identity.
const lys_module *identity_module(const ly_ctx *ctx, std::string_view value) {
    const std::size_t colon = value.find(':');
    if (colon == std::string_view::npos) {
        return nullptr;
    }
    const lys_module *m =
        ly_ctx_get_module_implemented(ctx, std::string(value.substr(0, colon)).c_str());
    if (m == nullptr) {
        return nullptr;
    }
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(m->identities, i) {
        if (value.substr(colon + 1) == m->identities[i].name) {
            return m;
        }
    }
    return nullptr;
}

// A union that takes a string before an identity keeps "module:IDENTITY" as
// text, which prints without a declaration of its prefix: the leaf declares
// it, so that a client reads the identity it wrote.
void declare_identity_prefixes(const lyd_node *tree, std::string &xml) {
    std::set<std::pair<std::string, std::string>> done;
    for (const lyd_node *root = tree; root != nullptr; root = root->next) {
        const lyd_node *node = nullptr;
        LYD_TREE_DFS_BEGIN(root, node) {
            if (takes_identity(node->schema)) {
                const std::string value = lyd_get_value(node);
                const lys_module *m = identity_module(LYD_CTX(node), value);
                if (m != nullptr && done.emplace(node->schema->name, value).second) {
                    const std::string end = ">" + value + "</" + node->schema->name + ">";
                    const std::string declaration =
                        std::string(" xmlns:") + m->name + "=\"" + m->ns + "\"";
                    for (std::size_t at = xml.find(end); at != std::string::npos;
                         at = xml.find(end, at + declaration.size() + end.size())) {
                        xml.insert(at, declaration);
                    }
                }
            }
            LYD_TREE_DFS_END(root, node);
        }
    }
}

// The OpenConfig roots of an answer as the models print them.
std::optional<Failure> answer_xml(const yang::Models &models, const tidl_yfw_datatree &document,
                                  std::string &out) {
    try {
        const yang::Data typed = yang::to_lyd(models, document);
        out = yang::print(typed.get(), yang::Format::xml);
        declare_identity_prefixes(typed.get(), out);
    } catch (const yang::YangError &e) {
        Failure f = model_failure(e);
        f.tag = "operation-failed";
        return f;
    }
    return std::nullopt;
}

// OpenConfig leaves on whose value the native side keys a list: a new entry
// that leaves one out takes the models' default.
constexpr std::string_view kKeyedDefaults[] = {
    "/openconfig-system:system/ntp/servers/server/config/association-type",
};

// The edit operation of a node: its own, an enclosing node's, else the default.
std::string_view edit_operation(const lyd_node *node, EditDefault fallback) {
    for (const lyd_node *n = node; n != nullptr; n = lyd_parent(n)) {
        if (const lyd_meta *op = lyd_find_meta(n->meta, nullptr, "ietf-netconf:operation")) {
            return lyd_get_meta_value(op);
        }
    }
    return fallback == EditDefault::replace ? "replace"
           : fallback == EditDefault::none  ? "none"
                                            : "merge";
}

} // namespace

Device::Device(std::span<const yfw_map_reg_mod_t> trees, const yang::Models &models, StoreFile file)
    : trees_(trees), models_(models), file_(std::move(file)), store_(file_.load()) {
    // A device starts with a store on disk, if only an empty one.
    std::error_code ec;
    if (!std::filesystem::exists(file_.path(), ec)) {
        file_.save(store_);
    }
}

bool Device::holds(const lyd_node *entry) {
    lyd_node *copy = nullptr;
    if (lyd_dup_single(entry, nullptr, LYD_DUP_WITH_PARENTS | LYD_DUP_NO_META, &copy) !=
        LY_SUCCESS) {
        return false;
    }
    while (copy->parent != nullptr) {
        copy = lyd_parent(copy);
    }
    char *text = nullptr;
    lyd_print_mem(&text, copy, LYD_XML, LYD_PRINT_SHRINK);
    lyd_free_all(copy);
    const std::string filter = "<filter xmlns=\"" + std::string(ocsysmap::detail::kNetconfNs) +
                               "\">" + (text != nullptr ? text : "") + "</filter>";
    std::free(text);
    std::string answer;
    return !read(KIND_GET_CONFIG, filter, answer) && !answer.empty();
}

void Device::add_key_defaults(lyd_node *tree, EditDefault default_op) {
    // A node the models could not place (text beside elements, say) is left to
    // the walkers to refuse: libyang's XPath crashes on such a tree. An empty
    // leaf under a delete is opaque too, and harmless.
    for (const lyd_node *root = tree; root != nullptr; root = root->next) {
        const lyd_node *node = nullptr;
        LYD_TREE_DFS_BEGIN(root, node) {
            if (node->schema == nullptr &&
                (lyd_child(node) != nullptr || node->parent == nullptr ||
                 lyd_parent(node)->schema == nullptr ||
                 *reinterpret_cast<const lyd_node_opaq *>(node)->value != '\0')) {
                return;
            }
            LYD_TREE_DFS_END(root, node);
        }
    }
    for (const std::string_view path : kKeyedDefaults) {
        const std::size_t leaf_at = path.rfind('/', path.rfind('/') - 1);
        const std::string entries(path.substr(0, leaf_at));
        const std::string leaf(path.substr(leaf_at + 1));
        const lysc_node *schema =
            lys_find_path(models_.context(), nullptr, std::string(path).c_str(), 0);
        const lyd_value *fallback =
            schema != nullptr ? reinterpret_cast<const lysc_node_leaf *>(schema)->dflt : nullptr;
        ly_set *set = nullptr;
        if (fallback == nullptr || lyd_find_xpath(tree, entries.c_str(), &set) != LY_SUCCESS) {
            continue;
        }
        for (uint32_t i = 0; i < set->count; ++i) {
            lyd_node *entry = set->dnodes[i];
            lyd_node *have = nullptr;
            if (lyd_find_path(entry, leaf.c_str(), 0, &have) == LY_SUCCESS) {
                continue;
            }
            lyd_node *parent = nullptr;
            lyd_find_path(entry, leaf.substr(0, leaf.rfind('/')).c_str(), 0, &parent);
            const std::string_view op =
                edit_operation(parent != nullptr ? parent : entry, default_op);
            if ((op == "merge" && !holds(entry)) || op == "replace" || op == "create") {
                lyd_new_path(entry, nullptr, leaf.c_str(),
                             lyd_value_get_canonical(models_.context(), fallback), 0, nullptr);
            }
        }
        ly_set_free(set, nullptr);
    }
}

std::optional<Failure> Device::edit(std::string_view config_xml, EditOptions options) {
    yfw::Session removals(KIND_EDIT_A);
    yfw::Session session(KIND_EDIT_A);
    std::vector<tidl_yfw_datatree *> roots;
    const auto defaults = [&](lyd_node *tree) {
        add_key_defaults(tree, options.default_operation);
    };
    if (auto failed = to_native(trees_, models_, session, config_xml, false, roots, &options,
                                defaults, &removals)) {
        return failed;
    }
    // The removals of the replaces first, then the edit; undone in reverse.
    Undo removed;
    Undo undo;
    const auto undo_all = [&] {
        revert(store_, std::move(undo));
        revert(store_, std::move(removed));
    };
    try {
        removed = apply_edit(store_, children_of(*removals.output()), DefaultOperation::merge);
        undo = apply_edit(store_, children_of(*session.output()),
                          options.default_operation == EditDefault::none ? DefaultOperation::none
                                                                         : DefaultOperation::merge);
    } catch (const EditError &e) {
        revert(store_, std::move(removed));
        return Failure{e.tag, {}, {}, e.path, e.what()};
    }
    if (options.test_only) {
        undo_all();
        return std::nullopt;
    }
    try {
        file_.save(store_);
    } catch (const std::exception &e) {
        undo_all();
        return Failure{"operation-failed", {}, {}, {}, e.what()};
    }
    return std::nullopt;
}

std::optional<Failure> Device::read(uint32_t kind, std::optional<std::string_view> filter_xml,
                                    std::string &data_xml) {
    static const std::string whole_system = "<system xmlns=\"" + std::string(kOcSystemNs) + "\"/>";
    const bool filtered = filter_xml && !filter_xml->empty();
    // Made before this request's sessions: the source reads the configuration.
    Forest source = kind == KIND_GET && operational_ ? operational_() : Forest{};
    const bool with_operational = !source.empty();
    source.insert(source.end(), store_.begin(), store_.end());
    yfw::Session request(kind);
    std::vector<tidl_yfw_datatree *> filter_roots;
    if (auto failed = to_native(trees_, models_, request,
                                filtered ? *filter_xml : std::string_view(whole_system), true,
                                filter_roots, nullptr)) {
        return failed;
    }
    Forest answer = select(source, children_of(*request.output()));
    if (with_operational) {
        oper::end_dns_walk(answer);
    }

    yfw::Session reply(kind);
    tidl_yfw_datatree *document = to_document(reply.arena(), answer);
    for (std::size_t i = 0; i < answer.size(); ++i) {
        const ocsysmap::RootMapping mapping =
            ocsysmap::mapping_of(trees_, answer[i].tag, answer[i].ns);
        if (!mapping || mapping.from_openconfig) {
            return unmapped_root(answer[i]);
        }
        tidl_yfw_datatree *root = &document->subtrees[i];
        reply.note_input(root);
        const cerrno status = mapping.walker(reply.ctx(), root, reply.output());
        if (status != YFW_SUCCESS) {
            return mapping_failure(status, reply);
        }
    }
    if (!filtered) {
        return answer_xml(models_, *reply.output(), data_xml);
    }
    // The native answer may hold more than the client named (a configuration
    // leaf's state twin, say); the client's own filter has the last word.
    Forest mapped;
    for (const tidl_yfw_datatree &root : children_of(*reply.output())) {
        mapped.push_back(to_node(root));
    }
    std::vector<tidl_yfw_datatree> filters;
    for (const tidl_yfw_datatree *root : filter_roots) {
        filters.push_back(*root);
    }
    yfw::Arena arena;
    return answer_xml(models_, *to_document(arena, select(mapped, filters)), data_xml);
}

} // namespace ocsysmapd
