// Trace pairs of the frame: both sinks, each on its own, with the unit's name.
#include <dlfcn.h>

#include <cctype>
#include <fstream>
#include <set>

#include "harness.hpp"
#include "registered_trees.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

// True when `line` is `head` + "0x" + hex digits + `tail`: the context pointer
// stands between them.
bool around_pointer(std::string_view line, std::string_view head, std::string_view tail) {
    if (!line.starts_with(head) || !line.ends_with(tail))
        return false;
    std::string_view mid = line.substr(head.size(), line.size() - head.size() - tail.size());
    if (!mid.starts_with("0x") || mid.size() < 3)
        return false;
    for (char c : mid.substr(2))
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
    return true;
}

// A ring line: "#<n>: <word>: <unit>:<line> ctx=0x...,<message>".
bool ring_line(std::string_view line, std::string_view word, std::string_view unit,
               std::string_view message) {
    const std::size_t colon = line.find(": ");
    if (!line.starts_with("#") || colon == std::string_view::npos)
        return false;
    std::string_view rest = line.substr(colon + 2);
    const std::string head = std::string(word) + ": " + std::string(unit) + ":";
    if (!rest.starts_with(head))
        return false;
    rest.remove_prefix(head.size());
    const std::size_t space = rest.find(' ');
    if (space == 0 || space == std::string_view::npos)
        return false;
    return around_pointer(rest.substr(space + 1), "ctx=", "," + std::string(message));
}

const char kResponse[] = "<host-names xmlns=\"http://tarvex.local/ns/yang/"
                         "Tarvex-QV-shellutil-cfg\"><host-name>r1</host-name></host-names>";

TEST(Trace, StartAndEndReachBothSinksInTheirFormats) {
    Request r(KIND_GET_CONFIG);
    r.session().set_debug_log(true);
    r.session().set_ring_trace(true);
    ASSERT_EQ(r.run(&ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames, kResponse), YFW_SUCCESS);
    const auto &debug = r.session().debug_log();
    const auto &ring = r.session().ring_trace();
    ASSERT_FALSE(debug.empty());
    ASSERT_EQ(debug.size(), ring.size());
    EXPECT_TRUE(around_pointer(debug.front(), "TRC: YFW: ctx=", ",Start")) << debug.front();
    EXPECT_TRUE(ring_line(ring.front(), "TRC",
                          "ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames", "Start"))
        << ring.front();
    // The inline leaf writes under its own walker's name, and its mapper under the mapper's.
    EXPECT_EQ(test::count_lines(ring, " ymap_qo_ocsystem_tarvexqvshellutilcfg_lvla_hostnames_"
                                      "hostname:"),
              2);
    EXPECT_EQ(test::count_lines(ring, " ymap_qo_ocsystem_tarvexqvshellutilcfg_leaf_lvla_"
                                      "hostnames_hostname:"),
              2);
}

// The unit a ring line names: "#<n>: <word>: <unit>:<line> ...".
std::string unit_of(std::string_view line) {
    line.remove_prefix(line.find(": ") + 2);
    line.remove_prefix(line.find(": ") + 2);
    return std::string(line.substr(0, line.rfind(':', line.find(" ctx="))));
}

// Every shipped example, walked as the tool walks it, and a whole read of
// /system: each ring line names an exported function of the library (a row's
// entry point or a hand-written function), a companion function it calls, or
// an inline leaf walker of a row.
TEST(Trace, EveryLineOfAWalkNamesARowOrAHandWrittenFunction) {
    void *lib = dlopen(OCSYSMAP_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    void *companions = dlopen(OCSYSMAP_COMPANIONS, RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(companions, nullptr) << dlerror();
    std::set<std::string> inline_leaves;
    for (const ymap::WalkerRow *row : ymap::all_walker_rows())
        for (const ymap::Child &c : row->children)
            if (c.leaf_name != nullptr)
                inline_leaves.insert(c.leaf_name);
    const auto trees = ocsysmap::registered_trees();

    const char *source = std::getenv("OCSYSMAP_SOURCE_DIR");
    const std::string dir = std::string(source != nullptr ? source : ".") + "/examples/";
    std::vector<std::pair<uint32_t, std::string>> requests = {
        {KIND_GET, "<system xmlns=\"" + std::string(test::kOc) + "\"/>"}};
    std::ifstream job(dir + "main-job.txt");
    for (std::string kind, file; job >> kind >> file;) {
        std::ifstream in(dir + file);
        const uint32_t k = kind == "get" ? KIND_GET : kind == "get-config" ? KIND_GET_CONFIG : 1;
        requests.emplace_back(k, std::string(std::istreambuf_iterator<char>(in), {}));
    }
    ASSERT_GT(requests.size(), 5u);
    std::set<std::string> seen;
    for (const auto &[kind, xml] : requests) {
        Request r(kind);
        r.session().set_ring_trace(true);
        tidl_yfw_datatree *root = r.input(xml);
        const ocsysmap::RootMapping mapping = ocsysmap::mapping_of(trees, *root);
        yfw_map_walker_fn walker =
            mapping ? mapping.walker : &ymap_oq_ocsystem_openconfigsystem_lvla_system;
        (void)walker(r.ctx(), root, r.session().output());
        for (const std::string &line : r.session().ring_trace())
            seen.insert(unit_of(line));
    }
    for (const std::string &unit : seen)
        EXPECT_TRUE(dlsym(lib, unit.c_str()) != nullptr ||
                    dlsym(companions, unit.c_str()) != nullptr || inline_leaves.contains(unit))
            << unit;
    EXPECT_GT(seen.size(), 50u);
    dlclose(companions);
    dlclose(lib);
}

} // namespace
