// What the tests of the OpenConfig side share: the published models, read
// once, and mapping a native answer into checked OpenConfig data.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <array>
#include <sstream>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "oc_yang.hpp"
#include "ocsysmap_cli.hpp"
#include "registered_trees.hpp"
#include "ymap_ocsystem.h"

namespace test {

inline std::filesystem::path source_dir() {
    const char *dir = std::getenv("OCSYSMAP_SOURCE_DIR");
    return dir != nullptr ? dir : ".";
}

inline std::filesystem::path models_dir() {
    return source_dir() / ".." / "shared" / "openconfig" / "models-2022-12";
}

// The models beside the checkout, loaded once; null when they are missing.
inline const ocsysmap::yang::Models *models() {
    static const std::unique_ptr<ocsysmap::yang::Models> loaded = [] {
        const auto dir = models_dir();
        std::error_code ec;
        return std::filesystem::is_directory(dir, ec)
                   ? std::make_unique<ocsysmap::yang::Models>(dir)
                   : nullptr;
    }();
    return loaded.get();
}

// Skips a test without the models, except in CI, where they must be there.
#define OCSYSMAP_NEED_MODELS()                                                                     \
    do {                                                                                           \
        if (test::models() == nullptr) {                                                           \
            if (std::getenv("CI") != nullptr) {                                                    \
                FAIL() << "the models directory ../shared/openconfig/models-2022-12 is missing";   \
            }                                                                                      \
            GTEST_SKIP() << "no models in ../shared/openconfig/models-2022-12";                    \
        }                                                                                          \
    } while (0)

inline std::string describe(const std::vector<ocsysmap::yang::Diagnostic> &found) {
    std::string text;
    for (const auto &d : found) {
        text += d.path + ": " + d.message + "\n";
    }
    return text;
}

// The library's trees, registered as the tool registers them.
inline const auto &trees() {
    static const auto all = ocsysmap::registered_trees();
    return all;
}

struct Ran {
    int rc;
    std::string out;
    std::string err;
};

// `ocsysmap map --kind KIND ARGS... -` with `input` on standard input.
inline Ran map(std::string_view kind, std::vector<std::string_view> args, std::string_view input) {
    std::vector<std::string_view> all{"map", "--kind", kind};
    all.insert(all.end(), args.begin(), args.end());
    all.push_back("-");
    std::istringstream in{std::string(input)};
    std::ostringstream out, err;
    const int rc = ocsysmap::run(all, in, out, err, trees());
    return {rc, out.str(), err.str()};
}

} // namespace test
