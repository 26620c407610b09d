// NETCONF-style XML into data trees: element names are tags, namespaces come
// from xmlns, the base namespace's `operation` attribute gives the edit
// operation and the text gives the value.
#include <climits>
#include <memory>
#include <mutex>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap::detail {
namespace {

// No network, and CDATA arrives as plain text. A document type declaration
// stops the parse before anything in it is read, so the only entities left to
// substitute are the predefined ones and character references; substituting
// them keeps "&amp;" in a namespace from staying "&#38;". Line numbers past
// 65535 are kept for the messages.
constexpr int kXmlOptions =
    XML_PARSE_NONET | XML_PARSE_NOCDATA | XML_PARSE_NOENT | XML_PARSE_BIG_LINES;

struct XmlDocFree {
    void operator()(xmlDoc *doc) const { xmlFreeDoc(doc); }
};
struct XmlCtxtFree {
    void operator()(xmlParserCtxt *ctxt) const { xmlFreeParserCtxt(ctxt); }
};
struct XmlCharFree {
    void operator()(xmlChar *text) const { xmlFree(text); }
};

std::string_view view(const xmlChar *text) {
    return text == nullptr ? std::string_view{} : reinterpret_cast<const char *>(text);
}

// libxml2 ends its messages with a newline and sometimes puts one inside.
std::string one_line(std::string_view text) {
    std::string out(text);
    std::replace(out.begin(), out.end(), '\n', ' ');
    out.erase(out.find_last_not_of(' ') + 1);
    return out;
}

bool is_blank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// The parse's own pointer on the context points at a flag raised here.
void refuse_dtd(void *user, const xmlChar *, const xmlChar *, const xmlChar *) {
    auto *ctxt = static_cast<xmlParserCtxt *>(user);
    *static_cast<bool *>(ctxt->_private) = true;
    xmlStopParser(ctxt);
}

// Errors are read from the context afterwards instead of going to stderr.
void keep_quiet(void *, xmlError *) {}

[[noreturn]] void fail(const xmlNode *at, std::string_view what) {
    throw ParseError("XML line " + std::to_string(xmlGetLineNo(at)) + ": " + std::string(what));
}

// A root of a native module is always a device's answer, whose empty elements
// are empty leaves, never selections. OpenConfig roots, and roots of modules
// the framework does not know (test modules), may be requests.
bool is_native_root(const xmlNode *element) {
    const yfw::Module *m =
        element->ns != nullptr ? yfw::module_by_namespace(view(element->ns->href)) : nullptr;
    return m != nullptr && !m->name.starts_with("openconfig-");
}

class TreeBuilder {
public:
    explicit TreeBuilder(yfw::Arena &arena) : arena_(arena) {}

    // `empty_selects`: an empty element is a selection node without a value.
    void fill(tidl_yfw_datatree &node, const xmlNode *element, int depth, bool empty_selects) {
        if (depth > kMaxDepth) {
            fail(element, "elements nest deeper than " + std::to_string(kMaxDepth) + " levels");
        }
        node.tag = arena_.text(view(element->name));
        node.namespace_ = element->ns != nullptr ? arena_.text(view(element->ns->href)) : nullptr;
        if (auto op = operation_of(element)) {
            yfw_dt_set_operation(&node, *op);
        }
        Content content = content_of(element);
        for (const xmlNode *child : content.elements) {
            fill(*arena_.append_child(&node), child, depth + 1, empty_selects);
        }
        if (content.elements.empty() && (!content.text.empty() || !empty_selects)) {
            node.value = arena_.text(content.text);
            node.present_value = 1;
        }
    }

    struct Content {
        std::vector<const xmlNode *> elements;
        std::string text;
    };

    // The child elements and the text of an element; text among elements
    // may only be layout.
    static Content content_of(const xmlNode *element) {
        Content out;
        for (const xmlNode *c = element->children; c != nullptr; c = c->next) {
            if (c->type == XML_ELEMENT_NODE) {
                out.elements.push_back(c);
            } else if (c->type == XML_TEXT_NODE || c->type == XML_CDATA_SECTION_NODE) {
                out.text += view(c->content);
            }
        }
        if (!out.elements.empty() && !is_blank(out.text)) {
            fail(element,
                 "<" + std::string(view(element->name)) + "> mixes text with child elements");
        }
        return out;
    }

    static std::optional<int32_t> operation_of(const xmlNode *element) {
        for (const xmlAttr *a = element->properties; a != nullptr; a = a->next) {
            if (view(a->name) != "operation") {
                continue;
            }
            if (a->ns == nullptr || view(a->ns->href) != kNetconfNs) {
                fail(element, "the operation attribute of <" + std::string(view(element->name)) +
                                  "> must be in the namespace " + std::string(kNetconfNs));
            }
            std::unique_ptr<xmlChar, XmlCharFree> text(
                xmlNodeListGetString(element->doc, a->children, 1));
            std::string_view word = view(text.get());
            if (auto op = operation_from_text(word)) {
                return op;
            }
            fail(element, "unknown operation \"" + std::string(word) +
                              "\" (merge, replace, create, delete, remove or a number)");
        }
        return std::nullopt;
    }

private:
    yfw::Arena &arena_;
};

std::unique_ptr<xmlDoc, XmlDocFree> read_document(std::string_view text) {
    static std::once_flag init;
    std::call_once(init, xmlInitParser);
    if (text.size() > static_cast<std::size_t>(INT_MAX)) {
        throw ParseError("XML: the input is too large");
    }
    std::unique_ptr<xmlParserCtxt, XmlCtxtFree> ctxt(xmlNewParserCtxt());
    if (!ctxt) {
        throw std::bad_alloc();
    }
    bool saw_dtd = false;
    ctxt->_private = &saw_dtd;
    ctxt->sax->internalSubset = refuse_dtd;
    ctxt->sax->serror = keep_quiet;
    std::unique_ptr<xmlDoc, XmlDocFree> doc(xmlCtxtReadMemory(
        ctxt.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr, kXmlOptions));
    if (saw_dtd) {
        throw ParseError("XML: document type declarations are not accepted");
    }
    if (!doc || !ctxt->wellFormed || !ctxt->nsWellFormed) {
        const xmlError *e = xmlCtxtGetLastError(ctxt.get());
        if (e == nullptr || e->message == nullptr) {
            throw ParseError("XML: malformed document");
        }
        throw ParseError("XML line " + std::to_string(e->line) + ": " + one_line(e->message));
    }
    return doc;
}

} // namespace

std::vector<tidl_yfw_datatree *> parse_xml(yfw::Arena &arena, std::string_view text,
                                           bool read_kind) {
    auto doc = read_document(text);
    const xmlNode *top = xmlDocGetRootElement(doc.get());
    if (top == nullptr) {
        throw ParseError("XML: no document element");
    }
    std::vector<const xmlNode *> elements{top};
    if (is_wrapper_name(view(top->name))) {
        if (TreeBuilder::operation_of(top)) {
            fail(top, "an operation on the <" + std::string(view(top->name)) +
                          "> wrapper is not supported");
        }
        elements = TreeBuilder::content_of(top).elements;
    }
    TreeBuilder builder(arena);
    std::vector<tidl_yfw_datatree *> roots;
    roots.reserve(elements.size());
    for (const xmlNode *element : elements) {
        roots.push_back(arena.new_root());
        builder.fill(*roots.back(), element, 1, read_kind && !is_native_root(element));
    }
    return roots;
}

} // namespace ocsysmap::detail
