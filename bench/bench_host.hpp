// One request against whichever framework the benchmark binary links: the
// stand-in, or the counting host whose operations do next to nothing, so that
// the library's own cost per node shows apart from the framework's.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "yfw_map.h"

namespace bench {

class Request {
public:
    explicit Request(uint32_t kind);
    ~Request();
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    yfw_map_ctx *ctx();
    tidl_yfw_datatree *output();
    // What the walk produced, as a check that it did its work: nodes of the
    // output tree, or the adds the counting host saw.
    uint64_t produced();

    struct Impl;

private:
    std::unique_ptr<Impl> impl_;
};

// "standin" or "counting", for the benchmark names.
extern const std::string_view kHostName;

} // namespace bench
