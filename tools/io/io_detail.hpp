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

// The value as JSON writes it, quotes included; invalid UTF-8 becomes U+FFFD.
std::string json_quote(std::string_view text);

// The same, appended to one string over and over without a string of its own
// per text.
class JsonQuoter {
public:
    explicit JsonQuoter(std::string &out);
    ~JsonQuoter();
    JsonQuoter(const JsonQuoter &) = delete;
    JsonQuoter &operator=(const JsonQuoter &) = delete;
    void append(std::string_view text);

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
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
