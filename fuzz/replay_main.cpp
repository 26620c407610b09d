// Runs a fuzz target over stored inputs (files, or every file of the given
// directories), so that a build without libFuzzer keeps the corpus as a test.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char **argv) {
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        std::error_code ec;
        if (fs::is_directory(argv[i], ec)) {
            for (const auto &entry : fs::recursive_directory_iterator(argv[i])) {
                if (entry.is_regular_file()) {
                    inputs.push_back(entry.path());
                }
            }
        } else if (fs::is_regular_file(argv[i], ec)) {
            inputs.emplace_back(argv[i]);
        } else {
            std::fprintf(stderr, "replay: %s: no such file or directory\n", argv[i]);
            return 1;
        }
    }
    // A fixed order, so that a failure names the same input every time.
    std::sort(inputs.begin(), inputs.end());
    for (const fs::path &path : inputs) {
        std::ifstream stream(path, std::ios::binary);
        if (!stream) {
            std::fprintf(stderr, "replay: %s: cannot read\n", path.c_str());
            return 1;
        }
        const std::string bytes{std::istreambuf_iterator<char>(stream),
                                std::istreambuf_iterator<char>()};
        std::fprintf(stderr, "replay: %s\n", path.c_str());
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    }
    std::fprintf(stderr, "replay: %zu inputs\n", inputs.size());
    return 0;
}
