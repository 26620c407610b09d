// NETCONF-style XML: a default xmlns wherever the namespace changes, the
// operation as nc:operation, two spaces of indent per level.
#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap {
namespace {

struct Reference {
    char c;
    std::string_view text;
    bool in_attributes_only;
};

// A carriage return is kept from the reader's line-end normalisation, and
// white space in attributes from attribute normalisation.
constexpr std::array<Reference, 7> kReferences{{
    {'&', "&amp;", false},
    {'<', "&lt;", false},
    {'>', "&gt;", false},
    {'\r', "&#13;", false},
    {'"', "&quot;", true},
    {'\n', "&#10;", true},
    {'\t', "&#9;", true},
}};

void escape(std::string &out, std::string_view text, bool attribute) {
    for (char c : text) {
        const auto *ref = std::find_if(kReferences.begin(), kReferences.end(), [&](const auto &r) {
            return r.c == c && (attribute || !r.in_attributes_only);
        });
        if (ref != kReferences.end()) {
            out += ref->text;
        } else if (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') {
            // Not a character of XML 1.0: a reader will refuse it, which is
            // better than losing it here.
            out += "&#" + std::to_string(static_cast<int>(c)) + ";";
        } else {
            out += c;
        }
    }
}

bool has_operation(const tidl_yfw_datatree &n) {
    if (n.present_operation) {
        return true;
    }
    for (const tidl_yfw_datatree &child : detail::children_of(n)) {
        if (has_operation(child)) {
            return true;
        }
    }
    return false;
}

class XmlWriter {
public:
    std::string take() { return std::move(out_); }

    // `extra` goes into the start tag as it is: the nc prefix declaration.
    void element(const tidl_yfw_datatree &n, const char *parent_ns, std::size_t indent,
                 std::string_view extra) {
        if (n.tag == nullptr) {
            throw std::invalid_argument("XML cannot hold a node without a tag");
        }
        auto children = detail::children_of(n);
        if (n.present_value && !children.empty()) {
            throw std::invalid_argument("XML cannot hold both a value and children, as <" +
                                        std::string(n.tag) + "> has");
        }
        out_.append(indent, ' ');
        out_ += '<';
        out_ += n.tag;
        if (!detail::same_text(n.namespace_, parent_ns)) {
            attribute("xmlns", n.namespace_ != nullptr ? n.namespace_ : "");
        }
        out_ += extra;
        if (n.present_operation) {
            attribute("nc:operation", detail::operation_text(n.operation));
        }
        if (!children.empty()) {
            out_ += ">\n";
            for (const tidl_yfw_datatree &child : children) {
                element(child, n.namespace_, indent + 2, {});
            }
            out_.append(indent, ' ');
        } else if (n.present_value) {
            out_ += '>';
            escape(out_, n.value != nullptr ? n.value : "", false);
        } else {
            out_ += "/>\n";
            return;
        }
        out_ += "</";
        out_ += n.tag;
        out_ += ">\n";
    }

    void wrapper(std::span<const tidl_yfw_datatree> roots, std::string_view extra) {
        out_ += "<data";
        attribute("xmlns", detail::kNetconfNs);
        out_ += extra;
        if (roots.empty()) {
            out_ += "/>\n";
            return;
        }
        out_ += ">\n";
        const std::string ns(detail::kNetconfNs);
        for (const tidl_yfw_datatree &root : roots) {
            element(root, ns.c_str(), 2, {});
        }
        out_ += "</data>\n";
    }

private:
    void attribute(std::string_view name, std::string_view value) {
        out_ += ' ';
        out_ += name;
        out_ += "=\"";
        escape(out_, value, true);
        out_ += '"';
    }

    std::string out_;
};

} // namespace

std::string to_xml(const tidl_yfw_datatree &document) {
    auto roots = detail::children_of(document);
    bool any_operation = false;
    for (const tidl_yfw_datatree &root : roots) {
        any_operation = any_operation || has_operation(root);
    }
    const std::string nc_declaration =
        any_operation ? " xmlns:nc=\"" + std::string(detail::kNetconfNs) + "\"" : "";
    XmlWriter writer;
    // A lone root is printed alone unless a reader would take it for a wrapper.
    if (roots.size() == 1 && !(roots[0].tag != nullptr && detail::is_wrapper_name(roots[0].tag))) {
        writer.element(roots[0], nullptr, 0, nc_declaration);
    } else {
        writer.wrapper(roots, nc_declaration);
    }
    return writer.take();
}

} // namespace ocsysmap
