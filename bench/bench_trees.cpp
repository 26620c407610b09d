#include "bench_trees.hpp"

#include <array>
#include <stdexcept>

#include "ymap_namespaces.h"

namespace bench {

struct TreeStore::Shape {
    std::string_view tag;
    const char *ns = nullptr; // null: the parent's
    std::string_view value;
    bool has_value = false;
    bool entries_here = false; // the `*` of the outer template
    std::vector<Shape> kids;
};

namespace {

struct Alias {
    std::string_view name;
    const char *ns;
};

constexpr std::array kAliases{
    Alias{"locald", NS_AAA_LOCALD_CFG},
    Alias{"tacacs", NS_AAA_TACACS_CFG},
    Alias{"ext", NS_TERMINAL_EXT},
    Alias{"grpc", NS_OPENCONFIG_SYSTEM_GRPC},
};

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    TreeStore::Shape node() {
        TreeStore::Shape shape;
        if (peek() == '*') {
            ++at_;
            shape.entries_here = true;
            return shape;
        }
        shape.tag = word("@=(),");
        if (peek() == '@') {
            ++at_;
            const std::string_view alias = word("=(),");
            for (const Alias &a : kAliases)
                if (a.name == alias)
                    shape.ns = a.ns;
            if (shape.ns == nullptr)
                throw std::invalid_argument("unknown alias " + std::string(alias));
        }
        if (peek() == '=') {
            ++at_;
            shape.value = word("(),");
            shape.has_value = true;
        }
        if (peek() == '(') {
            do {
                ++at_;
                shape.kids.push_back(node());
            } while (peek() == ',');
            if (peek() != ')')
                throw std::invalid_argument("unclosed ( in " + std::string(text_));
            ++at_;
        }
        return shape;
    }

private:
    char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    std::string_view word(std::string_view stops) {
        const std::size_t start = at_;
        while (at_ < text_.size() && stops.find(text_[at_]) == std::string_view::npos)
            ++at_;
        return text_.substr(start, at_ - start);
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

std::size_t count(const TreeStore::Shape &shape) {
    std::size_t n = shape.entries_here ? 0 : 1;
    for (const auto &kid : shape.kids)
        n += count(kid);
    return n;
}

// `$` is the entry's number, `%4` an IPv4 address made from it.
std::string expand(std::string_view value, std::size_t number) {
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '$') {
            out += std::to_string(number);
        } else if (value.substr(i, 2) == "%4") {
            out += "10." + std::to_string(number >> 16 & 255) + '.' +
                   std::to_string(number >> 8 & 255) + '.' + std::to_string(number & 255);
            ++i;
        } else {
            out += value[i];
        }
    }
    return out;
}

} // namespace

std::size_t TreeStore::nodes_per_entry(std::string_view entry) {
    return count(Parser(entry).node());
}

tidl_yfw_datatree *TreeStore::array(std::size_t n) {
    arrays_.push_back(std::make_unique<tidl_yfw_datatree[]>(n));
    return arrays_.back().get();
}

char *TreeStore::text(std::string value) {
    return texts_.emplace_back(std::move(value)).data();
}

void TreeStore::fill(tidl_yfw_datatree &node, const Shape &shape, const char *ns,
                     std::size_t number, const Shape &entry, std::size_t entries,
                     std::size_t &nodes) {
    ns = shape.ns != nullptr ? shape.ns : ns;
    node.tag = text(std::string(shape.tag));
    node.namespace_ = const_cast<char *>(ns);
    if (shape.has_value) {
        node.value = text(expand(shape.value, number));
        node.present_value = 1;
    }
    ++nodes;
    std::size_t width = 0;
    for (const Shape &kid : shape.kids)
        width += kid.entries_here ? entries : 1;
    if (width == 0)
        return;
    tidl_yfw_datatree *kids = array(width);
    yfw_dt_set_subtrees(&node, kids, static_cast<uint32_t>(width));
    for (const Shape &kid : shape.kids) {
        if (!kid.entries_here) {
            fill(*kids++, kid, ns, number, entry, entries, nodes);
            continue;
        }
        for (std::size_t i = 0; i < entries; ++i)
            fill(*kids++, entry, ns, i, entry, 0, nodes);
    }
}

tidl_yfw_datatree *TreeStore::build(std::string_view outer, std::string_view entry, const char *ns,
                                    std::size_t entries, std::size_t &nodes) {
    const Shape outer_shape = Parser(outer).node();
    const Shape entry_shape = Parser(entry).node();
    tidl_yfw_datatree *root = array(1);
    nodes = 0;
    fill(*root, outer_shape, ns, 0, entry_shape, entries, nodes);
    return root;
}

} // namespace bench
