// The memory layer (named allocations, counted per label) and the safe-string
// functions.
#include <cerrno>
#include <cstring>

#include "internal.hpp"

namespace {

struct NamedAllocations {
    std::unordered_map<const void *, std::string> label_of;
    yfw::detail::TextMap<std::size_t> live;
};

NamedAllocations &named() {
    static NamedAllocations allocations;
    return allocations;
}

// Copies `length` bytes of `source` into `dest`, which must hold them and the terminator.
int bounded_copy(char *dest, std::size_t dest_size, const char *source, std::size_t length) {
    if (dest == nullptr || dest_size == 0)
        return EINVAL;
    if (source == nullptr) {
        dest[0] = '\0';
        return EINVAL;
    }
    if (length >= dest_size) {
        dest[0] = '\0';
        return ERANGE;
    }
    std::memmove(dest, source, length);
    dest[length] = '\0';
    return EOK;
}

} // namespace

namespace yfw {
std::size_t live_allocations(std::string_view label) {
    const auto &live = named().live;
    auto it = live.find(label);
    return it == live.end() ? 0 : it->second;
}
} // namespace yfw

extern "C" {

char *yfw_strdup(const char *text, const char *label) {
    if (text == nullptr)
        return nullptr;
    char *copy = strdup(text);
    if (copy == nullptr)
        return nullptr;
    const std::string name = label != nullptr ? label : "";
    named().label_of.emplace(copy, name);
    ++named().live[name];
    return copy;
}

void qvos_named_free(void *ptr) {
    if (ptr == nullptr)
        return;
    auto &allocations = named();
    if (auto it = allocations.label_of.find(ptr); it != allocations.label_of.end()) {
        --allocations.live[it->second];
        allocations.label_of.erase(it);
    }
    // Whatever it was, it is released like the real layer does, so misuse shows up.
    std::free(ptr);
}

int yfw_strcpy_s(const char *caller, char *dest, size_t dest_size, const char *source) {
    (void)caller;
    return bounded_copy(dest, dest_size, source, source != nullptr ? std::strlen(source) : 0);
}

int strcpy_s(char *dest, size_t dest_size, const char *source) {
    return yfw_strcpy_s(nullptr, dest, dest_size, source);
}

int yfw_strncpy_s(const char *caller, char *dest, size_t dest_size, const char *source,
                  size_t count) {
    (void)caller;
    return bounded_copy(dest, dest_size, source, source != nullptr ? strnlen(source, count) : 0);
}

int yfw_strcmp_s(const char *caller, const char *text, size_t text_limit, const char *other,
                 int *indicator_out) {
    (void)caller;
    if (text == nullptr || other == nullptr || indicator_out == nullptr)
        return EINVAL;
    // Library code compares a value with word after word, most differing at
    // the first character: a loop here costs less than the call to strncmp.
    int order = 0;
    for (std::size_t i = 0; i < text_limit; ++i) {
        const auto a = static_cast<unsigned char>(text[i]);
        const auto b = static_cast<unsigned char>(other[i]);
        if (a != b) {
            order = a < b ? -1 : 1;
            break;
        }
        if (a == '\0')
            break;
    }
    *indicator_out = order;
    return EOK;
}

} // extern "C"
