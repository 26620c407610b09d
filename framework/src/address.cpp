// The address functions of the platform: the host's own, with the null
// checks the device's versions make. Also linked alone by hosts that replace
// the rest of the stand-in (the counting benchmark host).
//
// Classifying a server's host parses it and resolves it several times per
// server, and the host's resolver allocates a chain for a literal too. So the
// strict dotted quad is parsed here, and a literal asked with no service and
// all-zero hints is answered from a fixed pool of chains with what the host
// answers (one result per socket type, same address). Everything else, and a
// request when the pool is in use, goes to the host.
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>

#include "qv_platform.h"

namespace {

// Four decimal octets up to 255, no leading zero, nothing else: what the
// standard parser accepts for the family.
bool parse_ipv4(const char *text, unsigned char out[4]) {
    std::array<unsigned char, 4> octets{};
    const char *p = text;
    for (std::size_t i = 0; i < octets.size(); ++i) {
        auto digit = static_cast<unsigned>(*p - '0');
        if (digit > 9)
            return false;
        unsigned value = digit;
        ++p;
        // A zero octet is the one digit: "01" is no octet.
        for (int more = 0; value != 0 && more < 2 && (digit = static_cast<unsigned>(*p - '0')) <= 9;
             ++more, ++p)
            value = value * 10 + digit;
        if (value > 255 || *p++ != (i + 1 < octets.size() ? '.' : '\0'))
            return false;
        octets[i] = static_cast<unsigned char>(value);
    }
    std::memcpy(out, octets.data(), octets.size());
    return true;
}

union SocketAddress {
    sockaddr_in v4;
    sockaddr_in6 v6;
};

// The host's answer to a literal with no socket type asked: these three, in
// this order.
constexpr std::array<std::array<int, 2>, 3> kSocketTypes{{
    {SOCK_STREAM, IPPROTO_TCP},
    {SOCK_DGRAM, IPPROTO_UDP},
    {SOCK_RAW, 0},
}};

struct LiteralAnswer {
    std::array<addrinfo, kSocketTypes.size()> results;
    std::array<SocketAddress, kSocketTypes.size()> addresses;
    std::atomic<bool> busy;
};

// Enough for nested and concurrent callers; a chain may be freed on any thread.
std::array<LiteralAnswer, 8> g_answers;

LiteralAnswer *claim() {
    for (LiteralAnswer &answer : g_answers)
        if (!answer.busy.load(std::memory_order_relaxed) &&
            !answer.busy.exchange(true, std::memory_order_acquire))
            return &answer;
    return nullptr;
}

LiteralAnswer *pooled(const addrinfo *result) {
    const std::less<const void *> before;
    if (before(result, &g_answers.front()) || !before(result, &g_answers.back() + 1))
        return nullptr;
    const auto offset = reinterpret_cast<std::uintptr_t>(result) -
                        reinterpret_cast<std::uintptr_t>(g_answers.data());
    return &g_answers[offset / sizeof(LiteralAnswer)];
}

bool zero_hints(const addrinfo *hints) {
    return hints != nullptr && hints->ai_flags == 0 && hints->ai_family == AF_UNSPEC &&
           hints->ai_socktype == 0 && hints->ai_protocol == 0;
}

// Fills `answer` for the literal `node`, or says it is no literal.
bool answer_literal(const char *node, LiteralAnswer &answer) {
    SocketAddress address{};
    int family = AF_INET;
    socklen_t length = sizeof address.v4;
    if (parse_ipv4(node, reinterpret_cast<unsigned char *>(&address.v4.sin_addr))) {
        address.v4.sin_family = AF_INET;
    } else if (std::strchr(node, ':') != nullptr &&
               inet_pton(AF_INET6, node, &address.v6.sin6_addr) == 1) {
        address.v6.sin6_family = AF_INET6;
        family = AF_INET6;
        length = sizeof address.v6;
    } else {
        return false;
    }
    for (std::size_t i = 0; i < kSocketTypes.size(); ++i) {
        answer.addresses[i] = address;
        answer.results[i] = addrinfo{};
        answer.results[i].ai_family = family;
        answer.results[i].ai_socktype = kSocketTypes[i][0];
        answer.results[i].ai_protocol = kSocketTypes[i][1];
        answer.results[i].ai_addrlen = length;
        answer.results[i].ai_addr = reinterpret_cast<sockaddr *>(&answer.addresses[i]);
        answer.results[i].ai_next = i + 1 < kSocketTypes.size() ? &answer.results[i + 1] : nullptr;
    }
    return true;
}

} // namespace

extern "C" {

int qv_inet_pton(int family, const char *text, void *out) {
    if (text == nullptr)
        return 0;
    if (family == AF_INET)
        return parse_ipv4(text, static_cast<unsigned char *>(out)) ? 1 : 0;
    // Every IPv6 text has a colon; a host name or dotted quad is refused at once.
    if (family == AF_INET6 && std::strchr(text, ':') == nullptr)
        return 0;
    return inet_pton(family, text, out);
}

int getaddrinfo_qv(const char *node, const char *service, const struct addrinfo *hints,
                   struct addrinfo **result) {
    if (node != nullptr && service == nullptr && result != nullptr && zero_hints(hints)) {
        if (LiteralAnswer *answer = claim()) {
            if (answer_literal(node, *answer)) {
                *result = answer->results.data();
                return 0;
            }
            answer->busy.store(false, std::memory_order_release);
        }
    }
    return getaddrinfo(node, service, hints, result);
}

void freeaddrinfo_qv(struct addrinfo *result) {
    if (result == nullptr)
        return;
    if (LiteralAnswer *answer = pooled(result))
        answer->busy.store(false, std::memory_order_release);
    else
        freeaddrinfo(result);
}

} // extern "C"
