// The address functions of the platform: the host's own, with the null
// checks the device's versions make. Also linked alone by hosts that replace
// the rest of the stand-in (the counting benchmark host).
#include <arpa/inet.h>
#include <netdb.h>

#include "qv_platform.h"

extern "C" {

int qv_inet_pton(int family, const char *text, void *out) {
    if (text == nullptr)
        return 0;
    return inet_pton(family, text, out);
}

int getaddrinfo_qv(const char *node, const char *service, const struct addrinfo *hints,
                   struct addrinfo **result) {
    return getaddrinfo(node, service, hints, result);
}

void freeaddrinfo_qv(struct addrinfo *result) {
    if (result != nullptr)
        freeaddrinfo(result);
}

} // extern "C"
