// The ocsysmap executable: the mapping library's trees, registered the way a
// framework registers them, and the command line.
#include <array>
#include <exception>
#include <iostream>
#include <string_view>
#include <vector>

#include "ocsysmap_cli.hpp"
#include "ymap_ocsystem.h"

namespace {

#define YMAP_REGISTRATION_POINTER_(fn) &fn,
constexpr std::array kRegistrations{YMAP_OCSYSTEM_REGISTRATIONS(YMAP_REGISTRATION_POINTER_)};
#undef YMAP_REGISTRATION_POINTER_

} // namespace

int main(int argc, char **argv) {
    try {
        const std::vector<std::string_view> args(argv + 1, argv + argc);
        if (yfw_ocsystem_init() != YFW_SUCCESS) {
            std::cerr << "ocsysmap: the mapping library did not load\n";
            return 2;
        }
        std::array<yfw_map_reg_mod_t, kRegistrations.size()> trees{};
        for (std::size_t i = 0; i < trees.size(); ++i) {
            kRegistrations[i](&trees[i]);
        }
        int rc = ocsysmap::run(args, std::cin, std::cout, std::cerr, trees);
        yfw_ocsystem_cleanup();
        return rc;
    } catch (const std::exception &e) {
        std::cerr << "ocsysmap: " << e.what() << '\n';
        return 2;
    }
}
