// Walks of the mapping trees kept as golden files, modules/golden/*.txt: each
// case names a walker, a request kind and an input tree, and gives the whole
// outcome: the status, the refusal's tag, path and message, and the output as
// `paths` text. A successful walk must also put the walk state back.
//
//   === case_name            # one case per behaviour; '#' lines say why
//   kind: get | get-config | edit-a | edit-b | edit-c
//   oper-only: yes           # optional
//   walker: <the walker's symbol>
//   input:
//   <XML or JSON, over any number of lines>
//   status: YFW_...
//   tag: / path: / message:  # optional, as test::Refusal reads them
//   output:
//   <paths lines, to the next case>
#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

#include "harness.hpp"

namespace {

struct Case {
    std::string name;
    uint32_t kind = KIND_GET;
    bool oper_only = false;
    std::string walker, input, output;
    test::Refusal outcome{YFW_SUCCESS};
    friend void PrintTo(const Case &c, std::ostream *os) { *os << c.name; }
};

const std::map<std::string, uint32_t, std::less<>> kKinds{{"get-config", KIND_GET_CONFIG},
                                                          {"get", KIND_GET},
                                                          {"edit-a", KIND_EDIT_A},
                                                          {"edit-b", KIND_EDIT_B},
                                                          {"edit-c", KIND_EDIT_C}};
#define STATUS_(s)                                                                                 \
    { #s, s }
const std::map<std::string, cerrno, std::less<>> kStatuses{
    STATUS_(YFW_SUCCESS),       STATUS_(YFW_ERR_INVALID_ARGS),
    STATUS_(YFW_ERR_BAD_TREE),  STATUS_(YFW_ERR_UNSUPPORTED_TAG),
    STATUS_(YFW_ERR_LIST_KEY),  STATUS_(YFW_ERR_KEY_DELETE),
    STATUS_(YFW_ERR_BAD_VALUE), STATUS_(YFW_ERR_UNSUPPORTED_AUGMENT)};
#undef STATUS_

// A malformed file fails loudly: a case that does not load tests nothing.
[[noreturn]] void bad(const std::filesystem::path &file, const std::string &line) {
    throw std::runtime_error(file.string() + ": cannot read \"" + line + "\"");
}

void load_file(const std::filesystem::path &file, std::vector<Case> &cases) {
    std::ifstream in(file);
    std::string line;
    enum { Fields, Input, Output } at = Fields;
    while (std::getline(in, line)) {
        if (line.starts_with("=== ")) {
            cases.emplace_back().name = file.stem().string() + "_" + line.substr(4);
            at = Fields;
            continue;
        }
        if (at == Input && !line.starts_with("status: ")) {
            cases.back().input.append(line).append("\n");
            continue;
        }
        at = at == Input ? Fields : at;
        if (line.empty() || line.starts_with('#'))
            continue;
        if (cases.empty())
            bad(file, line);
        Case &c = cases.back();
        if (at == Output) {
            c.output.append(line).append("\n");
            continue;
        }
        const std::size_t colon = line.find(':');
        const std::string key = line.substr(0, colon);
        const std::string value = colon + 2 <= line.size() ? line.substr(colon + 2) : "";
        if (key == "kind" && kKinds.contains(value))
            c.kind = kKinds.find(value)->second;
        else if (key == "oper-only")
            c.oper_only = value == "yes";
        else if (key == "walker")
            c.walker = value;
        else if (key == "input")
            at = Input;
        else if (key == "status" && kStatuses.contains(value))
            c.outcome.status = kStatuses.find(value)->second;
        else if (key == "tag")
            c.outcome.tag = value;
        else if (key == "path")
            c.outcome.path = value;
        else if (key == "message")
            c.outcome.message = value;
        else if (key == "output")
            at = Output;
        else
            bad(file, line);
    }
}

std::vector<Case> load() {
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(OCSYSMAP_GOLDEN_DIR))
        if (entry.path().extension() == ".txt")
            files.push_back(entry.path());
    std::ranges::sort(files);
    std::vector<Case> cases;
    for (const auto &file : files)
        load_file(file, cases);
    return cases;
}

class Golden : public ::testing::TestWithParam<Case> {};

TEST_P(Golden, Walk) {
    const Case &c = GetParam();
    // The test program exports its symbols, so the walker is found by name.
    const auto walker = reinterpret_cast<yfw_map_walker_fn>(dlsym(RTLD_DEFAULT, c.walker.c_str()));
    ASSERT_NE(walker, nullptr) << c.walker;
    test::Request r(c.kind, c.oper_only);
    test::expect_refused(r, r.run(walker, c.input), c.outcome);
    if (c.outcome.status != YFW_ERR_BAD_VALUE) {
        EXPECT_EQ(r.state()->error_message, nullptr);
    }
    EXPECT_EQ(r.paths(), c.output);
    if (c.outcome.status == YFW_SUCCESS)
        r.expect_state_restored();
}

INSTANTIATE_TEST_SUITE_P(Files, Golden, ::testing::ValuesIn(load()), test::case_name);

} // namespace
