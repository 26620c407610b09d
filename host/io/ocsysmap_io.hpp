// Reading and writing data trees as text: NETCONF-style XML, the lossless JSON
// form of the record, and one line per node ("paths"). Used by the ocsysmap
// tool, the tests and the benchmarks.
#pragma once

#include <iosfwd>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/standin.hpp"

namespace ocsysmap {

// A malformed input text: the message says what and where.
struct ParseError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Parses one root, or several roots inside <config>, <filter> or <data> (XML)
// or a JSON array. XML or JSON is chosen by the content. An empty XML element
// carries the empty value, except in a read kind under a root that is not of a
// native module (a native root is always an answer of the device): there it is
// a selection node without a value. Throws ParseError.
std::vector<tidl_yfw_datatree *> parse_input(yfw::Arena &arena, std::string_view text,
                                             bool read_kind);

// Writers of a document root (a node without a tag whose children are the
// module roots), as the output tree of a Session is. XML cannot hold a node
// without a tag, nor one with both a value and children: to_xml throws
// std::invalid_argument for those, and drops the children of a malformed pair.
std::string to_paths(const tidl_yfw_datatree &document);
std::string to_xml(const tidl_yfw_datatree &document);
std::string to_json(const tidl_yfw_datatree &document);

// The same texts written to `out` piece by piece, never held whole. write_xml
// checks the whole tree first: when it throws, it has written nothing.
void write_paths(std::ostream &out, const tidl_yfw_datatree &document);
void write_xml(std::ostream &out, const tidl_yfw_datatree &document);
void write_json(std::ostream &out, const tidl_yfw_datatree &document);

// A document root in `arena` whose children are copies of `roots` (sharing
// their subtrees), so that parsed roots can be handed to the writers.
tidl_yfw_datatree *document_of(yfw::Arena &arena, std::span<tidl_yfw_datatree *const> roots);

// RFC 7951 JSON without a schema: "module:name" members, objects for inner
// nodes, arrays for lists and leaf-lists, [null] for an empty leaf, and the
// ietf-netconf:operation annotation. Empty values select in a read kind under
// a root that is not native, as in parse_input. Throws ParseError.
std::vector<tidl_yfw_datatree *> parse_ietf_json(yfw::Arena &arena, std::string_view text,
                                                 bool read_kind);

} // namespace ocsysmap
