// Choosing the input format, and the document root the writers take.
#include "ocsysmap_io.hpp"

#include <cstdio>
#include <ostream>

#include "io_detail.hpp"

namespace ocsysmap {

std::vector<tidl_yfw_datatree *> parse_input(yfw::Arena &arena, std::string_view text,
                                             bool read_kind) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        throw ParseError("the input is empty");
    }
    const bool xml = text[first] == '<';
    if (xml || text[first] == '{' || text[first] == '[') {
        detail::require_utf8(text, xml ? "XML" : "JSON");
    }
    switch (text[first]) {
    case '<':
        return detail::parse_xml(arena, text, read_kind);
    case '{':
    case '[':
        return detail::parse_json(arena, text);
    default:
        throw ParseError("the input is neither XML (begins with '<') nor JSON (begins with '{' "
                         "or '[')");
    }
}

namespace detail {
void require_utf8(std::string_view text, std::string_view format) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = utf8_length(text.substr(at));
        if (length != 0) {
            at += length;
            continue;
        }
        const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<long>(at), '\n');
        char byte[8];
        std::snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned char>(text[at]));
        throw ParseError(std::string(format) + " line " + std::to_string(line) +
                         ": the text is not UTF-8 (byte " + byte + ")");
    }
}

void Sink::flush() {
    if (stream_ != nullptr && !text_.empty()) {
        stream_->write(text_.data(), static_cast<std::streamsize>(text_.size()));
        text_.clear();
    }
}
} // namespace detail

tidl_yfw_datatree *document_of(yfw::Arena &arena, std::span<tidl_yfw_datatree *const> roots) {
    tidl_yfw_datatree *document = arena.new_root();
    for (const tidl_yfw_datatree *root : roots) {
        *arena.append_child(document) = *root;
    }
    return document;
}

} // namespace ocsysmap
