// The OpenConfig side of the tool through libyang: the published models in a
// context, typed data to and from the framework's trees, printing, parsing and
// validation. Native trees are not in the models and stay on parse_input and
// the tool's own writers.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "yfw/standin.hpp"
#include "ymap_namespaces.h"

struct ly_ctx;
struct lyd_node;

namespace ocsysmap::yang {

// One complaint of libyang about one data node.
struct Diagnostic {
    std::string path;
    std::string message;
    // The tag of a node the models do not have at all; empty for other faults.
    std::string unknown_element{};
};

// Data the models reject, or models that cannot be loaded. what() is the
// first diagnostic (or the whole message when there is none).
struct YangError : std::runtime_error {
    explicit YangError(std::vector<Diagnostic> found);
    explicit YangError(const std::string &message);
    std::vector<Diagnostic> diagnostics;
};

// The modules the OpenConfig side needs; their imports come along.
#define OCSYSMAP_MODULE_NAME_(id, name, ns) name,
inline constexpr std::string_view kModuleNames[] = {YMAP_OPENCONFIG_MODULES(OCSYSMAP_MODULE_NAME_)};
#undef OCSYSMAP_MODULE_NAME_

// A libyang context with the OpenConfig system models loaded from a directory
// searched recursively, with every module that defines identities
// implemented (so that identity values resolve) and ietf-netconf for the
// operation annotation (the directory's, else an empty module of that name,
// to which libyang adds the annotation). Throws YangError when a module is
// missing or broken. libyang's messages are kept, not logged
// (ly_log_options(LY_LOSTORE), which is process-wide), for the diagnostics.
class Models {
public:
    explicit Models(const std::filesystem::path &dir);
    ~Models();
    Models(const Models &) = delete;
    Models &operator=(const Models &) = delete;

    // More modules (ietf-netconf and the like) may be loaded into it.
    ly_ctx *context() const { return ctx_; }

private:
    ly_ctx *ctx_ = nullptr;
};

// The models directory: `option` (from --models) when given, else the
// environment variable OCSYSMAP_MODELS when set and not empty, else none.
std::optional<std::filesystem::path> models_dir(std::optional<std::string_view> option);

// Frees a whole data tree with all its siblings.
struct DataFree {
    void operator()(lyd_node *node) const noexcept;
};
using Data = std::unique_ptr<lyd_node, DataFree>;

// OpenConfig data (the first of its top-level siblings) into framework roots
// as parse_input makes them: identity values without their module prefix,
// the ietf-netconf operation metadata as the node's operation, and in a read
// kind empty containers and leaves as selection nodes. Opaque nodes (the
// selection nodes of a subtree filter) come along by name and namespace.
std::vector<tidl_yfw_datatree *> from_lyd(yfw::Arena &arena, const lyd_node *first_sibling,
                                          bool read_kind);

// The OpenConfig roots of an output document (a node without a tag whose
// children are module roots, as Session::output() is) as typed data; roots of
// other namespaces are left out. An identity value gains its module. Throws
// YangError naming each rejected value's path with libyang's message.
Data to_lyd(const Models &models, const tidl_yfw_datatree &document);
// The same, letting each subtree of the OpenConfig roots go as soon as
// libyang holds it, so that the two copies of a large answer are never whole
// at once; those roots are left without children.
Data take_lyd(const Models &models, tidl_yfw_datatree &document);

// The two text forms of OpenConfig data.
enum class Format { xml, json };

// What a tree is checked as.
enum class Content {
    config,      // the answer of a get-config: configuration only
    operational, // the answer of a get: configuration and state
    edit,        // the content of an edit request, operations included
    filter,      // a subtree filter of a read request
};

// Prints every sibling of the tree; the empty tree prints as nothing.
std::string print(const lyd_node *tree, Format format);
// The same written to `out` piece by piece, never held whole.
void print(const lyd_node *tree, Format format, std::ostream &out);

// Parses text of the models, without validation (so that partial edit
// content and filters parse). Throws YangError with libyang's diagnostics.
Data parse(const Models &models, std::string_view text, Format format, Content content);

// Checks the tree against the models as `content`; an empty result is valid.
// The tree comes back as it was (the defaults validation adds are removed).
std::vector<Diagnostic> validate(const Models &models, Data &tree, Content content);

} // namespace ocsysmap::yang
