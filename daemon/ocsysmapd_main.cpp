// ocsysmapd: the simulated device. A NETCONF server over SSH on 127.0.0.1
// whose running datastore is the native store, reached through the mapping
// library the way a device's framework reaches it.
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include <libssh/libssh.h>
#include <libyang/libyang.h>
#include <nc_server.h>

#include "device.hpp"
#include "device_modules.hpp"
#include "io/io_detail.hpp"
#include "monitoring_module.hpp"
#include "netconf_module.hpp"
#include "ocsystem_map_version.h"
#include "oper/events_module.hpp"
#include "oper/oper_state.hpp"
#include "registered_trees.hpp"
#include "ymap_ocsystem.h"

namespace {

using ocsysmapd::Device;
using ocsysmapd::EditDefault;
using ocsysmapd::EditOptions;
using ocsysmapd::Failure;

constexpr std::string_view kUsage =
    "usage: ocsysmapd --port PORT --store FILE [--models DIR] [--host-key FILE]\n"
    "                 [--user NAME] [--password TEXT]\n"
    "       ocsysmapd --help | --version\n"
    "Serves NETCONF over SSH on 127.0.0.1:PORT. FILE holds the native datastore (made\n"
    "when missing); the host key (default FILE.host-key) is generated when missing.\n"
    "DIR (or OCSYSMAP_MODELS) holds the OpenConfig models. The login is admin/admin\n"
    "unless --user and --password say otherwise.\n";

constexpr const char *kEndpoint = "main";

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    // --help or --version: print it and stop, whatever else is given.
    enum class Info { None, Help, Version } info = Info::None;
    uint16_t port = 0;
    std::filesystem::path store;
    std::optional<std::string_view> models_option;
    std::filesystem::path models;
    std::filesystem::path host_key;
    std::string user = "admin";
    std::string password = "admin";
};

Options parse_options(std::span<char *const> args) {
    Options o;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string_view arg = args[i];
        auto operand = [&]() -> std::string_view {
            if (i + 1 == args.size()) {
                throw UsageError(std::string(arg) + " needs a value");
            }
            return args[++i];
        };
        if (arg == "--help" || arg == "-h" || arg == "--version") {
            o.info = arg == "--version" ? Options::Info::Version : Options::Info::Help;
            return o;
        }
        if (arg == "--port") {
            const std::string_view text = operand();
            auto port = ocsysmap::detail::parse_decimal<uint16_t>(text);
            if (!port || *port == 0) {
                throw UsageError("--port takes a port number, not \"" + std::string(text) + "\"");
            }
            o.port = *port;
        } else if (arg == "--store") {
            o.store = operand();
        } else if (arg == "--models") {
            o.models_option = operand();
        } else if (arg == "--host-key") {
            o.host_key = operand();
        } else if (arg == "--user") {
            o.user = operand();
        } else if (arg == "--password") {
            o.password = operand();
        } else {
            throw UsageError("unknown argument " + std::string(arg));
        }
    }
    if (o.port == 0 || o.store.empty()) {
        throw UsageError("--port and --store are required");
    }
    auto models = ocsysmap::yang::models_dir(o.models_option);
    if (!models) {
        throw UsageError("--models (or OCSYSMAP_MODELS) is required");
    }
    o.models = *models;
    if (o.host_key.empty()) {
        o.host_key = o.store;
        o.host_key += ".host-key";
    }
    return o;
}

// ---- libyang context --------------------------------------------------------

struct CtxFree {
    void operator()(ly_ctx *ctx) const { ly_ctx_destroy(ctx); }
};
using Context = std::unique_ptr<ly_ctx, CtxFree>;

void load_module(ly_ctx *ctx, std::string_view yang) {
    ly_in *in = nullptr;
    const std::string text(yang);
    const char *features[] = {"*", nullptr};
    lys_module *module = nullptr;
    const bool loaded = ly_in_new_memory(text.c_str(), &in) == LY_SUCCESS &&
                        lys_parse(ctx, in, LYS_IN_YANG, features, &module) == LY_SUCCESS;
    ly_in_free(in, 0);
    if (!loaded) {
        throw std::runtime_error("cannot load the protocol operations");
    }
}

// The protocol's own context: the operations and nothing else, so that the
// data models keep their context to themselves.
Context protocol_context() {
    ly_ctx *raw = nullptr;
    if (ly_ctx_new(nullptr, LY_CTX_DISABLE_SEARCHDIRS, &raw) != LY_SUCCESS) {
        throw std::runtime_error("cannot make a YANG context");
    }
    Context ctx(raw);
    load_module(ctx.get(), ocsysmapd::kNetconfModule);
    load_module(ctx.get(), ocsysmapd::kMonitoringModule);
    load_module(ctx.get(), ocsysmapd::oper::kEventsModule);
    return ctx;
}

// Each module of the models' context with its revision, as a capability of
// the server: the OpenConfig modules, naming the device's deviations of them,
// the device's own, and the modules they import (so that a client can fetch
// each with get-schema). The protocol context advertises its own.
void advertise(ly_ctx *models, const ly_ctx *protocol) {
    uint32_t index = 0;
    while (const lys_module *m = ly_ctx_get_module_iter(models, &index)) {
        if (ly_ctx_get_module_latest(protocol, m->name) != nullptr) {
            continue;
        }
        std::string capability = std::string(m->ns) + "?module=" + m->name;
        if (m->revision != nullptr) {
            capability += std::string("&revision=") + m->revision;
        }
        LY_ARRAY_COUNT_TYPE i;
        LY_ARRAY_FOR(m->deviated_by, i) {
            capability += (i == 0 ? "&deviations=" : ",") + std::string(m->deviated_by[i]->name);
        }
        nc_server_set_capability(capability.c_str());
    }
}

// ---- SSH ----------------------------------------------------------------------

void ensure_host_key(const std::filesystem::path &path) {
    std::error_code ec;
    if (std::filesystem::exists(path, ec)) {
        return;
    }
    ssh_key key = nullptr;
    if (ssh_pki_generate(SSH_KEYTYPE_ECDSA_P256, 0, &key) != SSH_OK) {
        throw std::runtime_error("cannot generate a host key");
    }
    const int rc = ssh_pki_export_privkey_file(key, nullptr, nullptr, nullptr, path.c_str());
    ssh_key_free(key);
    if (rc != SSH_OK) {
        throw std::runtime_error("cannot write the host key " + path.string());
    }
    // A private key is for the server's eyes only.
    std::filesystem::permissions(path, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::owner_write);
}

int host_key_path(const char *, void *user_data, char **privkey_path, char **, NC_SSH_KEY_TYPE *) {
    *privkey_path = strdup(static_cast<const std::filesystem::path *>(user_data)->c_str());
    return *privkey_path == nullptr ? 1 : 0;
}

struct Login {
    std::string user;
    std::string password;
};

int check_password(const nc_session *session, const char *password, void *user_data) {
    const auto *login = static_cast<const Login *>(user_data);
    const char *user = nc_session_get_username(session);
    return user != nullptr && login->user == user && login->password == password ? 0 : 1;
}

// ---- The operations -------------------------------------------------------------

// The device, its context and the one lock of the running datastore.
struct Server {
    ly_ctx *ctx = nullptr;
    ly_ctx *models = nullptr;
    Device *device = nullptr;
    ocsysmapd::oper::Events *events = nullptr;
    uint32_t lock_holder = 0;
};
Server g_server;

volatile std::sig_atomic_t g_stop = 0;
extern "C" void stop_on_signal(int) {
    g_stop = 1;
}

struct ErrTag {
    std::string_view name;
    NC_ERR err;
};

// The NETCONF error-tags the device answers with.
constexpr std::array<ErrTag, 10> kErrTags{{
    {"in-use", NC_ERR_IN_USE},
    {"invalid-value", NC_ERR_INVALID_VALUE},
    {"missing-element", NC_ERR_MISSING_ELEM},
    {"bad-element", NC_ERR_BAD_ELEM},
    {"unknown-element", NC_ERR_UNKNOWN_ELEM},
    {"data-exists", NC_ERR_DATA_EXISTS},
    {"data-missing", NC_ERR_DATA_MISSING},
    {"operation-not-supported", NC_ERR_OP_NOT_SUPPORTED},
    {"operation-failed", NC_ERR_OP_FAILED},
    {"malformed-message", NC_ERR_MALFORMED_MSG},
}};

nc_server_reply *error_reply(const Failure &f) {
    NC_ERR tag = NC_ERR_OP_FAILED;
    for (const ErrTag &row : kErrTags) {
        if (row.name == f.tag) {
            tag = row.err;
        }
    }
    const char *element = f.element.c_str();
    lyd_node *err = nullptr;
    switch (tag) {
    case NC_ERR_MISSING_ELEM:
    case NC_ERR_BAD_ELEM:
    case NC_ERR_UNKNOWN_ELEM:
        err = nc_err(g_server.ctx, tag, NC_ERR_TYPE_APP, element);
        break;
    case NC_ERR_DATA_EXISTS:
    case NC_ERR_DATA_MISSING:
    case NC_ERR_MALFORMED_MSG:
        err = nc_err(g_server.ctx, tag);
        break;
    default:
        err = nc_err(g_server.ctx, tag, NC_ERR_TYPE_APP);
        break;
    }
    if (err == nullptr) {
        return nullptr;
    }
    nc_err_set_msg(err, f.message.c_str(), "en");
    if (!f.path.empty()) {
        nc_err_set_path(err, f.path.c_str());
    }
    if (!f.app_tag.empty()) {
        nc_err_set_app_tag(err, f.app_tag.c_str());
    }
    return nc_server_reply_err(err);
}

nc_server_reply *simple_error(NC_ERR tag, std::string_view message) {
    lyd_node *err = nc_err(g_server.ctx, tag, NC_ERR_TYPE_PROT);
    if (err != nullptr) {
        nc_err_set_msg(err, std::string(message).c_str(), "en");
    }
    return err != nullptr ? nc_server_reply_err(err) : nullptr;
}

const lyd_node *child_of(const lyd_node *rpc, std::string_view name) {
    for (const lyd_node *c = lyd_child(rpc); c != nullptr; c = c->next) {
        if (c->schema != nullptr && name == c->schema->name) {
            return c;
        }
    }
    return nullptr;
}

std::string_view leaf_text(const lyd_node *rpc, std::string_view name) {
    const lyd_node *leaf = child_of(rpc, name);
    return leaf != nullptr ? std::string_view(lyd_get_value(leaf)) : std::string_view{};
}

// The content of an anyxml node as XML text; none when it is absent.
std::optional<std::string> any_text(const lyd_node *rpc, std::string_view name) {
    const lyd_node *any = child_of(rpc, name);
    if (any == nullptr) {
        return std::nullopt;
    }
    char *text = nullptr;
    if (lyd_any_value_str(any, &text) != LY_SUCCESS) {
        return std::string();
    }
    std::string out = text != nullptr ? text : "";
    std::free(text);
    return out;
}

// Several roots go to the parser inside one wrapper.
std::string wrapped(std::string_view wrapper, std::string_view content) {
    const std::string_view ns = ocsysmap::detail::kNetconfNs;
    std::string out;
    out.append("<").append(wrapper).append(" xmlns=\"").append(ns);
    out.append("\" xmlns:nc=\"").append(ns).append("\">").append(content);
    out.append("</").append(wrapper).append(">");
    return out;
}

// The rpc's reply with `data` as its one output node.
nc_server_reply *data_reply(lyd_node *rpc, const std::string &data, LYD_ANYDATA_VALUETYPE type) {
    lyd_node *reply = nullptr;
    if (lyd_dup_single(rpc, nullptr, 0, &reply) != LY_SUCCESS ||
        lyd_new_any(reply, nullptr, "data", data.c_str(), 0, type, 1, nullptr) != LY_SUCCESS) {
        lyd_free_tree(reply);
        return simple_error(NC_ERR_OP_FAILED, "cannot build the reply");
    }
    return nc_server_reply_data(reply, NC_WD_EXPLICIT, NC_PARAMTYPE_FREE);
}

// The schemas that get-schema serves (RFC 6022), submodules included, for
// clients that learn them from /netconf-state/schemas rather than the hello.
std::string schemas_xml() {
    std::string out =
        "<netconf-state xmlns=\"urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring\">"
        "<schemas>";
    std::set<std::string> listed;
    auto entry = [&](const char *name, const char *revision, const char *ns) {
        const std::string version = revision != nullptr ? revision : "";
        if (!listed.insert(std::string(name) + "@" + version).second) {
            return;
        }
        out.append("<schema><identifier>").append(name).append("</identifier><version>");
        out.append(version).append("</version><format>yang</format><namespace>").append(ns);
        out.append("</namespace><location>NETCONF</location></schema>");
    };
    for (const ly_ctx *ctx : {g_server.models, g_server.ctx}) {
        uint32_t index = 0;
        while (const lys_module *m = ly_ctx_get_module_iter(ctx, &index)) {
            entry(m->name, m->revision, m->ns);
            const lysp_include *includes = m->parsed != nullptr ? m->parsed->includes : nullptr;
            LY_ARRAY_COUNT_TYPE i;
            LY_ARRAY_FOR(includes, i) {
                const lysp_submodule *sub = includes[i].submodule;
                if (sub != nullptr) {
                    entry(sub->name, LY_ARRAY_COUNT(sub->revs) > 0 ? sub->revs[0].date : nullptr,
                          m->ns);
                }
            }
        }
    }
    return out + "</schemas></netconf-state>";
}

nc_server_reply *read_reply(lyd_node *rpc, uint32_t kind) {
    std::optional<std::string> filter = any_text(rpc, "filter");
    std::string data;
    std::optional<std::string> wrapped_filter;
    if (filter && !filter->empty()) {
        wrapped_filter = wrapped("filter", *filter);
    }
    if (auto failed = g_server.device->read(kind, wrapped_filter, data)) {
        return error_reply(*failed);
    }
    if (kind == KIND_GET &&
        (!wrapped_filter || filter->find("netconf-state") != std::string::npos)) {
        data += schemas_xml();
    }
    return data_reply(rpc, data, LYD_ANYDATA_XML);
}

// The text of a module: the device's own as compiled in, a published one as
// its file holds it, a protocol module as the server's context prints it.
std::optional<std::string> schema_text(const std::string &name, const std::string &version) {
    for (const ocsysmap::yang::DeviceModule &m : ocsysmap::yang::device_modules()) {
        if (!m.text.empty() && m.name == name && (version.empty() || m.revision == version)) {
            return std::string(m.text);
        }
    }
    for (const ly_ctx *ctx : {g_server.models, g_server.ctx}) {
        const lys_module *m = version.empty()
                                  ? ly_ctx_get_module_latest(ctx, name.c_str())
                                  : ly_ctx_get_module(ctx, name.c_str(), version.c_str());
        const lysp_submodule *sub = m != nullptr ? nullptr
                                    : version.empty()
                                        ? ly_ctx_get_submodule_latest(ctx, name.c_str())
                                        : ly_ctx_get_submodule(ctx, name.c_str(), version.c_str());
        const char *file = m != nullptr ? m->filepath : sub != nullptr ? sub->filepath : nullptr;
        if (file != nullptr) {
            std::ifstream in(file);
            return std::string{std::istreambuf_iterator<char>(in),
                               std::istreambuf_iterator<char>()};
        }
        if (m == nullptr) {
            continue;
        }
        char *text = nullptr;
        if (lys_print_mem(&text, m, LYS_OUT_YANG, 0) != LY_SUCCESS) {
            return std::nullopt;
        }
        std::string out(text);
        std::free(text);
        return out;
    }
    return std::nullopt;
}

nc_server_reply *schema_reply(lyd_node *rpc) {
    const std::string_view format = leaf_text(rpc, "format");
    if (!format.empty() && !format.ends_with("yang")) {
        return simple_error(NC_ERR_INVALID_VALUE, "the modules are offered as YANG alone");
    }
    const std::string name(leaf_text(rpc, "identifier"));
    const std::optional<std::string> text =
        schema_text(name, std::string(leaf_text(rpc, "version")));
    if (!text) {
        return simple_error(NC_ERR_INVALID_VALUE, "no module " + name + " of that version");
    }
    return data_reply(rpc, *text, LYD_ANYDATA_STRING);
}

nc_server_reply *edit_reply(lyd_node *rpc, uint32_t session_id) {
    if (g_server.lock_holder != 0 && g_server.lock_holder != session_id) {
        return simple_error(NC_ERR_IN_USE, "the running datastore is locked by another session");
    }
    if (leaf_text(rpc, "error-option") == "continue-on-error") {
        return simple_error(
            NC_ERR_OP_NOT_SUPPORTED,
            "an edit applies whole or not at all: continue-on-error is not offered");
    }
    EditOptions options;
    const std::string_view default_op = leaf_text(rpc, "default-operation");
    options.default_operation = default_op == "replace" ? EditDefault::replace
                                : default_op == "none"  ? EditDefault::none
                                                        : EditDefault::merge;
    options.test_only = leaf_text(rpc, "test-option") == "test-only";
    const std::string config = wrapped("config", any_text(rpc, "config").value_or(""));
    if (auto failed = g_server.device->edit(config, options)) {
        return error_reply(*failed);
    }
    return nc_server_reply_ok();
}

nc_server_reply *lock_reply(bool lock, uint32_t session_id) {
    if (lock) {
        if (g_server.lock_holder != 0) {
            lyd_node *err = nc_err(g_server.ctx, NC_ERR_LOCK_DENIED, g_server.lock_holder);
            return err != nullptr ? nc_server_reply_err(err) : nullptr;
        }
        g_server.lock_holder = session_id;
        return nc_server_reply_ok();
    }
    if (g_server.lock_holder != session_id) {
        return simple_error(NC_ERR_OP_FAILED,
                            "this session holds no lock of the running datastore");
    }
    g_server.lock_holder = 0;
    return nc_server_reply_ok();
}

// The person testing raises and clears alarms and logs messages.
nc_server_reply *event_reply(lyd_node *rpc, std::string_view name) {
    auto text = [rpc](std::string_view leaf) { return std::string(leaf_text(rpc, leaf)); };
    using namespace ocsysmapd::oper;
    try {
        if (name == "raise-alarm") {
            g_server.events->raise(Alarm{text("id"), text("resource"), text("text"),
                                         text("severity"), text("type-id"), 0});
        } else if (name == "clear-alarm") {
            g_server.events->clear(text("id"));
        } else {
            Message m{text("msg"), std::nullopt, text("app-name"), text("procid"), text("msgid")};
            if (const std::string priority = text("priority"); !priority.empty()) {
                m.priority = static_cast<uint8_t>(std::stoul(priority));
            }
            g_server.events->log(std::move(m));
        }
    } catch (const EventError &e) {
        return error_reply(Failure{e.tag, {}, {}, {}, e.what()});
    }
    return nc_server_reply_ok();
}

nc_server_reply *serve(lyd_node *rpc, nc_session *session) {
    const std::string_view name = rpc->schema != nullptr ? rpc->schema->name : "";
    const uint32_t sid = nc_session_get_id(session);
    try {
        if (name == "get-config") {
            return read_reply(rpc, KIND_GET_CONFIG);
        }
        if (name == "get") {
            return read_reply(rpc, KIND_GET);
        }
        if (name == "edit-config") {
            return edit_reply(rpc, sid);
        }
        if (name == "lock" || name == "unlock") {
            return lock_reply(name == "lock", sid);
        }
        if (name == "close-session") {
            return nc_server_reply_ok();
        }
        if (name == "get-schema") {
            return schema_reply(rpc);
        }
        if (name == "raise-alarm" || name == "clear-alarm" || name == "log-message") {
            return event_reply(rpc, name);
        }
    } catch (const std::exception &e) {
        return simple_error(NC_ERR_OP_FAILED, e.what());
    }
    return simple_error(NC_ERR_OP_NOT_SUPPORTED, "this operation is not offered");
}

void end_session(nc_pollsession *ps, nc_session *session) {
    if (g_server.lock_holder == nc_session_get_id(session)) {
        g_server.lock_holder = 0;
    }
    nc_ps_del_session(ps, session);
    nc_session_free(session, nullptr);
}

// The configuration as get-config answers it, which state mirrors. When the
// whole answer fails, each subtree is read alone, so that one that fails
// leaves the others' state.
ocsysmapd::Forest configuration_of(Device &device) {
    std::string data;
    if (!device.read(KIND_GET_CONFIG, std::nullopt, data)) {
        return ocsysmapd::oper::parse_config(data);
    }
    ocsysmapd::Forest config;
    for (std::string_view area :
         {"config", "clock", "dns", "ntp", "messages", "telnet-server", "aaa"}) {
        const std::string filter =
            wrapped("filter", "<system xmlns=\"http://openconfig.net/yang/system\"><" +
                                  std::string(area) + "/></system>");
        if (!device.read(KIND_GET_CONFIG, filter, data)) {
            for (ocsysmapd::Node &root : ocsysmapd::oper::parse_config(data)) {
                if (config.empty()) {
                    config.push_back(std::move(root));
                } else {
                    std::move(root.children.begin(), root.children.end(),
                              std::back_inserter(config.front().children));
                }
            }
        }
    }
    return config;
}

void run(const Options &options, std::span<const yfw_map_reg_mod_t> trees) {
    const ocsysmap::yang::Models models(options.models);
    Context ctx = protocol_context();
    Device device(trees, models, ocsysmapd::StoreFile(options.store));
    ocsysmapd::oper::OperState oper;
    device.set_operational([&device, &oper] { return oper.build(configuration_of(device)); });
    ensure_host_key(options.host_key);
    ocsysmapd::check_private(options.host_key, "the host key");
    g_server = {ctx.get(), models.context(), &device, &oper.events(), 0};

    if (nc_server_init(ctx.get()) != 0) {
        throw std::runtime_error("cannot start the NETCONF server");
    }
    // The server's own get-schema knows its context alone; the device's serves
    // the models too (the callback of a schema node goes before the global one).
    if (const lysc_node *get_schema =
            lys_find_path(ctx.get(), nullptr, "/ietf-netconf-monitoring:get-schema", 0)) {
        const_cast<lysc_node *>(get_schema)->priv = nullptr;
    }
    advertise(models.context(), ctx.get());
    Login login{options.user, options.password};
    nc_set_global_rpc_clb(serve);
    nc_server_ssh_set_hostkey_clb(host_key_path,
                                  const_cast<std::filesystem::path *>(&options.host_key), nullptr);
    nc_server_ssh_set_passwd_auth_clb(check_password, &login, nullptr);
    if (nc_server_add_endpt(kEndpoint, NC_TI_LIBSSH) != 0 ||
        nc_server_ssh_endpt_add_hostkey(kEndpoint, "host-key", -1) != 0 ||
        nc_server_ssh_endpt_set_auth_methods(kEndpoint, NC_SSH_AUTH_PASSWORD) != 0 ||
        nc_server_endpt_set_address(kEndpoint, "127.0.0.1") != 0 ||
        nc_server_endpt_set_port(kEndpoint, options.port) != 0) {
        nc_server_destroy();
        throw std::runtime_error("cannot listen on 127.0.0.1:" + std::to_string(options.port));
    }
    std::cout << "ocsysmapd: listening on 127.0.0.1:" << options.port << std::endl;

    nc_pollsession *ps = nc_ps_new();
    while (g_stop == 0) {
        nc_session *session = nullptr;
        if (nc_accept(nc_ps_session_count(ps) == 0 ? 200 : 0, &session) == NC_MSG_HELLO) {
            nc_ps_add_session(ps, session);
        }
        session = nullptr;
        const int polled = nc_ps_poll(ps, 20, &session);
        if ((polled & (NC_PSPOLL_SESSION_TERM | NC_PSPOLL_SESSION_ERROR)) != 0 &&
            session != nullptr) {
            end_session(ps, session);
        } else if ((polled & NC_PSPOLL_SSH_CHANNEL) != 0) {
            nc_session *channel = nullptr;
            if (nc_ps_accept_ssh_channel(ps, &channel) == NC_MSG_HELLO) {
                nc_ps_add_session(ps, channel);
            }
        }
    }
    nc_ps_clear(ps, 1, nullptr);
    nc_ps_free(ps);
    nc_server_destroy();
}

} // namespace

int main(int argc, char **argv) {
    Options options;
    try {
        options =
            parse_options(std::span<char *const>(argv + 1, static_cast<std::size_t>(argc - 1)));
    } catch (const UsageError &e) {
        std::cerr << "ocsysmapd: " << e.what() << '\n' << kUsage;
        return 2;
    }
    if (options.info != Options::Info::None) {
        std::cout << (options.info == Options::Info::Help ? kUsage
                                                          : "ocsysmapd " OCSYSTEM_MAP_VERSION "\n");
        return std::cout.flush() ? 0 : 2;
    }
    std::signal(SIGTERM, stop_on_signal);
    std::signal(SIGINT, stop_on_signal);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        if (yfw_ocsystem_init() != YFW_SUCCESS) {
            std::cerr << "ocsysmapd: the mapping library did not load\n";
            return 2;
        }
        run(options, ocsysmap::registered_trees());
        yfw_ocsystem_cleanup();
    } catch (const std::exception &e) {
        std::cerr << "ocsysmapd: " << e.what() << '\n';
        return 2;
    }
    return 0;
}
