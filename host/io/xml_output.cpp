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

// Whether `c` may go out as it is: most of any text.
constexpr bool plain(char c) {
    return static_cast<unsigned char>(c) >= 0x20 && c != '&' && c != '<' && c != '>' && c != '"';
}

void escape(std::string &out, std::string_view text, bool attribute) {
    while (!text.empty()) {
        const auto run = static_cast<std::size_t>(
            std::find_if_not(text.begin(), text.end(), plain) - text.begin());
        out.append(text.substr(0, run));
        if (run == text.size()) {
            return;
        }
        const char c = text[run];
        text.remove_prefix(run + 1);
        const auto *ref = std::find_if(kReferences.begin(), kReferences.end(), [&](const auto &r) {
            return r.c == c && (attribute || !r.in_attributes_only);
        });
        if (ref != kReferences.end()) {
            out += ref->text;
        } else if (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') {
            // Not a character of XML 1.0: a reader will refuse it, which is
            // better than losing it here.
            char digits[4];
            auto [end, ec] = std::to_chars(digits, digits + sizeof digits, static_cast<int>(c));
            out.append("&#").append(digits, end).append(";");
        } else {
            out += c;
        }
    }
}

// What XML cannot hold, found before anything is written: the first such node
// in document order.
void check(const tidl_yfw_datatree &n) {
    if (n.tag == nullptr) {
        throw std::invalid_argument("XML cannot hold a node without a tag");
    }
    auto children = detail::children_of(n);
    if (n.present_value && !children.empty()) {
        throw std::invalid_argument("XML cannot hold both a value and children, as <" +
                                    std::string(n.tag) + "> has");
    }
    for (const tidl_yfw_datatree &child : children) {
        check(child);
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
    explicit XmlWriter(detail::Sink &sink) : sink_(sink), out_(sink.text()) {}

    // `extra` goes into the start tag as it is: the nc prefix declaration.
    // The tree has passed check().
    void element(const tidl_yfw_datatree &n, const char *parent_ns, std::size_t indent,
                 std::string_view extra) {
        auto children = detail::children_of(n);
        out_.append(indent, ' ');
        out_ += '<';
        out_ += n.tag;
        if (!detail::same_text(n.namespace_, parent_ns)) {
            attribute("xmlns", n.namespace_ != nullptr ? n.namespace_ : "");
        }
        out_ += extra;
        if (n.present_operation) {
            out_ += " nc:operation=\"";
            // Names and numbers need no escaping.
            detail::append_operation(out_, n.operation);
            out_ += '"';
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
            sink_.maybe_flush();
            return;
        }
        out_ += "</";
        out_ += n.tag;
        out_ += ">\n";
        sink_.maybe_flush();
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
        static const std::string ns(detail::kNetconfNs);
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

    detail::Sink &sink_;
    std::string &out_;
};

void write(detail::Sink &sink, const tidl_yfw_datatree &document) {
    auto roots = detail::children_of(document);
    bool any_operation = false;
    for (const tidl_yfw_datatree &root : roots) {
        check(root);
        any_operation = any_operation || has_operation(root);
    }
    const std::string nc_declaration =
        any_operation ? " xmlns:nc=\"" + std::string(detail::kNetconfNs) + "\"" : "";
    XmlWriter writer(sink);
    // A lone root is printed alone unless a reader would take it for a wrapper.
    if (roots.size() == 1 && !detail::is_wrapper_name(roots[0].tag)) {
        writer.element(roots[0], nullptr, 0, nc_declaration);
    } else {
        writer.wrapper(roots, nc_declaration);
    }
    sink.flush();
}

} // namespace

std::string to_xml(const tidl_yfw_datatree &document) {
    detail::Sink sink;
    write(sink, document);
    return sink.take();
}

void write_xml(std::ostream &out, const tidl_yfw_datatree &document) {
    detail::Sink sink(&out);
    write(sink, document);
}

} // namespace ocsysmap
