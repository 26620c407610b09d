// The ocsysmap executable: the mapping library's trees, registered the way a
// framework registers them, and the command line.
#include <array>
#include <exception>
#include <iostream>
#include <string_view>
#include <vector>

#include "ocsysmap_cli.hpp"
#include "registered_trees.hpp"
#include "ymap_ocsystem.h"

int main(int argc, char **argv) {
    try {
        const std::vector<std::string_view> args(argv + 1, argv + argc);
        if (yfw_ocsystem_init() != YFW_SUCCESS) {
            std::cerr << "ocsysmap: the mapping library did not load\n";
            return 2;
        }
        const auto trees = ocsysmap::registered_trees();
        int rc = ocsysmap::run(args, std::cin, std::cout, std::cerr, trees);
        yfw_ocsystem_cleanup();
        return rc;
    } catch (const std::exception &e) {
        std::cerr << "ocsysmap: " << e.what() << '\n';
        return 2;
    }
}
