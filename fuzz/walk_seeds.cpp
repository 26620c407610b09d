// Writes walk_fuzz inputs made from sample files: each root of each file
// (XML or record JSON) that a registered walker takes, as the request kind the
// file's name suggests (edit-*, get-config-*, else a get).
//
//   walk_seeds OUT_DIR FILE...
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "ocsysmap_io.hpp"

std::string walk_fuzz_seed(const tidl_yfw_datatree &root, uint32_t kind);

namespace fs = std::filesystem;

int main(int argc, char **argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: walk_seeds OUT_DIR FILE...\n");
        return 2;
    }
    const fs::path out = argv[1];
    fs::create_directories(out);
    int written = 0;
    for (int i = 2; i < argc; ++i) {
        const fs::path file = argv[i];
        const std::string name = file.stem().string();
        const uint32_t kind = name.starts_with("edit") || name.starts_with("delete") ? KIND_EDIT_A
                              : name.starts_with("get-config") ? KIND_GET_CONFIG
                                                               : KIND_GET;
        std::ifstream in(file, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in),
                               std::istreambuf_iterator<char>()};
        yfw::Arena arena;
        try {
            int n = 0;
            for (const tidl_yfw_datatree *root :
                 ocsysmap::parse_input(arena, text, kind != KIND_EDIT_A)) {
                const std::string seed = walk_fuzz_seed(*root, kind);
                if (seed.empty()) {
                    continue;
                }
                std::ofstream(out / (name + "-" + std::to_string(n++)), std::ios::binary) << seed;
                ++written;
            }
        } catch (const ocsysmap::ParseError &e) {
            std::fprintf(stderr, "walk_seeds: %s: %s\n", file.c_str(), e.what());
        }
    }
    std::printf("walk_seeds: %d inputs\n", written);
    return 0;
}
