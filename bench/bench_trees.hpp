// Input trees for the walk benchmarks, built apart from any framework so that
// one tree can be walked through the stand-in and through the counting host.
//
// A tree is described by two templates: the document around the list, with
// `*` where the entries go, and one entry. A template node is
//   tag[@alias][=value][(child,child,...)]
// where a value may hold `$` (the entry's number) and `%4` (an IPv4 address
// made from it), and an alias switches the namespace for the node and below.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "yfw_map.h"

namespace bench {

// Owns the arrays and texts of the trees it builds.
class TreeStore {
public:
    // The document of `outer` with `entries` copies of `entry` at its `*`.
    // Counts the nodes it makes into `nodes`.
    tidl_yfw_datatree *build(std::string_view outer, std::string_view entry, const char *ns,
                             std::size_t entries, std::size_t &nodes);

    // The number of nodes one copy of `entry` makes.
    static std::size_t nodes_per_entry(std::string_view entry);

    struct Shape;

private:
    tidl_yfw_datatree *array(std::size_t count);
    char *text(std::string value);
    void fill(tidl_yfw_datatree &node, const Shape &shape, const char *ns, std::size_t number,
              const Shape &entry, std::size_t entries, std::size_t &nodes);

    std::vector<std::unique_ptr<tidl_yfw_datatree[]>> arrays_;
    std::deque<std::string> texts_;
};

} // namespace bench
