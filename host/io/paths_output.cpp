// One line per node, depth first: the node's path from the document, its
// value and its operation. The segments are those of the error path.
#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap {
namespace {

class PathsWriter {
public:
    explicit PathsWriter(detail::Sink &sink) : sink_(sink), out_(sink.text()), quoter_(out_) {}

    void node(const tidl_yfw_datatree &n, const char *parent_ns) {
        std::size_t path_mark = path_.size();
        std::size_t schema_mark = schema_.size();
        schema_ += '/';
        path_ += '/';
        if (n.tag != nullptr) {
            schema_ += n.tag;
            yfw::append_segment(path_, n, schema_, parent_ns);
        } else {
            path_ += "(no tag)";
        }
        out_ += path_;
        if (n.present_value) {
            out_ += " = ";
            if (n.value != nullptr) {
                quoter_.append(n.value);
            } else {
                out_ += "null";
            }
        }
        if (n.present_operation) {
            out_ += " @";
            detail::append_operation(out_, n.operation);
        }
        out_ += '\n';
        sink_.maybe_flush();
        for (const tidl_yfw_datatree &child : detail::children_of(n)) {
            node(child, n.namespace_);
        }
        path_.resize(path_mark);
        schema_.resize(schema_mark);
    }

private:
    detail::Sink &sink_;
    std::string &out_;
    detail::JsonQuoter quoter_;
    std::string path_;   // printed segments down to the present node
    std::string schema_; // plain tags down to the present node, for list keys
};

void write(detail::Sink &sink, const tidl_yfw_datatree &document) {
    PathsWriter writer(sink);
    for (const tidl_yfw_datatree &root : detail::children_of(document)) {
        writer.node(root, nullptr);
    }
    sink.flush();
}

} // namespace

std::string to_paths(const tidl_yfw_datatree &document) {
    detail::Sink sink;
    write(sink, document);
    return sink.take();
}

void write_paths(std::ostream &out, const tidl_yfw_datatree &document) {
    detail::Sink sink(&out);
    write(sink, document);
}

} // namespace ocsysmap
