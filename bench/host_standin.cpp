// The benchmark request on the stand-in framework.
#include "bench_host.hpp"
#include "yfw/standin.hpp"

namespace bench {

const std::string_view kHostName = "standin";

struct Request::Impl {
    yfw::Session session;
    explicit Impl(uint32_t kind) : session(kind) {}
};

Request::Request(uint32_t kind) : impl_(std::make_unique<Impl>(kind)) {}
Request::~Request() = default;

yfw_map_ctx *Request::ctx() {
    return impl_->session.ctx();
}
tidl_yfw_datatree *Request::output() {
    return impl_->session.output();
}

namespace {
uint64_t count_nodes(const tidl_yfw_datatree &node) {
    uint64_t n = 1;
    if (node.present_subtrees && node.subtrees != nullptr)
        for (uint32_t i = 0; i < node.subtree_count; ++i)
            n += count_nodes(node.subtrees[i]);
    return n;
}
} // namespace

uint64_t Request::produced() {
    return count_nodes(*output()) - 1;
}

} // namespace bench
