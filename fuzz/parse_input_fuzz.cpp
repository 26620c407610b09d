// Any text: parse_input either refuses it with ParseError or gives trees that
// every writer can print and that come back unchanged through JSON (and
// through XML when they came from XML).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ocsysmap_io.hpp"

namespace {

// Only a difference the writers can see matters here; the tests compare fields.
void check_same(const std::string &a, const std::string &b) {
    if (a != b) {
        __builtin_trap();
    }
}

void one_kind(std::string_view text, bool read_kind) {
    yfw::Arena arena;
    std::vector<tidl_yfw_datatree *> roots;
    try {
        roots = ocsysmap::parse_input(arena, text, read_kind);
    } catch (const ocsysmap::ParseError &) {
        return;
    }
    const tidl_yfw_datatree &document = *ocsysmap::document_of(arena, roots);
    (void)ocsysmap::to_paths(document);

    const std::string json = ocsysmap::to_json(document);
    check_same(json, ocsysmap::to_json(*ocsysmap::document_of(
                         arena, ocsysmap::parse_input(arena, json, read_kind))));

    // Accepted, so the first of these characters chose the format.
    if (text[text.find_first_of("<{[")] == '<') {
        const std::string xml = ocsysmap::to_xml(document);
        check_same(xml, ocsysmap::to_xml(*ocsysmap::document_of(
                            arena, ocsysmap::parse_input(arena, xml, read_kind))));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string_view text(reinterpret_cast<const char *>(data), size);
    one_kind(text, true);
    one_kind(text, false);
    return 0;
}
