// Any text: parse_ietf_json either refuses it with ParseError or gives trees
// that every writer can print (XML may refuse a tree it cannot hold) and that
// come back unchanged through the record JSON form.
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "ocsysmap_io.hpp"

namespace {

void one_kind(std::string_view text, bool read_kind) {
    yfw::Arena arena;
    std::vector<tidl_yfw_datatree *> roots;
    try {
        roots = ocsysmap::parse_ietf_json(arena, text, read_kind);
    } catch (const ocsysmap::ParseError &) {
        return;
    }
    const tidl_yfw_datatree &document = *ocsysmap::document_of(arena, roots);
    (void)ocsysmap::to_paths(document);
    try {
        (void)ocsysmap::to_xml(document);
    } catch (const std::invalid_argument &) {
    }
    const std::string json = ocsysmap::to_json(document);
    const std::string again = ocsysmap::to_json(
        *ocsysmap::document_of(arena, ocsysmap::parse_input(arena, json, read_kind)));
    if (json != again) {
        __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    one_kind(text, true);
    one_kind(text, false);
    return 0;
}
