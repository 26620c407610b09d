// Pieces shared by the readers and writers of ocsysmap_io (and the tool):
// the operation words, the wrapper names, the nesting limit.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "yfw/standin.hpp"
#include "yfw_map.h"

namespace ocsysmap::detail {

inline constexpr std::string_view kNetconfNs = "urn:ietf:params:xml:ns:netconf:base:1.0";

// Deeper inputs are refused: no model of the device comes near this, and the
// readers and writers recurse once per level.
inline constexpr int kMaxDepth = 128;

// Indexed by the operation's value.
inline constexpr std::array<std::string_view, 5> kOperationNames{"merge", "replace", "create",
                                                                 "delete", "remove"};

// Document elements that hold several roots rather than being one.
inline constexpr std::array<std::string_view, 3> kWrapperNames{"config", "filter", "data"};

inline bool is_wrapper_name(std::string_view tag) {
    return std::find(kWrapperNames.begin(), kWrapperNames.end(), tag) != kWrapperNames.end();
}

// A whole decimal number of type T, nothing before or after it.
template <typename T> std::optional<T> parse_decimal(std::string_view text) {
    T value{};
    const char *end = text.data() + text.size();
    auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (text.empty() || ec != std::errc{} || ptr != end) {
        return std::nullopt;
    }
    return value;
}

inline std::optional<int32_t> operation_by_name(std::string_view name) {
    const auto *it = std::find(kOperationNames.begin(), kOperationNames.end(), name);
    if (it == kOperationNames.end()) {
        return std::nullopt;
    }
    return static_cast<int32_t>(it - kOperationNames.begin());
}

// A name of the table or a decimal number.
inline std::optional<int32_t> operation_from_text(std::string_view text) {
    if (auto op = operation_by_name(text)) {
        return op;
    }
    return parse_decimal<int32_t>(text);
}

inline std::optional<std::string_view> operation_name(int32_t op) {
    if (op < 0 || static_cast<std::size_t>(op) >= kOperationNames.size()) {
        return std::nullopt;
    }
    return kOperationNames[static_cast<std::size_t>(op)];
}

// The name where the operation has one, else the number.
inline std::string operation_text(int32_t op) {
    auto name = operation_name(op);
    return name ? std::string(*name) : std::to_string(op);
}

// Namespaces and tags compare as texts; two nulls are equal.
inline bool same_text(const char *a, const char *b) {
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    return std::strcmp(a, b) == 0;
}

// The children a reader may descend into: none unless present_subtrees and an array.
inline std::span<const tidl_yfw_datatree> children_of(const tidl_yfw_datatree &node) {
    if (!node.present_subtrees || node.subtrees == nullptr) {
        return {};
    }
    return {node.subtrees, node.subtree_count};
}

// Where a writer's text goes: a string kept whole, or a stream that takes the
// text in pieces as the writer goes, so a large tree is never held as text.
class Sink {
public:
    explicit Sink(std::ostream *stream = nullptr) : stream_(stream) {}
    Sink(const Sink &) = delete;
    Sink &operator=(const Sink &) = delete;

    std::string &text() { return text_; }
    // Called between nodes: hands a full piece to the stream.
    void maybe_flush() {
        if (stream_ != nullptr && text_.size() >= kPiece) {
            flush();
        }
    }
    void flush();
    std::string take() {
        flush();
        return std::move(text_);
    }

private:
    static constexpr std::size_t kPiece = 1 << 16;
    std::ostream *stream_;
    std::string text_;
};

// The length of the well-formed UTF-8 sequence that `text` begins with (no
// overlong form, no surrogate, nothing past U+10FFFF), or 0 when it begins
// with none.
inline std::size_t utf8_length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return 1;
    }
    // The length by the lead byte, and the bounds of the second byte that
    // rule out overlong forms, surrogates and code points past U+10FFFF.
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    }
    if (length == 0 || text.size() < length || byte(1) < low || byte(1) > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

// Every reader refuses a text that is not UTF-8, wherever it stands (CDATA
// included): throws ParseError naming the format, the line and the byte.
void require_utf8(std::string_view text, std::string_view format);

// Appends the text as a JSON string, quotes included: the two-character
// escapes where JSON has them, other control characters as \u00XX, UTF-8 as
// it stands, and U+FFFD for each byte that does not begin well-formed UTF-8.
void append_json_quoted(std::string &out, std::string_view text);

// The value as JSON writes it, quotes included.
inline std::string json_quote(std::string_view text) {
    std::string out;
    append_json_quoted(out, text);
    return out;
}

// The same, appended to one string over and over.
class JsonQuoter {
public:
    explicit JsonQuoter(std::string &out) : out_(out) {}
    void append(std::string_view text) { append_json_quoted(out_, text); }

private:
    std::string &out_;
};

// The operation's name where it has one, else its number, appended to `out`.
inline void append_operation(std::string &out, int32_t op) {
    if (auto name = operation_name(op)) {
        out += *name;
        return;
    }
    char digits[16];
    auto [end, ec] = std::to_chars(digits, digits + sizeof digits, op);
    out.append(digits, end);
}

// Readers of one format; the caller has chosen it by the first character.
std::vector<tidl_yfw_datatree *> parse_xml(yfw::Arena &arena, std::string_view text,
                                           bool read_kind);
std::vector<tidl_yfw_datatree *> parse_json(yfw::Arena &arena, std::string_view text);

} // namespace ocsysmap::detail
