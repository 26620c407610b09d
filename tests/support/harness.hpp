// A request in a few lines: a session of the stand-in framework, input trees
// written as XML, the output read back as `paths` text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "ocsysmap_io.hpp"
#include "yfw/standin.hpp"
#include "yfw_map.h"
#include "ymap_namespaces.h"

namespace test {

inline constexpr const auto &kOc = NS_OPENCONFIG_SYSTEM;
inline constexpr const char kNc[] = "urn:ietf:params:xml:ns:netconf:base:1.0";
inline std::string native_ns(std::string_view module) {
    return YMAP_NATIVE_NS("") + std::string(module);
}

// An OpenConfig request rooted at /system, with "nc" bound to the NETCONF base
// namespace for operation attributes.
inline std::string oc_system(std::string_view body) {
    return "<system xmlns=\"" + std::string(kOc) + "\" xmlns:nc=\"" + kNc + "\">" +
           std::string(body) + "</system>";
}

// g++ 12 at -O3 sees an overlap that cannot be in "literal" + std::string.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wrestrict"
#endif
// A native tree: the root element `root` of `module`.
inline std::string native(std::string_view module, std::string_view root, std::string_view body) {
    return "<" + std::string(root) + " xmlns=\"" + native_ns(module) + "\">" + std::string(body) +
           "</" + std::string(root) + ">";
}

class Request {
public:
    // The debug log is on, so that refusals can be checked by their message.
    explicit Request(uint32_t kind, bool oper_only = false) : session_(kind, oper_only) {
        session_.set_debug_log(true);
    }

    // One input root from XML.
    tidl_yfw_datatree *input(std::string_view xml) {
        auto roots = ocsysmap::parse_input(session_.arena(), xml,
                                           yfw_map_is_read_kind(session_.request()->request_kind));
        EXPECT_EQ(roots.size(), 1u);
        session_.note_input(roots.front());
        return roots.front();
    }

    // Walks `xml` with `walker` and returns its status.
    cerrno run(yfw_map_walker_fn walker, std::string_view xml) {
        return walker(ctx(), input(xml), session_.output());
    }

    std::string paths() const { return ocsysmap::to_paths(*output()); }
    const tidl_yfw_datatree *output() const {
        return const_cast<yfw::Session &>(session_).output();
    }

    yfw_map_ctx *ctx() { return session_.ctx(); }
    yfw_map_state *state() { return session_.state(); }
    yfw::Session &session() { return session_; }
    std::string error_tag() { return state()->error_tag != nullptr ? state()->error_tag : ""; }
    const std::string &error_path() const { return session_.error_path(); }

    // What every walker returns to its prior value, on every path. The xpath
    // error bit and the filter bits have lifetimes of their own.
    void expect_state_restored() {
        const yfw_map_state *st = state();
        EXPECT_EQ(st->walk_all, 0u);
        EXPECT_EQ(st->walk_suppress, (uint32_t)YFW_MAP_SUPPRESS_NONE);
        EXPECT_EQ(st->state_flags & ~YFW_MAP_STATE_XPATH_ERROR, 0u);
        EXPECT_EQ(st->replace_active, 0u);
        EXPECT_EQ(st->output_list_count, 0u);
        EXPECT_EQ(ctx()->list_index, 0);
        EXPECT_EQ(session_.hierarchy_depth(), 0u);
        EXPECT_EQ(session_.itree_depth(), 0u);
    }

private:
    yfw::Session session_;
};

// Walks `xml` with `walker` and expects success, exactly `want` as output, no
// refused tag kept, and the walk state put back.
inline void expect_walk(yfw_map_walker_fn walker, uint32_t kind, std::string_view xml,
                        std::string_view want, bool oper_only = false) {
    Request r(kind, oper_only);
    ASSERT_EQ(r.run(walker, xml), YFW_SUCCESS);
    EXPECT_EQ(r.paths(), want);
    EXPECT_EQ(r.error_tag(), "");
    r.expect_state_restored();
}

// One row of a table of walks: the input, and the whole output of the walk,
// which succeeds.
struct Walk {
    const char *name;
    uint32_t kind;
    std::string input;
    std::string output;
    bool oper_only = false;
    friend void PrintTo(const Walk &c, std::ostream *os) { *os << c.name; }
};

// Names the cases of a parameterised suite by their `name` member.
inline constexpr auto case_name = [](const auto &info) { return std::string(info.param.name); };

// Each item, one per line.
inline std::string lines(std::initializer_list<std::string_view> items) {
    std::string out;
    for (std::string_view l : items)
        out.append(l).append("\n");
    return out;
}

// `prefix` followed by each tail, one per line.
inline std::string under(std::string_view prefix, std::initializer_list<std::string_view> tails) {
    std::string out;
    for (std::string_view t : tails)
        out.append(prefix).append(t).append("\n");
    return out;
}

// The lines a walk writes down to `path`: every ancestor, then the path. A
// slash inside a key predicate does not split.
inline std::string chain(std::string_view path) {
    std::string out;
    int depth = 0;
    for (std::size_t i = 1; i < path.size(); ++i) {
        depth += path[i] == '[' ? 1 : path[i] == ']' ? -1 : 0;
        if (path[i] == '/' && depth == 0)
            out.append(path.substr(0, i)).append("\n");
    }
    return out.append(path).append("\n");
}

// How a refused request is reported: the status, the tag kept for the answer,
// the error path, and the error line of the debug log (for YFW_ERR_BAD_VALUE,
// the error message). An empty text means none is kept.
struct Refusal {
    cerrno status;
    std::string tag = "";
    std::string path = "";
    std::string message = "";
};

// One refused request of a table.
struct Refused {
    const char *name;
    uint32_t kind;
    std::string request;
    Refusal refusal;
    friend void PrintTo(const Refused &c, std::ostream *os) { *os << c.name; }
};

inline void expect_refused(Request &r, cerrno got, const Refusal &want) {
    EXPECT_EQ(got, want.status);
    EXPECT_EQ(r.error_tag(), want.tag);
    EXPECT_EQ(r.error_path(), want.path);
    if (want.status == YFW_ERR_BAD_VALUE) {
        const char *message = r.state()->error_message;
        EXPECT_EQ(message != nullptr ? std::string(message) : "", want.message);
    } else if (!want.message.empty()) {
        bool found = false;
        for (const std::string &line : r.session().debug_log())
            found = found || (line.starts_with("ERR: ") && line.ends_with("," + want.message));
        EXPECT_TRUE(found) << "no error line " << want.message;
    }
}

// Lines of `text` that contain `needle`.
inline int count_lines(const std::vector<std::string> &lines, std::string_view needle) {
    int n = 0;
    for (const auto &l : lines)
        n += l.find(needle) != std::string::npos ? 1 : 0;
    return n;
}

} // namespace test
