// The table of the mapping rows, made from the rows when the tool is built
// (ocsysmap_rowsgen): schema path, mapper, form and target, one node a line.
#pragma once

#include <string_view>

namespace ocsysmap {

std::string_view rows_table();

} // namespace ocsysmap
