// The AAA companion: method lists and events of Tarvex-QV-aaa-lib-cfg, local
// users of Tarvex-QV-aaa-locald-cfg, TACACS server groups of
// Tarvex-QV-aaa-tacacs-cfg, and the hand-over of the augmenting modules'
// nodes to the library's augment entries.
#include <iterator>
#include <span>

#include "companion.hpp"

namespace {

using namespace companion;

std::span<const tidl_yfw_datatree> children(const tidl_yfw_datatree *node) {
    if (node == nullptr || !node->present_subtrees || node->subtrees == nullptr)
        return {};
    return {node->subtrees, node->subtree_count};
}
const tidl_yfw_datatree *child(const tidl_yfw_datatree *node, std::string_view tag) {
    for (const tidl_yfw_datatree &c : children(node))
        if (text(c.tag) == tag)
            return &c;
    return nullptr;
}
// A write whose key node has no value names no entry: a walk-all pass hands
// a key's companion the enclosing container, which has none.
bool names_no_entry(yfw_map_ctx *ctx, const tidl_yfw_datatree *node) {
    return !read_kind(ctx) && text(node->value).empty();
}
const char *key_of(yfw_map_ctx *ctx, const char *list_path, const char *key) {
    char *value = nullptr;
    return yfw_map_get_node_info(ctx, list_path, key, &value) == YFW_SUCCESS ? value : nullptr;
}

// ---- Vocabularies ------------------------------------------------------------

constexpr Word kMethods[] = {
    {"openconfig-aaa-types:TACACS_ALL", "tacacs"},
    {"openconfig-aaa-types:RADIUS_ALL", "radius"},
    {"openconfig-aaa-types:LOCAL", "local"},
};
constexpr Word kAuthzEvents[] = {
    {"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_COMMAND", "commands"},
    {"openconfig-aaa-types:AAA_AUTHORIZATION_EVENT_CONFIG", "config-commands"},
};
constexpr Word kAcctEvents[] = {
    {"openconfig-aaa-types:AAA_ACCOUNTING_EVENT_COMMAND", "commands"},
    {"openconfig-aaa-types:AAA_ACCOUNTING_EVENT_LOGIN", "exec"},
};
constexpr Word kRecords[] = {{"START_STOP", "start-stop"}, {"STOP", "stop-only"}};
constexpr Word kRoles[] = {{"openconfig-aaa-types:SYSTEM_ROLE_ADMIN", "sysadmin"}};
constexpr Word kServerTypes[] = {{"openconfig-aaa:TACACS", "tacacs"},
                                 {"openconfig-aaa:RADIUS", "radius"}};

// ---- Services: one native list per service, keyed by type and list name ----

struct Service {
    const char *entry;      // the native list
    const char *type;       // the type of the entry that holds the methods
    const char *oc_methods; // the OpenConfig leaf-list
    const char *oc_events;  // the OpenConfig event list
    std::span<const Word> events;
    const char *too_many;
};
// Methods go on the device's default method list of each service.
constexpr const char kListName[] = "default";
constexpr Service kAuthen = {"/aaa/authentications/authentication",
                             "login",
                             "/system/aaa/authentication/config/authentication-method",
                             nullptr,
                             {},
                             "At most four authentication methods are supported"};
constexpr Service kAuthz = {"/aaa/authorizations/authorization",
                            "commands",
                            "/system/aaa/authorization/config/authorization-method",
                            "/system/aaa/authorization/events/event",
                            kAuthzEvents,
                            "At most four authorization methods are supported"};
constexpr Service kAcct = {"/aaa/accountings/accounting",
                           "exec",
                           "/system/aaa/accounting/config/accounting-method",
                           "/system/aaa/accounting/events/event",
                           kAcctEvents,
                           "At most four accounting methods are supported"};
constexpr int kSlots = 4;

// The service's entry of `type`; an edit carries the node's operation on it.
cerrno open_entry(yfw_map_ctx *ctx, tidl_yfw_datatree *out, const Service &s, const char *type,
                  const tidl_yfw_datatree *source) {
    add(ctx, out, {s.entry, NS_AAA_LIB_CFG, 1}, nullptr, source);
    add(ctx, out, {Path(s.entry, "/type"), NS_AAA_LIB_CFG, 1}, type, nullptr);
    return add(ctx, out, {Path(s.entry, "/listname"), NS_AAA_LIB_CFG, 1}, kListName, nullptr);
}

// The numbered slot of a method: the one that holds it already in this output,
// else the lowest free one; kSlots + 1 when all four are taken.
int slot_for(const tidl_yfw_datatree *out, const Service &s, const char *value) {
    const std::string_view path(s.entry);
    const std::string_view list = path.substr(path.rfind('/') + 1);
    const std::string_view holder = path.substr(5, path.rfind('/') - 5); // past "/aaa/"
    const tidl_yfw_datatree *entries = child(child(out, "aaa"), holder);
    bool used[kSlots + 1] = {};
    for (const tidl_yfw_datatree &e : children(entries)) {
        const tidl_yfw_datatree *type = child(&e, "type");
        const tidl_yfw_datatree *name = child(&e, "listname");
        if (text(e.tag) != list || type == nullptr || text(type->value) != s.type ||
            name == nullptr || text(name->value) != kListName)
            continue;
        for (int n = 1; n <= kSlots; ++n)
            for (const char *leaf : {"method", "server-group-name"}) {
                const tidl_yfw_datatree *slot = child(&e, Path("", leaf, n).text);
                if (slot != nullptr && value != nullptr && text(slot->value) == value)
                    return n;
                // A slot this request empties is free for the methods it writes.
                used[n] = used[n] || (slot != nullptr && !yfw_map_is_request_delete(slot));
            }
    }
    int n = 1;
    while (n <= kSlots && used[n])
        ++n;
    return n;
}

// Every numbered leaf of the service's entry, bare: what a read asks for, or
// with `source` a delete of the whole list.
cerrno all_slots(yfw_map_ctx *ctx, tidl_yfw_datatree *out, const Service &s,
                 const tidl_yfw_datatree *source) {
    cerrno rc = YFW_SUCCESS;
    for (int n = 1; n <= kSlots; ++n) {
        add(ctx, out, {Path(s.entry, "/method", n), NS_AAA_LIB_CFG}, nullptr, source);
        rc = add(ctx, out, {Path(s.entry, "/server-group-name", n), NS_AAA_LIB_CFG}, nullptr,
                 source);
    }
    return rc;
}

cerrno oc_method(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out, const Service &s) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        open_entry(ctx, out, s, s.type, nullptr);
        if (read_kind(ctx))
            return all_slots(ctx, out, s, nullptr);
        // The whole list goes (a delete or the first pass of a replace).
        if (text(node->value).empty() && yfw_map_is_request_delete(node))
            return all_slots(ctx, out, s, node);
        // A known method is a method word; anything else names a server group.
        const Word *known = node->value != nullptr ? by_oc(kMethods, node->value) : nullptr;
        const char *value = known != nullptr ? known->native : node->value;
        const int n = slot_for(out, s, value);
        if (n > kSlots)
            return refuse(ctx, fn, s.too_many);
        const Path path(s.entry, known != nullptr ? "/method" : "/server-group-name", n);
        const bool del = yfw_map_is_request_delete(node) != 0;
        return add(ctx, out, {path, NS_AAA_LIB_CFG}, del ? nullptr : value, node);
    });
}

// Every call answers the whole list in slot order, so the order of the numbers
// holds whichever numbered leaf comes first; repeated values merge.
cerrno qv_method(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out, const Service &s) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        if (oper_only(ctx))
            return YFW_SUCCESS;
        const Target leaf_list{s.oc_methods, NS_OPENCONFIG_SYSTEM, 1};
        cerrno rc = YFW_SUCCESS;
        bool any = false;
        for (int n = 1; n <= kSlots; ++n) {
            const char *method = key_of(ctx, s.entry, Path("", "method", n));
            const char *group = key_of(ctx, s.entry, Path("", "server-group-name", n));
            const char *value = method != nullptr ? to_oc_word(kMethods, method) : group;
            if (value != nullptr) {
                rc = add(ctx, out, leaf_list, value, nullptr);
                any = true;
            }
        }
        if (any)
            return rc;
        const bool is_method = text(node->tag).starts_with("method");
        return add(ctx, out, leaf_list, is_method ? to_oc_word(kMethods, node->value) : node->value,
                   nullptr);
    });
}

// An OpenConfig event is the service's native entry of that type. The list
// entry itself brings its key along from the request.
cerrno oc_event(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                tidl_yfw_datatree *out, const Service &s) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        const bool is_entry = text(node->tag) == "event";
        const char *event = is_entry ? key_of(ctx, s.oc_events, "event-type") : node->value;
        const char *type = event != nullptr ? to_native_word(s.events, event) : nullptr;
        if (names_no_entry(ctx, node) && text(type).empty())
            return YFW_SUCCESS;
        return open_entry(ctx, out, s, type, is_entry && !read_kind(ctx) ? node : nullptr);
    });
}

// The OpenConfig event entry of a native entry's type, with config/event-type.
cerrno qv_event(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                tidl_yfw_datatree *out, const Service &s, const char *leaf, const char *value) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        const char *type = text(node->tag) == "type" ? node->value : key_of(ctx, s.entry, "type");
        const char *event = to_oc_word(s.events, type);
        add(ctx, out, {s.oc_events, NS_OPENCONFIG_SYSTEM, 1}, nullptr, nullptr);
        cerrno rc = add(ctx, out, {Path(s.oc_events, "/event-type"), NS_OPENCONFIG_SYSTEM, 1},
                        event, nullptr);
        rc = write_answer(ctx, out, NS_OPENCONFIG_SYSTEM, Path(s.oc_events, "/config/event-type"),
                          nullptr, event);
        if (leaf != nullptr)
            rc = write_answer(ctx, out, NS_OPENCONFIG_SYSTEM, Path(s.oc_events, leaf), nullptr,
                              value);
        return rc;
    });
}

Native record_word(const char *value) {
    return {Native::Set, to_native_word(kRecords, value)};
}

// ---- Local users ---------------------------------------------------------------

constexpr const char kUser[] = "/aaa/usernames/username";
constexpr auto kUserOrderingIndexPath = join(kUser, "/ordering-index");
constexpr auto kUserName = join(kUser, "/name");
constexpr auto kUserSecret = join(kUser, "/secret");
constexpr auto kUserSecretType = join(kUser, "/secret/type");
constexpr auto kUserGroup = join(kUser, "/usergroup-under-usernames/usergroup-under-username");
constexpr auto kUserGroupName = join(kUserGroup.text, "/name");
constexpr const char kOcUser[] = "/system/aaa/authentication/users/user";
constexpr auto kOcUserPasswordHashed = join(kOcUser, "/config/password-hashed");
constexpr auto kOcUserRole = join(kOcUser, "/config/role");
// Users are told apart by name; every user the OpenConfig side writes takes
// this one ordering index, the same in every request.
constexpr const char kUserOrderingIndex[] = "0";

// The secret leaf and type of a crypt hash, by its prefix; any other hash is
// taken as the strongest kind, unchanged.
struct HashKind {
    std::string_view prefix;
    const char *type;
    const char *leaf;
};
constexpr HashKind kHashKinds[] = {
    {"$1$", "5", "/secret5"},
    {"$8$", "8", "/secret8"},
    {"$9$", "9", "/secret9"},
    {"", "10", "/secret10"}, // the last row takes the rest
};
const HashKind &hash_kind(const char *hash) {
    for (const HashKind &k : kHashKinds)
        if (text(hash).starts_with(k.prefix))
            return k;
    return kHashKinds[std::size(kHashKinds) - 1];
}

// ---- TACACS server groups ------------------------------------------------------

constexpr const char kGroup[] = "/aaa/server-groups/tacacs-server-groups/tacacs-server-group";
constexpr const char kServer[] =
    "/aaa/server-groups/tacacs-server-groups/tacacs-server-group/private-servers/private-server";
constexpr auto kGroupName = join(kGroup, "/server-group-name");
constexpr auto kServerAddress = join(kServer, "/ip-address");
constexpr auto kServerPort = join(kServer, "/port-number");
constexpr auto kServerKey = join(kServer, "/key");
constexpr auto kServerKeyType = join(kServer, "/key/encrypt-type");
constexpr auto kServerKeySecret = join(kServer, "/key/secret7");
constexpr const char kOcGroup[] = "/system/aaa/server-groups/server-group";
constexpr const char kOcServer[] = "/system/aaa/server-groups/server-group/servers/server";
constexpr auto kOcServerPort = join(kOcServer, "/tacacs/config/port");
constexpr auto kOcServerSecret = join(kOcServer, "/tacacs/config/secret-key");
// An OpenConfig secret comes in clear; the device keeps it encrypted itself.
constexpr const char kClearKey[] = "0";

Native clear_key_type(const char *) {
    return {Native::Set, kClearKey};
}

cerrno oc_key(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
              tidl_yfw_datatree *out, const char *path, const char *ns) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        if (names_no_entry(ctx, node))
            return YFW_SUCCESS;
        return write_key(ctx, out, {path, ns, 1, 1}, node, node->value);
    });
}

// An OpenConfig key leaf, its config twin, and a further config leaf with its
// value when there is one.
struct OcKey {
    const char *key;
    const char *config;
    const char *leaf = nullptr;
    const char *leaf_value = nullptr;
};
constexpr auto kOcUserName = join(kOcUser, "/username");
constexpr auto kOcUserConfigName = join(kOcUser, "/config/username");
constexpr OcKey kOcUserKey = {kOcUserName, kOcUserConfigName};
constexpr auto kOcGroupName = join(kOcGroup, "/name");
constexpr auto kOcGroupConfigName = join(kOcGroup, "/config/name");
constexpr auto kOcGroupType = join(kOcGroup, "/config/type");
// Every native group is a TACACS group.
constexpr OcKey kOcGroupKey = {kOcGroupName, kOcGroupConfigName, kOcGroupType, kServerTypes[0].oc};
constexpr auto kOcServerAddress = join(kOcServer, "/address");
constexpr auto kOcServerConfigAddress = join(kOcServer, "/config/address");
constexpr OcKey kOcServerKey = {kOcServerAddress, kOcServerConfigAddress};

// A native leaf answered as an OpenConfig key. Leaves whose tag does not begin
// with `takes` have no counterpart and add nothing.
cerrno qv_key(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
              tidl_yfw_datatree *out, const OcKey &k, std::string_view takes = {}) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        if (!begins(node->tag, takes))
            return YFW_SUCCESS;
        cerrno rc = add(ctx, out, {k.key, NS_OPENCONFIG_SYSTEM, 1}, node->value, nullptr);
        rc = write_answer(ctx, out, NS_OPENCONFIG_SYSTEM, k.config, nullptr, node->value);
        if (k.leaf != nullptr)
            rc = write_answer(ctx, out, NS_OPENCONFIG_SYSTEM, k.leaf, nullptr, k.leaf_value);
        return rc;
    });
}

// A native leaf answered in config alone, converted or not; as above for `takes`.
cerrno qv_config(yfw_map_ctx *ctx, const char *fn, const tidl_yfw_datatree *node,
                 tidl_yfw_datatree *out, const char *path, std::string_view takes = {},
                 std::span<const Word> words = {}) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        if (!begins(node->tag, takes))
            return YFW_SUCCESS;
        return write_answer(ctx, out, NS_OPENCONFIG_SYSTEM, path, nullptr,
                            to_oc_word(words, node->value));
    });
}

// ---- The augmenting modules' nodes ---------------------------------------------

struct Augment {
    const char *ns;
    const char *tag;
    yfw_map_walker_fn entry;
};
constexpr Augment kAaaAugments[] = {
    {NS_AAA_LOCALD_CFG, "password-policies",
     &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvla_aaa},
    {NS_AAA_LOCALD_CFG, "server-groups", &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlb_aaa},
    {NS_AAA_LOCALD_CFG, "default-taskgroup",
     &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlc_aaa},
    {NS_AAA_LOCALD_CFG, "admin-accounting",
     &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvld_aaa},
    {NS_AAA_LOCALD_CFG, "usernames", &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvle_aaa},
    {NS_AAA_LOCALD_CFG, "taskgroups", &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlf_aaa},
    {NS_AAA_LOCALD_CFG, "usergroups", &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlg_aaa},
    {NS_AAA_TACACS_CFG, "tacacs", &ymap_qo_ocsystem_tarvexqvaaatacacscfg_augment_lvla_aaa},
};
constexpr Augment kServerGroupAugments[] = {
    {NS_AAA_TACACS_CFG, "tacacs-server-groups",
     &ymap_qo_ocsystem_tarvexqvaaatacacscfg_augment_lvla_server_groups},
};

// Each child in an augmenting namespace goes to its entry; the first failure
// ends the hand-over. Children of the node's own module are the walker's.
cerrno hand_over(yfw_map_ctx *ctx, const char *fn, tidl_yfw_datatree *node, uint32_t count,
                 tidl_yfw_datatree *out, std::span<const Augment> augments) {
    return framed(ctx, fn, node != nullptr && out != nullptr, [&] {
        const auto kids = children(node);
        for (std::size_t i = 0; i < kids.size() && i < count; ++i) {
            tidl_yfw_datatree &kid = node->subtrees[i];
            for (const Augment &a : augments) {
                if (text(kid.tag) != a.tag || text(kid.namespace_) != a.ns)
                    continue;
                if (const cerrno rc = a.entry(ctx, &kid, out); rc != YFW_SUCCESS)
                    return rc;
            }
        }
        return YFW_SUCCESS;
    });
}

} // namespace

extern "C" {

// ---- Roots ------------------------------------------------------------------------

// The native root is added bare in every kind, so that every AAA request has
// one output root; it never carries the request's operation, since deleting it
// would take the users and server groups of the augmenting modules along.
cerrno oc_aaa(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
              tidl_yfw_datatree *out_tree) {
    (void)count;
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        return add(ctx, out_tree, {"/aaa", NS_AAA_LIB_CFG}, nullptr, nullptr);
    });
}

cerrno qv_aaa(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
              tidl_yfw_datatree *out_tree) {
    return hand_over(ctx, __func__, node, count, out_tree, kAaaAugments);
}

cerrno qv_server_groups(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
                        tidl_yfw_datatree *out_tree) {
    return hand_over(ctx, __func__, node, count, out_tree, kServerGroupAugments);
}

// With children, or in a read, the container is written; bare in a write,
// only a delete names it.
cerrno oc_server_groups(yfw_map_ctx *ctx, tidl_yfw_datatree *node, uint32_t count,
                        tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        const Target groups{"/aaa/server-groups", NS_AAA_LOCALD_CFG, 0, 1};
        // A read of the bare container selects it; the groups below must not
        // bring it in under another module.
        if (count != 0 || read_kind(ctx))
            return add(ctx, out_tree, groups, nullptr, nullptr);
        if (!read_kind(ctx) && yfw_map_is_request_delete(node))
            return add(ctx, out_tree, groups, nullptr, node);
        return YFW_SUCCESS;
    });
}

// ---- Methods ----------------------------------------------------------------------

cerrno oc_authenticationMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                               tidl_yfw_datatree *out_tree) {
    return oc_method(ctx, __func__, node, out_tree, kAuthen);
}
cerrno oc_authMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return oc_method(ctx, __func__, node, out_tree, kAuthz);
}
cerrno oc_acctMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return oc_method(ctx, __func__, node, out_tree, kAcct);
}
cerrno qv_authenticationMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                               tidl_yfw_datatree *out_tree) {
    return qv_method(ctx, __func__, node, out_tree, kAuthen);
}
cerrno qv_authMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return qv_method(ctx, __func__, node, out_tree, kAuthz);
}
cerrno qv_acctMethod(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return qv_method(ctx, __func__, node, out_tree, kAcct);
}

// ---- Events -----------------------------------------------------------------------

cerrno oc_authorization_event(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree) {
    return oc_event(ctx, __func__, node, out_tree, kAuthz);
}
cerrno oc_auth_type(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return oc_event(ctx, __func__, node, out_tree, kAuthz);
}
cerrno oc_accounting_event(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                           tidl_yfw_datatree *out_tree) {
    return oc_event(ctx, __func__, node, out_tree, kAcct);
}
cerrno oc_acct_type(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return oc_event(ctx, __func__, node, out_tree, kAcct);
}

// The record kind is the type-qv of the entry of the enclosing event.
cerrno oc_record(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        const char *event = key_of(ctx, kAcct.oc_events, "event-type");
        open_entry(ctx, out_tree, kAcct, to_native_word(kAcct.events, event), nullptr);
        return write_leaf(ctx, __func__, out_tree, {Path(kAcct.entry, "/type-qv"), NS_AAA_LIB_CFG},
                          node, record_word);
    });
}

cerrno qv_accountings_accounting(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                 tidl_yfw_datatree *out_tree) {
    return qv_event(ctx, __func__, node, out_tree, kAcct, nullptr, nullptr);
}
cerrno qv_authorizations_auth(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree) {
    return qv_event(ctx, __func__, node, out_tree, kAuthz, nullptr, nullptr);
}
cerrno qv_type_qv(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    const char *record = node != nullptr ? to_oc_word(kRecords, node->value) : nullptr;
    return qv_event(ctx, __func__, node, out_tree, kAcct, "/config/record", record);
}

// ---- Local users --------------------------------------------------------------------

cerrno oc_name_orderingIndex(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                             tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        if (names_no_entry(ctx, node))
            return YFW_SUCCESS;
        // A read selects the user by name, whatever index the device gave it.
        write_key(ctx, out_tree, {kUserOrderingIndexPath, NS_AAA_LOCALD_CFG, 1, 1}, node,
                  read_kind(ctx) ? nullptr : kUserOrderingIndex);
        return write_key(ctx, out_tree, {kUserName, NS_AAA_LOCALD_CFG, 1, 1}, node, node->value);
    });
}

cerrno oc_usernameSecret(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                         tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        // A delete does not tell the kind of hash: the whole secret goes.
        if (!read_kind(ctx) && yfw_map_is_request_delete(node))
            return add(ctx, out_tree, {kUserSecret, NS_AAA_LOCALD_CFG, 0, 1}, nullptr, node);
        const HashKind &k = hash_kind(node->value);
        write_leaf(ctx, __func__, out_tree, {kUserSecretType, NS_AAA_LOCALD_CFG, 0, 1}, node,
                   [](const char *v) {
                       return Native{Native::Set, hash_kind(v).type};
                   });
        return write_leaf(ctx, __func__, out_tree,
                          {Path(kUser, "/secret", k.leaf), NS_AAA_LOCALD_CFG, 0, 1}, node,
                          unchanged);
    });
}

cerrno oc_authen_user_role(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                           tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        add(ctx, out_tree, {kUserGroup, NS_AAA_LOCALD_CFG, 1, 1}, nullptr,
            read_kind(ctx) ? nullptr : node);
        const char *name = node->value != nullptr ? to_native_word(kRoles, node->value) : nullptr;
        return add(ctx, out_tree, {kUserGroupName, NS_AAA_LOCALD_CFG, 1, 1}, name, nullptr);
    });
}

// The ordering index has no OpenConfig counterpart and is dropped.
cerrno qv_username(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return qv_key(ctx, __func__, node, out_tree, kOcUserKey, "name");
}

// The type leaf only tells the kind of hash, which the hash itself carries.
cerrno qv_authenUserPasswdHashed(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                 tidl_yfw_datatree *out_tree) {
    return qv_config(ctx, __func__, node, out_tree, kOcUserPasswordHashed, "secret");
}

cerrno qv_authen_user_role(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                           tidl_yfw_datatree *out_tree) {
    return qv_config(ctx, __func__, node, out_tree, kOcUserRole, {}, kRoles);
}

// ---- TACACS server groups ---------------------------------------------------------

// The group's name is its native key; only TACACS groups have a native home.
cerrno oc_serverType(yfw_map_ctx *ctx, const tidl_yfw_datatree *node, tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        if (text(node->tag) != "type" && names_no_entry(ctx, node))
            return YFW_SUCCESS;
        if (text(node->tag) != "type")
            return write_key(ctx, out_tree, {kGroupName, NS_AAA_TACACS_CFG, 1, 1}, node,
                             node->value);
        if (read_kind(ctx) || yfw_map_is_request_delete(node) ||
            text(to_native_word(kServerTypes, node->value)) != "radius")
            return YFW_SUCCESS;
        return refuse(ctx, __func__, "RADIUS server groups are not supported");
    });
}

cerrno oc_ipaddress_servType(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                             tidl_yfw_datatree *out_tree) {
    return oc_key(ctx, __func__, node, out_tree, kServerAddress, NS_AAA_TACACS_CFG);
}

// The private server list is keyed by address and port alone: no ordering
// index is written.
cerrno oc_privServPortOrderingIndex(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                    tidl_yfw_datatree *out_tree) {
    return oc_key(ctx, __func__, node, out_tree, kServerPort, NS_AAA_TACACS_CFG);
}

cerrno oc_tacacsServerSecretKey(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                                tidl_yfw_datatree *out_tree) {
    return framed(ctx, __func__, node != nullptr && out_tree != nullptr, [&] {
        if (!read_kind(ctx) && yfw_map_is_request_delete(node))
            return add(ctx, out_tree, {kServerKey, NS_AAA_TACACS_CFG, 0, 1}, nullptr, node);
        write_leaf(ctx, __func__, out_tree, {kServerKeyType, NS_AAA_TACACS_CFG, 0, 1}, node,
                   clear_key_type);
        return write_leaf(ctx, __func__, out_tree, {kServerKeySecret, NS_AAA_TACACS_CFG, 0, 1},
                          node, unchanged);
    });
}

cerrno qv_serverGroupType(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                          tidl_yfw_datatree *out_tree) {
    return qv_key(ctx, __func__, node, out_tree, kOcGroupKey);
}

cerrno qv_servAddress(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree) {
    return qv_key(ctx, __func__, node, out_tree, kOcServerKey);
}

cerrno qv_tacacs_port(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                      tidl_yfw_datatree *out_tree) {
    return qv_config(ctx, __func__, node, out_tree, kOcServerPort);
}

// The encryption type stays on the device; the secret comes back as it is kept.
cerrno qv_tacacsPrivServerKey(yfw_map_ctx *ctx, const tidl_yfw_datatree *node,
                              tidl_yfw_datatree *out_tree) {
    return qv_config(ctx, __func__, node, out_tree, kOcServerSecret, "secret");
}

} // extern "C"
