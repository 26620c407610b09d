// The ocsysmap command line through run(), with walkers of the test's own.
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ocsysmap_cli.hpp"
#include "yfw/standin.hpp"
#include "yfw_map_trace.h"

namespace ocsysmap {
namespace {

#define OC "http://openconfig.net/yang/system"
#define SHELL "http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg"

// What the walkers saw, reset by each test.
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

// Fails the way a mapper refusing a value does, after writing a leaf.
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
const char *const kNative = R"(<host-names xmlns=")" SHELL R"("><host-name/></host-names>)";
const char *const kBoth = R"(<data><system xmlns=")" OC R"("/><host-names xmlns=")" SHELL
                          R"("><host-name>r1</host-name></host-names></data>)";

struct Result {
    int rc;
    std::string out;
    std::string err;
};

Result run_tool(std::vector<std::string_view> args, const std::string &stdin_text = "",
                std::vector<yfw_map_reg_mod_t> trees = {tree(oc_walker, native_walker)}) {
    seen = {};
    std::istringstream in(stdin_text);
    std::ostringstream out, err;
    int rc = run(args, in, out, err, trees);
    return {rc, out.str(), err.str()};
}

TEST(Cli, MapsSeveralRootsIntoOneOutput) {
    Result r = run_tool({"map", "--kind", "get", "-"}, kBoth);
    EXPECT_EQ(r.rc, 0) << r.err;
    EXPECT_EQ(seen.calls, 2);
    EXPECT_EQ(r.out, "/Tarvex-QV-shellutil-cfg:host-names\n"
                     "/Tarvex-QV-shellutil-cfg:host-names/host-name = \"from-oc\"\n"
                     "/openconfig-system:system\n"
                     "/openconfig-system:system/config\n"
                     "/openconfig-system:system/config/hostname = \"r1\"\n");
    EXPECT_EQ(r.err, "status: YFW_SUCCESS (0x00000000)\n");
}

TEST(Cli, EmptyElementsSelectOnlyInReadKinds) {
    EXPECT_EQ(run_tool({"map", "--kind", "get-config", "-"}, kNative).out.find(" = "),
              std::string::npos);
    EXPECT_NE(run_tool({"map", "--kind", "edit-b", "-"}, kNative).out.find("hostname = \"\""),
              std::string::npos);
}

TEST(Cli, KindsAndOperOnlyReachTheContext) {
    const std::pair<std::string_view, uint32_t> kinds[] = {
        {"get-config", 0}, {"get", 10}, {"edit-a", 1}, {"edit-b", 8}, {"edit-c", 15}, {"3", 3}};
    for (const auto &[word, kind] : kinds) {
        Result r = run_tool({"map", "--kind", word, "-"}, kOcGet);
        EXPECT_EQ(r.rc, 0) << word;
        EXPECT_EQ(seen.kind, kind) << word;
        EXPECT_FALSE(seen.oper_only) << word;
    }
    EXPECT_EQ(run_tool({"map", "--oper-only", "--kind", "get", "-"}, kOcGet).rc, 0);
    EXPECT_TRUE(seen.oper_only);
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

    r = run_tool({"map", "--kind", "get", "-"}, kOcGet, {tree(failing_walker<0xffffffffu>, {})});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(r.err, "status: 0xffffffff\n");

    r = run_tool({"map", "--kind", "get", "-"}, kOcGet,
                 {tree(failing_walker<YFW_MAP_SKIP_NODE>, {})});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(r.err, "status: YFW_MAP_SKIP_NODE (0xaaf2f600)\n");
}

TEST(Cli, TraceWritesBothSinksBeforeTheStatus) {
    Result r = run_tool({"map", "--trace", "--kind", "get", "-"}, kOcGet);
    EXPECT_EQ(r.rc, 0);
    auto debug = r.err.find("TRC: YFW: ctx=");
    auto ring = r.err.find(": TRC: oc_walker:");
    auto status = r.err.find("status: YFW_SUCCESS");
    EXPECT_NE(debug, std::string::npos) << r.err;
    EXPECT_NE(ring, std::string::npos) << r.err;
    EXPECT_LT(debug, ring);
    EXPECT_LT(ring, status);
    EXPECT_EQ(r.err.substr(status), "status: YFW_SUCCESS (0x00000000)\n");

    EXPECT_EQ(run_tool({"map", "--kind", "get", "-"}, kOcGet).err,
              "status: YFW_SUCCESS (0x00000000)\n");
}

TEST(Cli, PrintsTheOutputInTheChosenFormat) {
    EXPECT_EQ(run_tool({"map", "--kind", "get", "--format", "xml", "-"}, kOcGet).out,
              "<host-names xmlns=\"" SHELL
              "\">\n  <host-name>from-oc</host-name>\n</host-names>\n");
    EXPECT_EQ(run_tool({"map", "--format", "json", "--kind", "get", "-"}, kOcGet).out,
              R"([
  {
    "tag": "host-names",
    "module": "Tarvex-QV-shellutil-cfg",
    "children": [
      {
        "tag": "host-name",
        "value": "from-oc"
      }
    ]
  }
]
)");
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
        {{"frobnicate"}, "", "unknown command frobnicate"},
        {{"modules", "-"}, "", "modules takes no arguments"},
        {{"map", "--kind", "get", "--colour", "-"}, kOcGet, "unknown option --colour"},
        {{"map", "-"}, kOcGet, "--kind is required"},
        {{"map", "-", "--kind"}, kOcGet, "--kind needs a value"},
        {{"map", "--kind", "fetch", "-"}, kOcGet, "unknown kind \"fetch\""},
        {{"map", "--kind", "-1", "-"}, kOcGet, "unknown kind \"-1\""},
        {{"map", "--kind", "get", "--format", "yaml", "-"}, kOcGet, "unknown format \"yaml\""},
        {{"map", "--kind", "get"}, "", "an input file is required"},
        {{"map", "--kind", "get", "-", "-"}, "", "only one input file is taken"},
        {{"map", "--kind", "get", "/nonexistent/in.xml"},
         "",
         "ocsysmap: /nonexistent/in.xml: No such file or directory\n"},
        {{"map", "--kind", "get", dir}, "", dir + ": is a directory"},
        {{"map", "--kind", "get", "-"}, "<system>", "ocsysmap: standard input: XML line 1: "},
        {{"map", "--kind", "get", "-"}, "", "ocsysmap: standard input: the input is empty\n"},
        {{"map", "--kind", "get", "-"},
         "<ocsystem xmlns=\"urn:nowhere\"/>",
         "ocsysmap: no tree is registered for the root \"ocsystem\" in namespace "
         "\"urn:nowhere\"\n"},
        {{"map", "--kind", "get", "-"},
         "{\"tag\": \"system\"}",
         "no tree is registered for the root \"system\" without a namespace\n"},
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
    EXPECT_EQ(r.err.substr(r.err.rfind("status:")), "status: YFW_SUCCESS (0x00000000)\n");
}

TEST(Cli, ListsTheModules) {
    Result r = run_tool({"modules"});
    EXPECT_EQ(r.rc, 0);
    EXPECT_NE(r.out.find("openconfig-system\t" OC "\n"), std::string::npos);
    EXPECT_NE(r.out.find("Tarvex-QV-shellutil-cfg\t" SHELL "\n"), std::string::npos);
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'),
              static_cast<long>(yfw::modules().size()));
}

} // namespace
} // namespace ocsysmap
