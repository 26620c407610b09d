// NETCONF-style XML into data trees: element names are tags, namespaces come
// from xmlns, the base namespace's `operation` attribute gives the edit
// operation and the text gives the value. The trees are built as the text is
// read, without a document of libxml2's in between.
#include <climits>
#include <memory>
#include <mutex>

#include <libxml/SAX2.h>
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

[[noreturn]] void fail_at(long line, std::string_view what) {
    throw ParseError("XML line " + std::to_string(line) + ": " + std::string(what));
}

struct XmlCtxtFree {
    void operator()(xmlParserCtxt *ctxt) const {
        if (ctxt->myDoc != nullptr) {
            xmlFreeDoc(ctxt->myDoc);
        }
        xmlFreeParserCtxt(ctxt);
    }
};

// A root of a native module is always a device's answer, whose empty elements
// are empty leaves, never selections. OpenConfig roots, and roots of modules
// the framework does not know (test modules), may be requests.
bool is_native_root(const xmlChar *uri) {
    const yfw::Module *m = uri != nullptr ? yfw::module_by_namespace(view(uri)) : nullptr;
    return m != nullptr && !m->name.starts_with("openconfig-");
}

// Builds the trees while libxml2 reads, with no document in between. A refusal
// of the content is kept, not thrown, until the whole text has been read: a
// malformed text is reported as such first, and of several refusals the one
// of the element that comes first in document order wins, as a reader of the
// finished document would find it.
class SaxBuilder {
public:
    SaxBuilder(yfw::Arena &arena, bool read_kind) : arena_(arena), read_kind_(read_kind) {}

    static void install(xmlSAXHandler &sax) {
        sax = xmlSAXHandler{};
        sax.initialized = XML_SAX2_MAGIC;
        sax.startElementNs = start_element;
        sax.endElementNs = end_element;
        sax.characters = characters;
        sax.cdataBlock = characters;
        sax.ignorableWhitespace = characters;
        sax.internalSubset = refuse_dtd;
        sax.serror = keep_quiet;
    }

    bool saw_dtd() const { return saw_dtd_; }
    bool saw_element() const { return next_order_ != 0; }
    std::vector<tidl_yfw_datatree *> take() {
        if (refusal_) {
            fail_at(refusal_->line, refusal_->message);
        }
        return std::move(roots_);
    }

private:
    struct Open {
        tidl_yfw_datatree *node; // null for a wrapper
        const xmlChar *name;
        long line;
        uint64_t order; // in document order
        int depth;      // 1 for a root
        bool has_elements = false;
        bool empty_selects = false;
    };
    struct Refusal {
        uint64_t order;
        int rank; // within one element: depth, then operation, then content
        long line;
        std::string message;
    };

    static SaxBuilder &of(void *ctx) {
        return *static_cast<SaxBuilder *>(static_cast<xmlParserCtxt *>(ctx)->_private);
    }

    void refuse(const Open &at, int rank, std::string message) {
        if (!refusal_ || std::pair(at.order, rank) < std::pair(refusal_->order, refusal_->rank)) {
            refusal_ = Refusal{at.order, rank, at.line, std::move(message)};
        }
    }

    // The operation attribute, refused when it is not the base namespace's or
    // not an operation.
    std::optional<int32_t> operation(const Open &at, int count, const xmlChar **attributes) {
        for (int i = 0; i < count; ++i, attributes += 5) {
            if (view(attributes[0]) != "operation") {
                continue;
            }
            if (attributes[2] == nullptr || view(attributes[2]) != kNetconfNs) {
                refuse(at, 1,
                       "the operation attribute of <" + std::string(view(at.name)) +
                           "> must be in the namespace " + std::string(kNetconfNs));
                return std::nullopt;
            }
            const std::string_view word(reinterpret_cast<const char *>(attributes[3]),
                                        static_cast<std::size_t>(attributes[4] - attributes[3]));
            if (auto op = operation_from_text(word)) {
                return op;
            }
            refuse(at, 1,
                   "unknown operation \"" + std::string(word) +
                       "\" (merge, replace, create, delete, remove or a number)");
            return std::nullopt;
        }
        return std::nullopt;
    }

    // Text among child elements may only be layout.
    void check_layout(const Open &at) {
        if (at.has_elements && !is_blank(text_)) {
            // Appended, not concatenated: g++ 12 -O3 misreads the latter.
            std::string message = "<";
            message.append(view(at.name)).append("> mixes text with child elements");
            refuse(at, 2, std::move(message));
        }
    }

    static void start_element(void *ctx, const xmlChar *name, const xmlChar *, const xmlChar *uri,
                              int, const xmlChar **, int attribute_count, int,
                              const xmlChar **attributes) {
        SaxBuilder &b = of(ctx);
        const long line = xmlSAX2GetLineNumber(ctx);
        Open at{nullptr, name, line, b.next_order_++, 1};
        if (b.open_.empty() && is_wrapper_name(view(name))) {
            // The document element holds the roots: it is no node itself.
            at.depth = 0;
            if (b.operation(at, attribute_count, attributes)) {
                b.refuse(at, 1,
                         "an operation on the <" + std::string(view(name)) +
                             "> wrapper is not supported");
            }
            b.open_.push_back(at);
            return;
        }
        if (!b.open_.empty()) {
            Open &parent = b.open_.back();
            parent.has_elements = true;
            b.check_layout(parent);
            at.depth = parent.depth + 1;
            at.empty_selects = parent.empty_selects;
        }
        b.text_.clear();
        if (at.depth > kMaxDepth) {
            b.refuse(at, 0, "elements nest deeper than " + std::to_string(kMaxDepth) + " levels");
        }
        if (at.depth == 1) {
            at.node = b.arena_.new_root();
            at.empty_selects = b.read_kind_ && !is_native_root(uri);
            b.roots_.push_back(at.node);
        } else if (tidl_yfw_datatree *parent = b.open_.back().node) {
            at.node = b.arena_.append_child(parent);
        }
        if (at.node != nullptr) {
            at.node->tag = b.arena_.text(view(name));
            at.node->namespace_ = uri != nullptr ? b.arena_.text(view(uri)) : nullptr;
            if (auto op = b.operation(at, attribute_count, attributes)) {
                yfw_dt_set_operation(at.node, *op);
            }
        }
        b.open_.push_back(at);
    }

    static void end_element(void *ctx, const xmlChar *, const xmlChar *, const xmlChar *) {
        SaxBuilder &b = of(ctx);
        const Open at = b.open_.back();
        b.open_.pop_back();
        b.check_layout(at);
        if (at.node != nullptr && !at.has_elements && (!b.text_.empty() || !at.empty_selects)) {
            at.node->value = b.arena_.copy(b.text_);
            at.node->present_value = 1;
        }
        b.text_.clear();
    }

    static void characters(void *ctx, const xmlChar *text, int length) {
        of(ctx).text_.append(reinterpret_cast<const char *>(text),
                             static_cast<std::size_t>(length));
    }

    // A document type declaration stops the parse before anything in it is read.
    static void refuse_dtd(void *ctx, const xmlChar *, const xmlChar *, const xmlChar *) {
        of(ctx).saw_dtd_ = true;
        xmlStopParser(static_cast<xmlParserCtxt *>(ctx));
    }

    // Errors are read from the context afterwards instead of going to stderr.
    static void keep_quiet(void *, xmlError *) {}

    yfw::Arena &arena_;
    bool read_kind_;
    std::vector<Open> open_;
    std::string text_; // of the innermost open element
    std::vector<tidl_yfw_datatree *> roots_;
    uint64_t next_order_ = 0;
    std::optional<Refusal> refusal_;
    bool saw_dtd_ = false;
};

} // namespace

std::vector<tidl_yfw_datatree *> parse_xml(yfw::Arena &arena, std::string_view text,
                                           bool read_kind) {
    static std::once_flag init;
    std::call_once(init, xmlInitParser);
    if (text.size() > static_cast<std::size_t>(INT_MAX)) {
        throw ParseError("XML: the input is too large");
    }
    // Fed in pieces: libxml2 keeps no copy of the whole text, only what it
    // has not read yet.
    constexpr std::size_t kPiece = 1 << 16;
    xmlSAXHandler sax;
    SaxBuilder::install(sax);
    std::unique_ptr<xmlParserCtxt, XmlCtxtFree> ctxt(
        xmlCreatePushParserCtxt(&sax, nullptr, nullptr, 0, nullptr));
    if (!ctxt) {
        throw std::bad_alloc();
    }
    SaxBuilder builder(arena, read_kind);
    ctxt->_private = &builder;
    xmlCtxtUseOptions(ctxt.get(), kXmlOptions);
    for (std::size_t at = 0; at < text.size() && !ctxt->disableSAX; at += kPiece) {
        const std::size_t size = std::min(kPiece, text.size() - at);
        xmlParseChunk(ctxt.get(), text.data() + at, static_cast<int>(size), 0);
    }
    xmlParseChunk(ctxt.get(), nullptr, 0, 1);
    if (builder.saw_dtd()) {
        throw ParseError("XML: document type declarations are not accepted");
    }
    if (!ctxt->wellFormed || !ctxt->nsWellFormed) {
        const xmlError *e = xmlCtxtGetLastError(ctxt.get());
        if (e == nullptr || e->message == nullptr) {
            throw ParseError("XML: malformed document");
        }
        throw ParseError("XML line " + std::to_string(e->line) + ": " + one_line(e->message));
    }
    if (!builder.saw_element()) {
        throw ParseError("XML: no document element");
    }
    return builder.take();
}

} // namespace ocsysmap::detail
