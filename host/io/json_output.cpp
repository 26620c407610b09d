// The lossless JSON form: every field whose presence bit is raised, the
// namespace only where it changes (as a module name where one is known).
// Written as it goes, laid out as a JSON library prints with an indent of two.
#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap {

namespace detail {

void append_json_quoted(std::string &out, std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    out += '"';
    std::size_t plain = 0; // where the run of bytes that stand as they are began
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\' && c < 0x80) {
            ++i;
            continue;
        }
        std::size_t length = 1;
        if (c >= 0x80) {
            length = utf8_length(text.substr(i));
            if (length != 0) {
                i += length;
                continue;
            }
            length = 1;
        }
        out.append(text, plain, i - plain);
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (c < 0x20) {
                out += "\\u00";
                out += kHex[c >> 4];
                out += kHex[c & 0xF];
            } else {
                out += "\xEF\xBF\xBD"; // U+FFFD for a byte that begins no character
            }
        }
        i += length;
        plain = i;
    }
    out.append(text, plain, text.size() - plain);
    out += '"';
}

} // namespace detail

namespace {

class JsonWriter {
public:
    explicit JsonWriter(detail::Sink &sink) : sink_(sink), out_(sink.text()), quoter_(out_) {}

    void roots(std::span<const tidl_yfw_datatree> roots) {
        if (roots.empty()) {
            out_ += "[]\n";
            return;
        }
        out_ += "[\n";
        for (std::size_t i = 0; i < roots.size(); ++i) {
            out_ += i == 0 ? "  " : ",\n  ";
            node(roots[i], nullptr, 2);
        }
        out_ += "\n]\n";
    }

private:
    // One object; `indent` is where its braces stand.
    void node(const tidl_yfw_datatree &n, const char *parent_ns, std::size_t indent) {
        out_ += "{\n";
        first_ = true;
        key("tag", indent);
        text_or_null(n.tag);
        if (!detail::same_text(n.namespace_, parent_ns)) {
            const yfw::Module *m =
                n.namespace_ != nullptr ? yfw::module_by_namespace(n.namespace_) : nullptr;
            key(m != nullptr ? "module" : "namespace", indent);
            if (m != nullptr) {
                quoter_.append(m->name);
            } else {
                text_or_null(n.namespace_);
            }
        }
        if (n.present_value) {
            key("value", indent);
            text_or_null(n.value);
        }
        if (n.present_operation) {
            key("operation", indent);
            if (auto name = detail::operation_name(n.operation)) {
                quoter_.append(*name);
            } else {
                number(n.operation);
            }
        }
        if (n.present_error_kind) {
            key("error_kind", indent);
            number(n.error_kind);
        }
        if (n.present_node_kind) {
            key("node_kind", indent);
            number(n.node_kind);
        }
        if (n.present_is_key) {
            key("is_key", indent);
            number(n.is_key);
        }
        if (n.present_subtrees && n.subtrees == nullptr && n.subtree_count != 0) {
            key("children", indent);
            out_ += "null";
            key("subtree_count", indent);
            number(n.subtree_count);
        } else if (n.present_subtrees) {
            key("children", indent);
            children(n, indent + 2);
        } else if (n.subtree_count != 0) {
            key("subtree_count", indent);
            number(n.subtree_count);
        }
        out_ += '\n';
        out_.append(indent, ' ');
        out_ += '}';
        first_ = false;
        sink_.maybe_flush();
    }

    void children(const tidl_yfw_datatree &n, std::size_t indent) {
        auto kids = detail::children_of(n);
        if (kids.empty()) {
            out_ += "[]";
            return;
        }
        out_ += "[\n";
        for (std::size_t i = 0; i < kids.size(); ++i) {
            if (i != 0) {
                out_ += ",\n";
            }
            out_.append(indent + 2, ' ');
            node(kids[i], n.namespace_, indent + 2);
        }
        out_ += '\n';
        out_.append(indent, ' ');
        out_ += ']';
    }

    void key(std::string_view name, std::size_t indent) {
        out_ += first_ ? "" : ",\n";
        first_ = false;
        out_.append(indent + 2, ' ');
        out_ += '"';
        out_ += name;
        out_ += "\": ";
    }

    void text_or_null(const char *text) {
        if (text != nullptr) {
            quoter_.append(text);
        } else {
            out_ += "null";
        }
    }

    template <typename T> void number(T value) {
        char digits[24];
        auto [end, ec] = std::to_chars(digits, digits + sizeof digits, value);
        out_.append(digits, end);
    }

    detail::Sink &sink_;
    std::string &out_;
    detail::JsonQuoter quoter_;
    bool first_ = true; // no key yet in the object being written
};

void write(detail::Sink &sink, const tidl_yfw_datatree &document) {
    JsonWriter(sink).roots(detail::children_of(document));
    sink.flush();
}

} // namespace

std::string to_json(const tidl_yfw_datatree &document) {
    detail::Sink sink;
    write(sink, document);
    return sink.take();
}

void write_json(std::ostream &out, const tidl_yfw_datatree &document) {
    detail::Sink sink(&out);
    write(sink, document);
}

} // namespace ocsysmap
