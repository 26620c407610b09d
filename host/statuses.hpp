// The statuses a mapping run can end with, as the tool prints them and the
// device answers them: one row each, the library's refusal included.
#pragma once

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "yfw/standin.hpp"
#include "yfw_map.h"

namespace ocsysmap {

// The gRPC server name (another than the one running, or a delete of it) is
// refused with a bare -1, which the contract has no name for.
inline constexpr cerrno REFUSED = static_cast<cerrno>(-1);

// ROW(status, NETCONF error-tag, text when the library left no message); the
// name printed is the status's own.
#define OCSYSMAP_STATUSES(ROW)                                                                     \
    ROW(YFW_SUCCESS, "", "")                                                                       \
    ROW(YFW_ERR_INVALID_ARGS, "invalid-value", "the request names what cannot go together")        \
    ROW(YFW_ERR_BAD_TREE, "malformed-message", "the request tree is malformed")                    \
    ROW(YFW_ERR_UNSUPPORTED_TAG, "unknown-element",                                                \
        "Unsupported tag is specified in the request.")                                            \
    ROW(YFW_ERR_LIST_KEY, "bad-element", "List key node error.")                                   \
    ROW(YFW_ERR_KEY_DELETE, "operation-not-supported",                                             \
        "The key node should not have delete operation.")                                          \
    ROW(YFW_ERR_BAD_VALUE, "invalid-value", "the value is refused")                                \
    ROW(YFW_MAP_SKIP_NODE, "operation-failed", "the node was skipped")                             \
    ROW(YFW_ERR_UNSUPPORTED_AUGMENT, "unknown-element", "the node is not supported at this place") \
    ROW(REFUSED, "operation-failed", "the request was refused")

struct StatusRow {
    cerrno status;
    std::string_view name;
    std::string_view error_tag;
    std::string_view text;
};

#define OCSYSMAP_STATUS_ROW_(status, tag, text) StatusRow{status, #status, tag, text},
inline constexpr std::array kStatuses{OCSYSMAP_STATUSES(OCSYSMAP_STATUS_ROW_)};
#undef OCSYSMAP_STATUS_ROW_

// The row of a status; nullptr for one no row names.
constexpr const StatusRow *status_row(cerrno status) {
    const auto *row = std::find_if(kStatuses.begin(), kStatuses.end(),
                                   [status](const StatusRow &r) { return r.status == status; });
    return row != kStatuses.end() ? row : nullptr;
}

// A status as its value is written: "0x" and eight hex digits.
inline std::string status_hex(cerrno status) {
    std::array<char, 11> text{};
    std::snprintf(text.data(), text.size(), "0x%08x", static_cast<unsigned>(status));
    return text.data();
}

// The library's own word on a failed run: the message it left for the client,
// else what its last error line said; empty when it said nothing.
inline std::string_view library_message(yfw::Session &session) {
    if (const char *message = session.state()->error_message; message != nullptr) {
        return message;
    }
    return session.error_line();
}

} // namespace ocsysmap
