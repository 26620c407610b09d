// The commands of the ocsysmap tool, apart from the process that runs them so
// that tests can call them with streams and walkers of their own.
#pragma once

#include <iosfwd>
#include <span>
#include <string_view>

#include "yfw_map.h"

namespace ocsysmap {

// Runs one command line (the words after the program name) and returns the
// exit code: 0 success, 1 the mapping returned a non-zero status, 2 a usage
// or input error. `trees` are the registered mapping trees; `in` serves the
// file name "-".
int run(std::span<const std::string_view> args, std::istream &in, std::ostream &out,
        std::ostream &err, std::span<const yfw_map_reg_mod_t> trees);

} // namespace ocsysmap
