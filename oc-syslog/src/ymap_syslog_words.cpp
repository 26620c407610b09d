// The severity and facility words of both models. One table per vocabulary
// serves both directions: the left-hand column is the word looked up.
#include <array>

#include "ymap_syslog.hpp"

namespace ymap::syslog {
namespace {

constexpr std::array<WordPair, 8> kSeverity{{
    {"EMERGENCY", "emergency"},
    {"ALERT", "alert"},
    {"CRITICAL", "critical"},
    {"ERROR", "error"},
    {"WARNING", "warning"},
    {"NOTICE", "notice"},
    {"INFORMATIONAL", "informational"},
    {"DEBUG", "debug"},
}};

// Console-like leaves say "info" and can be switched off.
constexpr std::array<WordPair, 9> kConsoleSeverity{{
    {"EMERGENCY", "emergency"},
    {"ALERT", "alert"},
    {"CRITICAL", "critical"},
    {"ERROR", "error"},
    {"WARNING", "warning"},
    {"NOTICE", "notice"},
    {"INFORMATIONAL", "info"},
    {"DEBUG", "debug"},
    {"DISABLE", "disable"},
}};

// "NONE" has no native word: the only facility a selector key may carry has
// nothing to write.
constexpr std::array<WordPair, 14> kFacility{{
    {"KERNEL", "kern"},
    {"SYSTEM_DAEMON", "daemon"},
    {"AUTH", "auth"},
    {"LOCAL0", "local0"},
    {"LOCAL1", "local1"},
    {"LOCAL2", "local2"},
    {"LOCAL3", "local3"},
    {"LOCAL4", "local4"},
    {"LOCAL5", "local5"},
    {"LOCAL6", "local6"},
    {"LOCAL7", "local7"},
    {"MAIL", "mail"},
    {"USER", "user"},
    {"SYSLOG", "syslog"},
}};

// Length, first and last letter tell the words of a column apart, so they
// pick the one row a value can spell; the framework's compare decides it.
constexpr bool candidate(std::string_view word, std::string_view text) {
    return word.size() == text.size() && word.front() == text.front() && word.back() == text.back();
}

template <std::size_t N> constexpr bool told_apart(const std::array<WordPair, N> &table) {
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = i + 1; j < N; ++j)
            if (candidate(table[i].oc, table[j].oc) || candidate(table[i].native, table[j].native))
                return false;
    return true;
}
static_assert(told_apart(kSeverity) && told_apart(kConsoleSeverity) && told_apart(kFacility));

std::span<const WordPair> table_of(Words words) {
    switch (words) {
    case Words::Severity:
        return kSeverity;
    case Words::ConsoleSeverity:
        return kConsoleSeverity;
    case Words::Facility:
        return kFacility;
    }
    return {};
}

// The trace texts are literals joined to the trace prefix, hence a branch each.
void trace_null(yfw_map_ctx *ctx, const char *name, Words words) {
    if (words == Words::ConsoleSeverity)
        YFW_MAP_ERR(ctx, name, "Null console severity leaf specified in OC model");
    else
        YFW_MAP_ERR(ctx, name, "Null severity leaf specified in OC model");
}

void trace_invalid(yfw_map_ctx *ctx, const char *name, Words words, const char *value) {
    switch (words) {
    case Words::Severity:
        YFW_MAP_ERR(ctx, name, "Invalid severity leaf value '%s' specified in OC model", value);
        break;
    case Words::ConsoleSeverity:
        YFW_MAP_ERR(ctx, name, "Invalid console severity leaf value '%s' specified in OC model",
                    value);
        break;
    case Words::Facility:
        YFW_MAP_ERR(ctx, name,
                    "Invalid or Unsupported facility leaf value '%s' specified in OC model", value);
        break;
    }
}

} // namespace

bool same_word(const char *caller, std::string_view word, const char *value, bool on_failure) {
    const std::size_t length = word.size();
    int indicator = 1;
    if (yfw_strcmp_s(caller, word.data(), length, value, &indicator) != 0)
        return on_failure;
    // The compare stops at the word's length; a longer value is another word.
    return indicator == 0 && value[length] == '\0';
}

const char *convert(yfw_map_ctx *ctx, const char *name, Words words, Direction direction,
                    const char *value) {
    YMAP_ASSERT_CTX(ctx);
    YFW_MAP_TRC(ctx, name, YMAP_MSG_START);
    const char *result = nullptr;
    if (value == nullptr) {
        trace_null(ctx, name, words);
    } else {
        const bool to_native = direction == Direction::ToNative;
        const std::string_view text(value);
        for (const WordPair &pair : table_of(words)) {
            const std::string_view word = to_native ? pair.oc : pair.native;
            if (candidate(word, text) && same_word(name, word, value, false)) {
                result = (to_native ? pair.native : pair.oc).data();
                break;
            }
        }
        if (result == nullptr)
            trace_invalid(ctx, name, words, value);
    }
    YFW_MAP_TRC(ctx, name, YMAP_MSG_END);
    return result;
}

} // namespace ymap::syslog
