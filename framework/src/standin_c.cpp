// The C face of the stand-in (yfw/standin.h) over the C++ session and arena.
#include "yfw/standin.h"

#include <new>

#include "yfw/standin.hpp"

struct yfw_standin_session {
    explicit yfw_standin_session(uint32_t kind) : run(kind) {}
    yfw::Session run;
};

namespace {

// No exception crosses into a C caller: a failure is a null result.
template <typename F> auto or_null(F &&f) noexcept -> decltype(f()) {
    try {
        return f();
    } catch (...) {
        return nullptr;
    }
}

} // namespace

extern "C" {

yfw_standin_session *yfw_standin_session_new(uint32_t request_kind) {
    return or_null([&] { return new yfw_standin_session(request_kind); });
}

void yfw_standin_session_free(yfw_standin_session *session) {
    delete session;
}

yfw_map_ctx *yfw_standin_ctx(yfw_standin_session *session) {
    return session != nullptr ? session->run.ctx() : nullptr;
}

tidl_yfw_datatree *yfw_standin_output(yfw_standin_session *session) {
    return session != nullptr ? session->run.output() : nullptr;
}

tidl_yfw_datatree *yfw_standin_new_root(yfw_standin_session *session, const char *tag,
                                        const char *namespace_) {
    if (session == nullptr || tag == nullptr)
        return nullptr;
    return or_null([&] {
        yfw::Arena &arena = session->run.arena();
        tidl_yfw_datatree *root = arena.new_root();
        root->tag = arena.text(tag);
        root->namespace_ = namespace_ != nullptr ? arena.text(namespace_) : nullptr;
        session->run.note_input(root); // for print_data, as the tool does
        return root;
    });
}

tidl_yfw_datatree *yfw_standin_append_child(yfw_standin_session *session, tidl_yfw_datatree *parent,
                                            const char *tag, const char *value) {
    if (session == nullptr || parent == nullptr || tag == nullptr)
        return nullptr;
    return or_null([&] {
        yfw::Arena &arena = session->run.arena();
        tidl_yfw_datatree *child = arena.append_child(parent);
        child->tag = arena.text(tag);
        child->namespace_ = parent->namespace_;
        if (value != nullptr) {
            child->value = arena.copy(value);
            child->present_value = 1;
        }
        return child;
    });
}

} // extern "C"
