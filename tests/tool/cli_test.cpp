// The ocsysmap command line through run(), with walkers of the test's own.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "ocsysmap_cli.hpp"
#include "qv_platform.h"
#include "yfw_map_trace.h"

namespace ocsysmap {
namespace {

#define OC "http://openconfig.net/yang/system"
#define SHELL "http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg"

// What the walkers saw, reset by each run.
struct Seen {
    int calls = 0;
    uint32_t kind = 0;
    bool oper_only = false;
};
Seen seen;

cerrno add(yfw_map_ctx *ctx, tidl_yfw_datatree *out, const char *path, const char *ns,
           const char *value) {
    return yfw_map_datatree_add_path_flagged(ctx, out, path, ns, value, nullptr, nullptr, 0, 0);
}

// The OpenConfig walker writes a fixed native leaf.
cerrno oc_walker(yfw_map_ctx *ctx, tidl_yfw_datatree *, tidl_yfw_datatree *out) {
    ++seen.calls;
    seen.kind = ctx->state->request->request_kind;
    seen.oper_only = oper_only(ctx);
    YFW_MAP_TRC(ctx, "oc_walker", "Start");
    return add(ctx, out, "/host-names/host-name", SHELL, "from-oc");
}

// The native walker copies the value of its first child, absent or not.
cerrno native_walker(yfw_map_ctx *ctx, tidl_yfw_datatree *in, tidl_yfw_datatree *out) {
    ++seen.calls;
    const tidl_yfw_datatree &leaf = in->subtrees[0];
    return add(ctx, out, "/system/config/hostname", OC, leaf.present_value ? leaf.value : nullptr);
}

// Fails after writing a leaf; a refused value also leaves the error fields.
template <cerrno status>
cerrno failing_walker(yfw_map_ctx *ctx, tidl_yfw_datatree *in, tidl_yfw_datatree *out) {
    ++seen.calls;
    add(ctx, out, "/system/config/hostname", OC, "partial");
    if constexpr (status == YFW_ERR_BAD_VALUE) {
        ctx->state->error_tag = yfw_strdup("hostname", YFW_MAP_ALLOC_LABEL);
        ctx->state->error_message = yfw_strdup("Invalid host name", YFW_MAP_ALLOC_LABEL);
        yfw_map_add_to_node_hierarchy(ctx, in, YFW_MAP_HIER_CONTAINER);
        yfw_oc_error_path(ctx);
        yfw_map_remove_from_node_hierarchy(ctx, in);
    }
    return status;
}

// A leaf with both a value and a child, which XML cannot print.
cerrno mixed_walker(yfw_map_ctx *ctx, tidl_yfw_datatree *, tidl_yfw_datatree *out) {
    add(ctx, out, "/system/config", OC, "v");
    return add(ctx, out, "/system/config/hostname", OC, "h");
}

// Reads the gRPC server name the way the library does: probe, bind, get.
cerrno sysdb_walker(yfw_map_ctx *ctx, tidl_yfw_datatree *, tidl_yfw_datatree *out) {
    std::string name = "no database";
    sysdb_connection *conn = nullptr;
    if (access("/pkg/lib/libsysdb.so", R_OK) == 0 && _sysdb_bind(&conn, "/cfg/gl/ems/", 0) == 0) {
        uint32_t type = SYSDB_TYPE_STRING, size = 0;
        void *value = nullptr;
        name = "no item";
        if (sysdb_item_get(conn, "ord_A/grpc/name", &type, &value, &size, 0) == 0) {
            name.assign(static_cast<char *>(value), size);
            std::free(value);
        }
        _sysdb_unbind(conn);
    }
    return add(ctx, out, "/grpc/name", SHELL, name.c_str());
}

yfw_map_reg_mod_t tree(yfw_map_walker_fn oc, yfw_map_walker_fn native) {
    yfw_map_reg_mod_t t{};
    std::snprintf(t.native_namespace, sizeof t.native_namespace, "%s", SHELL);
    std::snprintf(t.native_root, sizeof t.native_root, "%s", "host-names");
    std::snprintf(t.oc_namespace, sizeof t.oc_namespace, "%s", OC);
    std::snprintf(t.oc_root, sizeof t.oc_root, "%s", "system");
    t.oc_to_native = oc;
    t.native_to_oc = native;
    return t;
}

const char *const kOcGet = R"(<system xmlns=")" OC R"("><config><hostname/></config></system>)";
const char *const kBoth = R"(<data><system xmlns=")" OC R"("/><host-names xmlns=")" SHELL
                          R"("><host-name>r1</host-name></host-names></data>)";
const char *const kSuccess = "status: YFW_SUCCESS (0x00000000)\n";

struct Result {
    int rc;
    std::string out;
    std::string err;
};

Result run_tool(std::vector<std::string_view> args, const std::string &stdin_text = kOcGet,
                std::vector<yfw_map_reg_mod_t> trees = {tree(oc_walker, native_walker)}) {
    seen = {};
    std::istringstream in(stdin_text);
    std::ostringstream out, err;
    int rc = run(args, in, out, err, trees);
    return {rc, out.str(), err.str()};
}

TEST(Cli, MapsSeveralRootsIntoOneOutput) {
    Result r = run_tool({"map", "--oper-only", "--kind", "10", "-"}, kBoth);
    EXPECT_EQ(r.rc, 0) << r.err;
    EXPECT_EQ(seen.calls, 2);
    EXPECT_EQ(seen.kind, KIND_GET);
    EXPECT_TRUE(seen.oper_only);
    EXPECT_EQ(r.out, "/Tarvex-QV-shellutil-cfg:host-names\n"
                     "/Tarvex-QV-shellutil-cfg:host-names/host-name = \"from-oc\"\n"
                     "/openconfig-system:system\n"
                     "/openconfig-system:system/config\n"
                     "/openconfig-system:system/config/hostname = \"r1\"\n");
    EXPECT_EQ(r.err, kSuccess);
}

TEST(Cli, ReportsTheStatusAndTheErrorFields) {
    Result r = run_tool({"map", "--kind", "edit-a", "-"}, kBoth,
                        {tree(failing_walker<YFW_ERR_BAD_VALUE>, native_walker)});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(seen.calls, 1) << "the second root is not mapped after a failure";
    EXPECT_EQ(r.out, "/openconfig-system:system\n"
                     "/openconfig-system:system/config\n"
                     "/openconfig-system:system/config/hostname = \"partial\"\n");
    const std::string head = "status: YFW_ERR_BAD_VALUE (0xaaf2f400)\n"
                             "error-tag: hostname\n"
                             "error-message: Invalid host name\n"
                             "error-path: /openconfig-system:system";
    EXPECT_EQ(r.err.substr(0, head.size()), head);

    r = run_tool({"map", "--kind", "get", "-"}, kOcGet, {tree(failing_walker<0x12345678u>, {})});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(r.err, "status: 0x12345678\n");
    r = run_tool({"map", "--kind", "get", "-"}, kOcGet, {tree(failing_walker<0xffffffffu>, {})});
    EXPECT_EQ(r.err, "status: REFUSED (0xffffffff)\n");
    r = run_tool({"map", "--kind", "get", "-"}, kOcGet,
                 {tree(failing_walker<YFW_MAP_SKIP_NODE>, {})});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(r.err, "status: YFW_MAP_SKIP_NODE (0xaaf2f600)\n");
}

TEST(Cli, TraceWritesBothSinksBeforeTheStatus) {
    Result r = run_tool({"map", "--trace", "--kind", "edit-c", "-"});
    EXPECT_EQ(r.rc, 0);
    EXPECT_EQ(seen.kind, KIND_EDIT_C);
    EXPECT_FALSE(seen.oper_only);
    auto debug = r.err.find("TRC: YFW: ctx=");
    auto ring = r.err.find(": TRC: oc_walker:");
    auto status = r.err.find(kSuccess);
    EXPECT_LT(debug, ring) << r.err;
    EXPECT_LT(ring, status) << r.err;
    EXPECT_EQ(r.err.substr(status), kSuccess);
    EXPECT_EQ(run_tool({"map", "--kind", "get", "-"}).err, kSuccess);
}

TEST(Cli, PrintsTheOutputInTheChosenFormat) {
    EXPECT_EQ(run_tool({"map", "--kind", "get", "--format", "xml", "-"}).out,
              "<host-names xmlns=\"" SHELL
              "\">\n  <host-name>from-oc</host-name>\n</host-names>\n");
    EXPECT_TRUE(run_tool({"map", "--format", "json", "--kind", "get", "-"})
                    .out.starts_with("[\n  {\n    \"tag\": \"host-names\",\n"));
}

TEST(Cli, SysdbItemsAndPresence) {
    const std::pair<std::vector<std::string_view>, std::string_view> cases[] = {
        {{}, "= \"no database\"\n"},
        {{"--sysdb", "/cfg/gl/ems/ord_A/grpc/running="}, "= \"no item\"\n"},
        {{"--sysdb", "/cfg/gl/ems/ord_A/grpc/name=grpc-a"}, "= \"grpc-a\"\n"},
        {{"--sysdb", "/cfg/gl/ems/ord_A/grpc/name="}, "= \"\"\n"},
        {{"--sysdb", "/cfg/gl/ems/ord_A/grpc/name=a", "--sysdb", "/cfg/gl/ems/ord_A/grpc/name=b=c"},
         "= \"b=c\"\n"},
    };
    for (const auto &[items, ending] : cases) {
        std::vector<std::string_view> args{"map", "--kind", "edit-a", "-"};
        args.insert(args.begin() + 1, items.begin(), items.end());
        Result r = run_tool(args, kOcGet, {tree(sysdb_walker, {})});
        EXPECT_TRUE(r.out.ends_with(ending)) << r.out;
    }
    EXPECT_NE(access("/pkg/lib/libsysdb.so", R_OK), 0) << "the database outlived the command";
}

TEST(Cli, UsageAndInputErrorsPrintNothingOnStandardOutput) {
    const std::string dir = std::filesystem::temp_directory_path().string();
    struct Case {
        std::vector<std::string_view> args;
        std::string stdin_text;
        std::string message;
    };
    const Case cases[] = {
        {{}, "", "ocsysmap: a command is required\nusage: "},
        {{"map", "-", "--kind"}, kOcGet, "--kind needs a value\nusage: "},
        {{"map", "--kind", "get", "--sysdb", "name", "-"}, kOcGet, "not \"name\"\nusage: "},
        {{"map", "--kind", "get", "--sysdb", "cfg/a=1", "-"}, kOcGet, "PATH=VALUE with a full"},
        {{"map", "--kind", "get", "/nonexistent/in.xml"}, "", "/nonexistent/in.xml: No such file"},
        {{"map", "--kind", "get", dir}, "", dir + ": is a directory"},
        {{"map", "--kind", "get", "-"}, "<system>", "ocsysmap: standard input: XML line 1: "},
        {{"map", "--kind", "get", "-"},
         "<ocsystem xmlns=\"urn:nowhere\"/>",
         "ocsysmap: no tree is registered for the root \"ocsystem\" in namespace "
         "\"urn:nowhere\"\n"},
    };
    for (const Case &c : cases) {
        Result r = run_tool(c.args, c.stdin_text);
        EXPECT_EQ(r.rc, 2) << c.message;
        EXPECT_EQ(r.out, "") << c.message;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_EQ(seen.calls, 0) << c.message;
    }
}

TEST(Cli, AnOutputTheFormatCannotHoldIsAnError) {
    Result r = run_tool({"map", "--kind", "get", "--format", "xml", "-"}, kOcGet,
                        {tree(mixed_walker, {})});
    EXPECT_EQ(r.rc, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("ocsysmap: the output tree has no xml form: "), std::string::npos);
    EXPECT_EQ(r.err.substr(r.err.rfind("status:")), kSuccess);
}

} // namespace
} // namespace ocsysmap
