// The libyang layer of the tool: see oc_yang.hpp.
#include "oc_yang.hpp"

#include "device_modules.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <ostream>

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libyang/libyang.h>

#include "io/io_detail.hpp"

namespace ocsysmap::yang {
namespace {

constexpr std::string_view kNetconfModule = "ietf-netconf";

// The operation annotation of edits lives in ietf-netconf; libyang adds it to
// any module of that name, so an empty one serves when the real one is not
// found in the search directories.
constexpr const char *kNetconfFallback = R"(module ietf-netconf {
  namespace "urn:ietf:params:xml:ns:netconf:base:1.0";
  prefix nc;
  revision 2011-06-01;
})";

LY_ERR netconf_fallback(const char *name, const char *, const char *submodule, const char *, void *,
                        LYS_INFORMAT *format, const char **text, ly_module_imp_data_free_clb *) {
    if (submodule != nullptr || name != kNetconfModule) {
        return LY_ENOTFOUND;
    }
    *format = LYS_IN_YANG;
    *text = kNetconfFallback;
    return LY_SUCCESS;
}

struct CharFree {
    void operator()(char *text) const noexcept { std::free(text); }
};
using CText = std::unique_ptr<char, CharFree>;

std::string text_of(const char *text) {
    return text != nullptr ? text : "";
}

// The data path of an error location, which libyang may wrap as
// `Data location "/a/b".`.
std::string location(const char *path) {
    constexpr std::string_view kOpen = "Data location \"";
    std::string_view text = path != nullptr ? path : "";
    if (text.starts_with(kOpen)) {
        text.remove_prefix(kOpen.size());
        text = text.substr(0, text.find('"'));
    }
    return std::string(text);
}

// The errors libyang stored since the last clean, then cleans them.
std::vector<Diagnostic> take_errors(const ly_ctx *ctx) {
    std::vector<Diagnostic> found;
    for (const ly_err_item *e = ly_err_first(ctx); e != nullptr; e = e->next) {
        if (e->level == LY_LLERR) {
            found.push_back({location(e->path), text_of(e->msg)});
        }
    }
    ly_err_clean(const_cast<ly_ctx *>(ctx), nullptr);
    return found;
}

// Starts an operation with an empty error store.
void clean_errors(const ly_ctx *ctx) {
    ly_err_clean(const_cast<ly_ctx *>(ctx), nullptr);
}

// One error record for a failure that libyang did not describe.
std::vector<Diagnostic> errors_or(const ly_ctx *ctx, std::string path, std::string message) {
    auto found = take_errors(ctx);
    if (found.empty()) {
        found.push_back({std::move(path), std::move(message)});
    }
    return found;
}

std::string path_of(const lyd_node *node) {
    CText path(lyd_path(node, LYD_PATH_STD, nullptr, 0));
    return text_of(path.get());
}

// ---- Identity values ------------------------------------------------------

const lysc_ident *derived_named(const lysc_ident *base, std::string_view name) {
    LY_ARRAY_COUNT_TYPE i;
    for (i = 0; i < LY_ARRAY_COUNT(base->derived); ++i) {
        const lysc_ident *d = base->derived[i];
        if (d->name == name) {
            return d;
        }
        if (const lysc_ident *deeper = derived_named(d, name)) {
            return deeper;
        }
    }
    return nullptr;
}

// The identity a bare name means for a type, when the type reads it as one:
// an identityref, a leafref to one, or a union in which an identityref comes
// before any string (a string taken first keeps the name as text).
const lysc_ident *identity_for(const lysc_type *type, std::string_view name) {
    switch (type->basetype) {
    case LY_TYPE_IDENT: {
        const auto *idref = reinterpret_cast<const lysc_type_identityref *>(type);
        LY_ARRAY_COUNT_TYPE i;
        for (i = 0; i < LY_ARRAY_COUNT(idref->bases); ++i) {
            if (const lysc_ident *found = derived_named(idref->bases[i], name)) {
                return found;
            }
        }
        return nullptr;
    }
    case LY_TYPE_LEAFREF:
        return identity_for(reinterpret_cast<const lysc_type_leafref *>(type)->realtype, name);
    case LY_TYPE_UNION: {
        const auto *u = reinterpret_cast<const lysc_type_union *>(type);
        LY_ARRAY_COUNT_TYPE i;
        for (i = 0; i < LY_ARRAY_COUNT(u->types); ++i) {
            if (u->types[i]->basetype == LY_TYPE_STRING) {
                return nullptr;
            }
            if (const lysc_ident *found = identity_for(u->types[i], name)) {
                return found;
            }
        }
        return nullptr;
    }
    default:
        return nullptr;
    }
}

// The value in the JSON value form libyang takes when creating nodes, a bare
// identity name with its module added: `value` itself (null as empty), or
// `scratch` holding the longer form.
const char *json_value(const lysc_node *schema, const char *value, std::string &scratch) {
    if (value == nullptr) {
        return "";
    }
    if (std::strchr(value, ':') == nullptr) {
        const auto *leaf = reinterpret_cast<const lysc_node_leaf *>(schema);
        if (const lysc_ident *ident = identity_for(leaf->type, value)) {
            scratch.assign(ident->module->name).append(":").append(value);
            return scratch.c_str();
        }
    }
    return value;
}

std::string json_value(const lysc_node *schema, const std::string &value) {
    std::string scratch;
    return json_value(schema, value.c_str(), scratch);
}

// Whether the value is one of the node's type. A leafref's target is not
// looked for here (libyang says LY_EINCOMPLETE).
bool value_fits(const ly_ctx *ctx, const lysc_node *schema, std::string_view value) {
    const LY_ERR rc =
        lyd_value_validate(ctx, schema, value.data(), value.size(), nullptr, nullptr, nullptr);
    return rc == LY_SUCCESS || rc == LY_EINCOMPLETE;
}

// ---- Framework trees into typed data --------------------------------------

// Where a node goes, spelt out only for a complaint.
struct Where {
    const lyd_node *parent;
    std::string_view tag;
    std::string str() const {
        return (parent != nullptr ? path_of(parent) : std::string()) + "/" + std::string(tag);
    }
};

class DataBuilder {
public:
    // `let_go`: the builder's caller handed over a tree it may empty as it goes.
    DataBuilder(const ly_ctx *ctx, bool let_go) : ctx_(ctx), let_go_(let_go) {}

    // Adds one framework node under `parent` (null: a top-level sibling of `first`).
    void add(lyd_node *parent, const lysc_node *parent_schema, const tidl_yfw_datatree &node,
             Data &first) {
        const Where where{parent, node.tag != nullptr ? node.tag : ""};
        const lys_module *module = module_of(node, parent_schema);
        const lysc_node *schema = module != nullptr && node.tag != nullptr
                                      ? lys_find_child(parent_schema, module, node.tag, 0, 0, 0)
                                      : nullptr;
        if (schema == nullptr) {
            found_.push_back(
                {where.str(),
                 "no such node in the models (namespace " + text_of(node.namespace_) + ")",
                 text_of(node.tag)});
            return;
        }
        lyd_node *made = create(parent != nullptr ? lyd_child(parent) : first.get(), parent, schema,
                                node, where);
        if (made == nullptr) {
            return;
        }
        if (parent == nullptr && made != first.get()) {
            lyd_node *head = first.release();
            lyd_insert_sibling(head, made, &head);
            first.reset(head);
        }
        if (schema->nodetype & LYD_NODE_INNER) {
            for (const tidl_yfw_datatree &child : detail::children_of(node)) {
                if (!is_key_of(schema, child)) {
                    add(made, schema, child, first);
                }
            }
            if (let_go_) {
                yfw::release_subtrees(const_cast<tidl_yfw_datatree *>(&node));
            }
        }
    }

    std::vector<Diagnostic> &found() { return found_; }

private:
    // Nearly every node is of its parent's module, or of the last one looked up.
    const lys_module *module_of(const tidl_yfw_datatree &node, const lysc_node *parent_schema) {
        if (node.namespace_ == nullptr) {
            return parent_schema != nullptr ? parent_schema->module : nullptr;
        }
        if (parent_schema != nullptr &&
            std::strcmp(parent_schema->module->ns, node.namespace_) == 0) {
            return parent_schema->module;
        }
        if (last_module_ == nullptr || std::strcmp(last_module_->ns, node.namespace_) != 0) {
            last_module_ = ly_ctx_get_module_implemented_ns(ctx_, node.namespace_);
        }
        return last_module_;
    }

    static bool is_key_of(const lysc_node *schema, const tidl_yfw_datatree &child) {
        if (schema->nodetype != LYS_LIST || child.tag == nullptr) {
            return false;
        }
        const lysc_node *c = lys_find_child(schema, schema->module, child.tag, 0, 0, 0);
        return c != nullptr && lysc_is_key(c);
    }

    // The existing instance of a container, else a new node of the schema.
    lyd_node *create(lyd_node *siblings, lyd_node *parent, const lysc_node *schema,
                     const tidl_yfw_datatree &node, const Where &where) {
        clean_errors(ctx_);
        lyd_node *made = nullptr;
        LY_ERR rc = LY_SUCCESS;
        switch (schema->nodetype) {
        case LYS_CONTAINER:
            if (lyd_find_sibling_val(siblings, schema, nullptr, 0, &made) == LY_SUCCESS) {
                return made;
            }
            rc = lyd_new_inner(parent, schema->module, schema->name, 0, &made);
            break;
        case LYS_LIST:
            return create_list(parent, schema, node, where);
        case LYS_LEAF:
        case LYS_LEAFLIST: {
            if (!node.present_value && schema->nodetype == LYS_LEAF &&
                reinterpret_cast<const lysc_node_leaf *>(schema)->type->basetype != LY_TYPE_EMPTY) {
                found_.push_back({where.str(), "a leaf without a value"});
                return nullptr;
            }
            if (!detail::children_of(node).empty()) {
                found_.push_back({where.str(), "a leaf with child nodes"});
                return nullptr;
            }
            rc = lyd_new_term(parent, schema->module, schema->name,
                              json_value(schema, node.value, scratch_), 0, &made);
            break;
        }
        default:
            found_.push_back({where.str(), "a node of a kind the tool does not print"});
            return nullptr;
        }
        return finish(rc, made, where);
    }

    lyd_node *create_list(lyd_node *parent, const lysc_node *schema, const tidl_yfw_datatree &node,
                          const Where &where) {
        std::vector<std::string> keys;
        for (const lysc_node *k = lysc_node_child(schema); k != nullptr && lysc_is_key(k);
             k = k->next) {
            const tidl_yfw_datatree *key = key_node(node, k->name);
            if (key == nullptr || !key->present_value) {
                found_.push_back({where.str(), "a list entry without its key " + text_of(k->name)});
                return nullptr;
            }
            keys.push_back(json_value(k, text_of(key->value)));
        }
        lyd_node *made = nullptr;
        const lys_module *m = schema->module;
        const char *n = schema->name;
        LY_ERR rc = LY_EINVAL;
        switch (keys.size()) {
        case 0:
            rc = lyd_new_list(parent, m, n, 0, &made);
            break;
        case 1:
            rc = lyd_new_list(parent, m, n, 0, &made, keys[0].c_str());
            break;
        case 2:
            rc = lyd_new_list(parent, m, n, 0, &made, keys[0].c_str(), keys[1].c_str());
            break;
        case 3:
            rc = lyd_new_list(parent, m, n, 0, &made, keys[0].c_str(), keys[1].c_str(),
                              keys[2].c_str());
            break;
        default:
            found_.push_back({where.str(), "a list with more than three keys"});
            return nullptr;
        }
        if (rc != LY_SUCCESS) {
            // A refused key is told at its own path.
            std::size_t i = 0;
            for (const lysc_node *k = lysc_node_child(schema); i < keys.size(); k = k->next, ++i) {
                clean_errors(ctx_);
                if (!value_fits(ctx_, k, keys[i])) {
                    return finish(LY_EVALID, nullptr, where, k->name);
                }
            }
        }
        return finish(rc, made, where);
    }

    static const tidl_yfw_datatree *key_node(const tidl_yfw_datatree &entry,
                                             std::string_view name) {
        for (const tidl_yfw_datatree &child : detail::children_of(entry)) {
            if (child.tag != nullptr && child.tag == name) {
                return &child;
            }
        }
        return nullptr;
    }

    // The path of a complaint is spelt out only when there is one.
    lyd_node *finish(LY_ERR rc, lyd_node *made, const Where &at, std::string_view key = {}) {
        if (rc == LY_SUCCESS) {
            return made;
        }
        std::string where = at.str();
        if (!key.empty()) {
            where.append("/").append(key);
        }
        for (Diagnostic &d : errors_or(ctx_, where, "rejected")) {
            found_.push_back({where, std::move(d.message)});
        }
        return nullptr;
    }

    const ly_ctx *ctx_;
    bool let_go_;
    const lys_module *last_module_ = nullptr;
    std::string scratch_;
    std::vector<Diagnostic> found_;
};

// ---- Typed data into framework trees --------------------------------------

class TreeBuilder {
public:
    TreeBuilder(yfw::Arena &arena, bool read_kind) : arena_(arena), read_kind_(read_kind) {}

    void fill(tidl_yfw_datatree &out, const lyd_node *node) {
        if (node->schema == nullptr) {
            fill_opaque(out, reinterpret_cast<const lyd_node_opaq *>(node));
        } else {
            fill_typed(out, node);
        }
        for (const lyd_node *child = lyd_child(node); child != nullptr; child = child->next) {
            // libyang marks an empty non-presence container as a default
            // node even when the request names it: in a filter it selects.
            if (!(child->flags & LYD_DEFAULT) || !(child->schema->nodetype & LYD_NODE_TERM)) {
                tidl_yfw_datatree &c = *arena_.append_child(&out);
                fill(c, child);
                // An opaque node without a module is of its parent's.
                if (c.namespace_ == nullptr) {
                    c.namespace_ = out.namespace_;
                }
            }
        }
    }

private:
    void fill_typed(tidl_yfw_datatree &out, const lyd_node *node) {
        out.tag = arena_.text(node->schema->name);
        out.namespace_ = arena_.text(node->schema->module->ns);
        for (const lyd_meta *m = node->meta; m != nullptr; m = m->next) {
            if (m->annotation->module->name == kNetconfModule &&
                std::strcmp(m->name, "operation") == 0) {
                set_operation(out, lyd_get_meta_value(m));
            }
        }
        if (!(node->schema->nodetype & LYD_NODE_TERM)) {
            return;
        }
        const lyd_value &value = reinterpret_cast<const lyd_node_term *>(node)->value;
        std::string_view text = lyd_get_value(node);
        if (value.realtype->basetype == LY_TYPE_IDENT) {
            text = value.ident->name;
        }
        set_value(out, text);
    }

    void fill_opaque(tidl_yfw_datatree &out, const lyd_node_opaq *node) {
        out.tag = arena_.text(node->name.name);
        const char *ns = node->format == LY_VALUE_XML ? node->name.module_ns : nullptr;
        if (node->format == LY_VALUE_JSON && node->name.module_name != nullptr) {
            const lys_module *m = ly_ctx_get_module_implemented(node->ctx, node->name.module_name);
            ns = m != nullptr ? m->ns : nullptr;
        }
        out.namespace_ = ns != nullptr ? arena_.text(ns) : nullptr;
        for (const lyd_attr *a = node->attr; a != nullptr; a = a->next) {
            if (std::strcmp(a->name.name, "operation") == 0) {
                set_operation(out, a->value);
            }
        }
        if (node->child == nullptr) {
            set_value(out, text_of(node->value));
        }
    }

    // An empty value selects in a read request.
    void set_value(tidl_yfw_datatree &out, std::string_view text) {
        if (read_kind_ && text.empty()) {
            return;
        }
        out.value = arena_.text(text);
        out.present_value = 1;
    }

    static void set_operation(tidl_yfw_datatree &out, const char *word) {
        if (auto op = detail::operation_by_name(text_of(word))) {
            yfw_dt_set_operation(&out, *op);
        }
    }

    yfw::Arena &arena_;
    bool read_kind_;
};

// ---- Text ------------------------------------------------------------------

struct XmlDocFree {
    void operator()(xmlDoc *doc) const noexcept { xmlFreeDoc(doc); }
};
using XmlDoc = std::unique_ptr<xmlDoc, XmlDocFree>;

// The roots inside a <config>, <filter> or <data> wrapper, each printed on
// its own with the namespaces it uses; other documents unchanged.
// The namespaces of the annotations a request may carry: the edit operation,
// the position of an inserted entry, the default and origin marks.
constexpr std::array<std::string_view, 4> kAnnotationNamespaces{
    "urn:ietf:params:xml:ns:netconf:base:1.0", "urn:ietf:params:xml:ns:yang:1",
    "urn:ietf:params:xml:ns:netconf:default:1.0", "urn:ietf:params:xml:ns:yang:ietf-origin"};

// libyang reads an attribute in the namespace of a module it holds as that
// module's annotation, and crashes when the module defines none: any other
// namespaced attribute is refused before libyang sees the text.
void check_attributes(const xmlNode *n) {
    for (; n != nullptr; n = n->next) {
        if (n->type != XML_ELEMENT_NODE) {
            continue;
        }
        for (const xmlAttr *a = n->properties; a != nullptr; a = a->next) {
            if (a->ns == nullptr || a->ns->href == nullptr) {
                continue;
            }
            const std::string_view ns(reinterpret_cast<const char *>(a->ns->href));
            if (std::find(kAnnotationNamespaces.begin(), kAnnotationNamespaces.end(), ns) ==
                kAnnotationNamespaces.end()) {
                const std::string element(reinterpret_cast<const char *>(n->name));
                throw YangError(
                    {{"/" + element,
                      "attribute " + std::string(reinterpret_cast<const char *>(a->name)) +
                          " of namespace " + std::string(ns) + " is no annotation of the models"}});
            }
        }
        check_attributes(n->children);
    }
}

XmlDoc read_xml(std::string_view text) {
    return XmlDoc(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                                XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

std::string unwrapped_xml(std::string_view text) {
    XmlDoc doc = read_xml(text);
    const xmlNode *top = doc ? xmlDocGetRootElement(doc.get()) : nullptr;
    if (top != nullptr) {
        check_attributes(top);
    } else {
        // Several top-level nodes are no XML document: read them inside one.
        std::string_view body = text;
        if (body.starts_with("<?") && body.find("?>") != std::string_view::npos) {
            body.remove_prefix(body.find("?>") + 2);
        }
        const XmlDoc all = read_xml("<all>" + std::string(body) + "</all>");
        if (all) {
            check_attributes(xmlDocGetRootElement(all.get()));
        } else if (body.find_first_not_of(" \t\r\n") != std::string_view::npos) {
            // libyang reads as it goes and would meet an attribute before the
            // fault: text that is no XML goes no further.
            throw YangError("the data does not parse: it is not well-formed XML");
        }
    }
    if (top == nullptr || !detail::is_wrapper_name(reinterpret_cast<const char *>(top->name))) {
        return std::string(text);
    }
    std::string out;
    for (xmlNode *c = top->children; c != nullptr; c = c->next) {
        if (c->type != XML_ELEMENT_NODE) {
            continue;
        }
        XmlDoc one(xmlNewDoc(reinterpret_cast<const xmlChar *>("1.0")));
        xmlDocSetRootElement(one.get(), xmlDocCopyNode(c, one.get(), 1));
        xmlChar *dumped = nullptr;
        int size = 0;
        xmlDocDumpMemory(one.get(), &dumped, &size);
        std::string_view piece(reinterpret_cast<const char *>(dumped), static_cast<size_t>(size));
        // Only the first document of the concatenation may declare itself.
        if (piece.starts_with("<?xml")) {
            piece.remove_prefix(piece.find("?>") + 2);
        }
        out += piece;
        xmlFree(dumped);
    }
    return out;
}

uint32_t parse_options(Content content) {
    switch (content) {
    case Content::config:
        return LYD_PARSE_ONLY | LYD_PARSE_STRICT | LYD_PARSE_NO_STATE;
    case Content::operational:
        return LYD_PARSE_ONLY | LYD_PARSE_STRICT;
    case Content::edit:
        // An empty leaf under a delete has no value of its type.
        return LYD_PARSE_ONLY | LYD_PARSE_OPAQ | LYD_PARSE_NO_STATE;
    case Content::filter:
        break;
    }
    // Selection nodes of a filter have no value of their leaf's type.
    return LYD_PARSE_ONLY | LYD_PARSE_OPAQ;
}

// Operational state need not meet the constraints that relate nodes to one
// another (RFC 8342, 5.3); an answer also holds only part of it, so these
// complaints are not errors there. Types, keys and structure still count.
constexpr std::string_view kRelationalConstraints[] = {"When condition",
                                                       "Must condition",
                                                       "Mandatory node",
                                                       "Mandatory choice",
                                                       "Too few",
                                                       "Too many",
                                                       "Unique data",
                                                       "Invalid leafref value",
                                                       "Invalid instance-identifier"};

bool is_relational(const Diagnostic &d) {
    return std::any_of(std::begin(kRelationalConstraints), std::end(kRelationalConstraints),
                       [&d](std::string_view start) { return d.message.starts_with(start); });
}

// Validation adds the models' defaults; an answer keeps what the device
// said (state defaults would otherwise be printed as reported values).
void remove_defaults(lyd_node *&first) {
    std::vector<lyd_node *> added;
    std::vector<lyd_node *> stack;
    for (lyd_node *n = first; n != nullptr; n = n->next) {
        stack.push_back(n);
    }
    while (!stack.empty()) {
        lyd_node *n = stack.back();
        stack.pop_back();
        if (n->flags & LYD_DEFAULT) {
            added.push_back(n);
            continue;
        }
        for (lyd_node *c = lyd_child(n); c != nullptr; c = c->next) {
            stack.push_back(c);
        }
    }
    for (lyd_node *n : added) {
        if (n == first) {
            first = n->next;
        }
        lyd_free_tree(n);
    }
}

// The ietf-netconf operation a node carries itself, empty when none.
std::string_view own_operation(const lyd_node *n) {
    if (n->schema == nullptr) {
        for (const lyd_attr *a = reinterpret_cast<const lyd_node_opaq *>(n)->attr; a != nullptr;
             a = a->next) {
            if (std::strcmp(a->name.name, "operation") == 0) {
                return a->value != nullptr ? std::string_view(a->value) : std::string_view{};
            }
        }
        return {};
    }
    for (const lyd_meta *m = n->meta; m != nullptr; m = m->next) {
        if (m->annotation->module->name == kNetconfModule &&
            std::strcmp(m->name, "operation") == 0) {
            return lyd_get_meta_value(m);
        }
    }
    return {};
}

// Whether the node, or the nearest enclosing one with an operation, deletes:
// then a leaf needs no value.
bool deletes(const lyd_node *n) {
    for (; n != nullptr; n = lyd_parent(n)) {
        if (std::string_view op = own_operation(n); !op.empty()) {
            return op == "delete" || op == "remove";
        }
    }
    return false;
}

void check_opaque_node(const ly_ctx *ctx, const lyd_node_opaq *o, const lysc_node *schema,
                       Content content, std::vector<Diagnostic> &found);

const lysc_node *schema_of_opaque(const ly_ctx *ctx, const lyd_node_opaq *o,
                                  const lysc_node *parent_schema) {
    const char *named = o->name.module_ns; // or module_name: a union
    const lys_module *m = named == nullptr            ? nullptr
                          : o->format == LY_VALUE_XML ? ly_ctx_get_module_implemented_ns(ctx, named)
                                                      : ly_ctx_get_module_implemented(ctx, named);
    // An unqualified JSON name is of its parent's module.
    if (named == nullptr && parent_schema != nullptr) {
        m = parent_schema->module;
    }
    return m != nullptr ? lys_find_child(parent_schema, m, o->name.name, 0, 0, 0) : nullptr;
}

// Opaque nodes are what the parse of a request could not type: selection
// nodes of a filter, empty leaves of a delete, and mistakes. Each must still
// name a node of the models; a value must be one of its leaf's type, and an
// edit's list entry must have its keys.
void check_opaque(const ly_ctx *ctx, const lyd_node *first, const lysc_node *parent_schema,
                  Content content, std::vector<Diagnostic> &found) {
    for (const lyd_node *n = first; n != nullptr; n = n->next) {
        const lysc_node *schema = n->schema;
        if (schema == nullptr) {
            const auto *o = reinterpret_cast<const lyd_node_opaq *>(n);
            schema = schema_of_opaque(ctx, o, parent_schema);
            if (schema == nullptr) {
                const char *ns = o->format == LY_VALUE_XML ? o->name.module_ns : nullptr;
                found.push_back(
                    {path_of(n),
                     "no such node in the models" +
                         (ns != nullptr ? " (namespace " + std::string(ns) + ")" : std::string()),
                     text_of(o->name.name)});
                continue;
            }
            check_opaque_node(ctx, o, schema, content, found);
        }
        check_opaque(ctx, lyd_child(n), schema, content, found);
    }
}

void check_opaque_node(const ly_ctx *ctx, const lyd_node_opaq *o, const lysc_node *schema,
                       Content content, std::vector<Diagnostic> &found) {
    const lyd_node *n = &o->node;
    const std::string value = text_of(o->value);
    const bool selects = content == Content::filter || deletes(n);
    if ((schema->nodetype & LYD_NODE_TERM) && !(value.empty() && selects)) {
        clean_errors(ctx);
        if (!value_fits(ctx, schema, json_value(schema, value))) {
            for (Diagnostic &d : errors_or(ctx, "", "invalid value")) {
                found.push_back({path_of(n), std::move(d.message)});
            }
        }
    }
    if (schema->nodetype == LYS_LIST && content == Content::edit) {
        for (const lysc_node *k = lysc_node_child(schema); k != nullptr && lysc_is_key(k);
             k = k->next) {
            const lyd_node *c = o->child;
            while (c != nullptr &&
                   !(c->schema == nullptr &&
                     std::strcmp(reinterpret_cast<const lyd_node_opaq *>(c)->name.name, k->name) ==
                         0)) {
                c = c->next;
            }
            if (c == nullptr) {
                found.push_back(
                    {path_of(n), std::string("a list entry without its key ") + k->name});
            }
        }
    }
}

// Whether the module, or one of its submodules, defines identities.
bool defines_identities(const lys_module *m) {
    if (m->parsed == nullptr) {
        return false;
    }
    if (LY_ARRAY_COUNT(m->parsed->identities) > 0) {
        return true;
    }
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(m->parsed->includes, i) {
        const lysp_submodule *sub = m->parsed->includes[i].submodule;
        if (sub != nullptr && LY_ARRAY_COUNT(sub->identities) > 0) {
            return true;
        }
    }
    return false;
}

} // namespace

YangError::YangError(std::vector<Diagnostic> found)
    : std::runtime_error(found.empty() ? std::string("invalid data")
                                       : found.front().path + ": " + found.front().message),
      diagnostics(std::move(found)) {}

YangError::YangError(const std::string &message) : std::runtime_error(message) {}

Models::Models(const std::filesystem::path &dir) {
    // Errors are kept for the caller instead of going to standard error.
    ly_log_options(LY_LOSTORE);
    std::error_code ec;
    if (!std::filesystem::is_directory(dir, ec)) {
        throw YangError("the models directory " + dir.string() + " does not exist");
    }
    if (ly_ctx_new(dir.c_str(),
                   LY_CTX_DISABLE_SEARCHDIR_CWD | LY_CTX_REF_IMPLEMENTED | LY_CTX_EXPLICIT_COMPILE,
                   &ctx_) != LY_SUCCESS) {
        throw YangError("cannot make a libyang context for " + dir.string());
    }
    auto fail = [this](std::string what) {
        auto found = take_errors(ctx_);
        if (!found.empty()) {
            what += ": " + found.front().message;
        }
        ly_ctx_destroy(ctx_);
        ctx_ = nullptr;
        throw YangError(what);
    };
    // First, as a failed load takes back every module not compiled yet.
    // The fallback stays at hand: loading a deviation recompiles the context,
    // which asks for every module again.
    if (ly_ctx_load_module(ctx_, kNetconfModule.data(), nullptr, nullptr) == nullptr &&
        (ly_ctx_set_module_imp_clb(ctx_, netconf_fallback, nullptr),
         ly_ctx_load_module(ctx_, kNetconfModule.data(), nullptr, nullptr) == nullptr)) {
        fail("cannot load ietf-netconf");
    }
    const char *all_features[] = {"*", nullptr};
    for (std::string_view name : kModuleNames) {
        const std::string n(name);
        if (ly_ctx_load_module(ctx_, n.c_str(), nullptr, all_features) == nullptr) {
            fail("cannot load " + n + " from " + dir.string());
        }
    }
    // An identity is a value only when its module is implemented; the type
    // modules are imported alone.
    uint32_t index = 0;
    while (lys_module *m = ly_ctx_get_module_iter(ctx_, &index)) {
        if (!m->implemented && defines_identities(m) &&
            lys_set_implemented(m, nullptr) != LY_SUCCESS) {
            fail(std::string("cannot implement ") + m->name);
        }
    }
    // One compilation for all of the above.
    if (ly_ctx_compile(ctx_) != LY_SUCCESS) {
        fail("cannot compile the models in " + dir.string());
    }
    ly_ctx_unset_options(ctx_, LY_CTX_EXPLICIT_COMPILE);
    // The device's own: the Telnet extension and what it does not serve.
    for (const DeviceModule &m : device_modules()) {
        if (!m.text.empty() &&
            lys_parse_mem(ctx_, std::string(m.text).c_str(), LYS_IN_YANG, nullptr) != LY_SUCCESS) {
            fail("cannot load " + std::string(m.name));
        }
    }
    clean_errors(ctx_);
}

Models::~Models() {
    ly_ctx_destroy(ctx_);
}

std::optional<std::filesystem::path> models_dir(std::optional<std::string_view> option) {
    if (option) {
        return std::filesystem::path(*option);
    }
    const char *env = std::getenv("OCSYSMAP_MODELS");
    if (env != nullptr && *env != '\0') {
        return std::filesystem::path(env);
    }
    return std::nullopt;
}

void DataFree::operator()(lyd_node *node) const noexcept {
    lyd_free_all(node);
}

std::vector<tidl_yfw_datatree *> from_lyd(yfw::Arena &arena, const lyd_node *first_sibling,
                                          bool read_kind) {
    TreeBuilder builder(arena, read_kind);
    std::vector<tidl_yfw_datatree *> roots;
    for (const lyd_node *n = first_sibling; n != nullptr; n = n->next) {
        roots.push_back(arena.new_root());
        builder.fill(*roots.back(), n);
    }
    return roots;
}

namespace {

Data typed_roots(const Models &models, const tidl_yfw_datatree &document, bool let_go) {
    DataBuilder builder(models.context(), let_go);
    Data first;
    for (const tidl_yfw_datatree &root : detail::children_of(document)) {
        const lys_module *m =
            root.namespace_ != nullptr
                ? ly_ctx_get_module_implemented_ns(models.context(), root.namespace_)
                : nullptr;
        if (m != nullptr && std::string_view(m->name).starts_with("openconfig-")) {
            builder.add(nullptr, nullptr, root, first);
        }
    }
    if (!builder.found().empty()) {
        throw YangError(std::move(builder.found()));
    }
    return first;
}

} // namespace

Data to_lyd(const Models &models, const tidl_yfw_datatree &document) {
    return typed_roots(models, document, false);
}

Data take_lyd(const Models &models, tidl_yfw_datatree &document) {
    return typed_roots(models, document, true);
}

std::string print(const lyd_node *tree, Format format) {
    if (tree == nullptr) {
        return {};
    }
    char *text = nullptr;
    if (lyd_print_mem(&text, tree, format == Format::xml ? LYD_XML : LYD_JSON,
                      LYD_PRINT_WITHSIBLINGS) != LY_SUCCESS) {
        throw YangError(errors_or(LYD_CTX(tree), "", "cannot print the data"));
    }
    CText owned(text);
    return text_of(text);
}

namespace {

ssize_t write_stream(void *cookie, const char *buffer, size_t size) {
    auto &out = *static_cast<std::ostream *>(cookie);
    out.write(buffer, static_cast<std::streamsize>(size));
    return out ? static_cast<ssize_t>(size) : -1;
}

} // namespace

void print(const lyd_node *tree, Format format, std::ostream &out) {
    if (tree == nullptr) {
        return;
    }
    // libyang prints a stream in many small pieces; a buffered stdio stream
    // over `out` gathers them without holding the whole text.
    FILE *file = fopencookie(&out, "w", {nullptr, write_stream, nullptr, nullptr});
    if (file == nullptr) {
        throw YangError("cannot print the data");
    }
    std::setvbuf(file, nullptr, _IOFBF, std::size_t{1} << 16);
    const LY_ERR rc = lyd_print_file(file, tree, format == Format::xml ? LYD_XML : LYD_JSON,
                                     LYD_PRINT_WITHSIBLINGS);
    if (std::fclose(file) != 0 || rc != LY_SUCCESS) {
        throw YangError(errors_or(LYD_CTX(tree), "", "cannot print the data"));
    }
}

Data parse(const Models &models, std::string_view text, Format format, Content content) {
    const ly_ctx *ctx = models.context();
    const std::string input = format == Format::xml ? unwrapped_xml(text) : std::string(text);
    clean_errors(ctx);
    lyd_node *tree = nullptr;
    if (lyd_parse_data_mem(ctx, input.c_str(), format == Format::xml ? LYD_XML : LYD_JSON,
                           parse_options(content), 0, &tree) != LY_SUCCESS) {
        lyd_free_all(tree);
        throw YangError(errors_or(ctx, "", "the data does not parse"));
    }
    Data data(tree);
    if (content == Content::edit || content == Content::filter) {
        if (auto found = validate(models, data, content); !found.empty()) {
            throw YangError(std::move(found));
        }
    }
    return data;
}

std::vector<Diagnostic> validate(const Models &models, Data &tree, Content content) {
    const ly_ctx *ctx = models.context();
    std::vector<Diagnostic> found;
    switch (content) {
    case Content::config:
    case Content::operational: {
        clean_errors(ctx);
        lyd_node *head = tree.release();
        const uint32_t options =
            LYD_VALIDATE_PRESENT | (content == Content::config ? LYD_VALIDATE_NO_STATE : 0);
        const LY_ERR rc = lyd_validate_all(&head, ctx, options, nullptr);
        remove_defaults(head);
        tree.reset(head);
        if (rc != LY_SUCCESS) {
            found = errors_or(ctx, "", "invalid data");
        }
        if (content == Content::operational) {
            std::erase_if(found, is_relational);
        }
        break;
    }
    case Content::edit:
    case Content::filter:
        // Typed nodes passed their types when parsed; the constraints that
        // relate nodes hold for a datastore, not for a part of one.
        check_opaque(ctx, tree.get(), nullptr, content, found);
        break;
    }
    return found;
}

} // namespace ocsysmap::yang
