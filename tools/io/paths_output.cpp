// One line per node, depth first: the node's path from the document, its
// value and its operation. The segments are those of the error path.
#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace ocsysmap {
namespace {

class PathsWriter {
public:
    std::string take() { return std::move(out_); }

    void node(const tidl_yfw_datatree &n, const char *parent_ns) {
        std::size_t path_mark = path_.size();
        std::size_t schema_mark = schema_.size();
        schema_ += '/';
        path_ += '/';
        if (n.tag != nullptr) {
            schema_ += n.tag;
            path_ += yfw::describe_segment(n, schema_, parent_ns);
        } else {
            path_ += "(no tag)";
        }
        out_ += path_;
        if (n.present_value) {
            out_ += " = ";
            out_ += n.value != nullptr ? detail::json_quote(n.value) : "null";
        }
        if (n.present_operation) {
            out_ += " @";
            out_ += detail::operation_text(n.operation);
        }
        out_ += '\n';
        for (const tidl_yfw_datatree &child : detail::children_of(n)) {
            node(child, n.namespace_);
        }
        path_.resize(path_mark);
        schema_.resize(schema_mark);
    }

private:
    std::string out_;
    std::string path_;   // printed segments down to the present node
    std::string schema_; // plain tags down to the present node, for list keys
};

} // namespace

std::string to_paths(const tidl_yfw_datatree &document) {
    PathsWriter writer;
    for (const tidl_yfw_datatree &root : detail::children_of(document)) {
        writer.node(root, nullptr);
    }
    return writer.take();
}

} // namespace ocsysmap
