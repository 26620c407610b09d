// ocsysmap map: read a tree, hand each root to the walker of its registered
// tree, print the output tree and the status. ocsysmap modules: list the
// modules the framework knows. ocsysmap coverage: the OpenConfig paths the
// mapping tables map, as found when the tool was built. ocsysmap rows: the
// table of the mapping rows.
#include "ocsysmap_cli.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "io/io_detail.hpp"
#include "io/ocsysmap_io.hpp"
#include "ocsystem_map_version.h"
#include "registered_trees.hpp"
#include "rows_table.hpp"
#include "statuses.hpp"
#include "yang/device_modules.hpp"
#include "yang/oc_yang.hpp"
#include "yfw/standin.hpp"

namespace ocsysmap {
namespace {

constexpr std::string_view kUsage =
    "usage: ocsysmap map --kind KIND [--oper-only] [--format paths|xml|json|ietf-json]\n"
    "                    [--trace] [--sysdb PATH=VALUE]... [--models DIR] [--validate] FILE\n"
    "       ocsysmap modules\n"
    "       ocsysmap coverage\n"
    "       ocsysmap rows\n"
    "       ocsysmap --help | --version\n"
    "KIND is get-config, get, edit-a, edit-b, edit-c or a number; FILE - reads standard input.\n"
    "--sysdb sets a system database item by its full path (PATH= sets it empty) and makes\n"
    "the database present; without --sysdb this host has no system database.\n"
    "--models DIR (else $OCSYSMAP_MODELS) reads and prints OpenConfig data through the\n"
    "published models; --validate checks it against them (exit 3 when they refuse it);\n"
    "ietf-json prints OpenConfig data as RFC 7951 JSON and needs the models.\n";

// Exit 2 with the usage text.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};
// Exit 2 with the message alone.
struct InputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Named {
    std::string_view name;
    uint32_t value;
};

constexpr std::array<Named, 5> kKinds{{
    {"get-config", KIND_GET_CONFIG},
    {"get", KIND_GET},
    {"edit-a", KIND_EDIT_A},
    {"edit-b", KIND_EDIT_B},
    {"edit-c", KIND_EDIT_C},
}};

struct Format {
    std::string_view name;
    void (*write)(std::ostream &out, const tidl_yfw_datatree &document);
};

// ietf-json has no writer of its own: the models print it.
constexpr std::array<Format, 4> kFormats{{
    {"paths", write_paths},
    {"xml", write_xml},
    {"json", write_json},
    {"ietf-json", nullptr},
}};

struct MapOptions {
    std::optional<uint32_t> kind;
    bool oper_only = false;
    const Format *format = &kFormats[0];
    bool trace = false;
    std::vector<std::pair<std::string_view, std::string_view>> sysdb_items;
    std::optional<std::string_view> file;
    std::optional<std::string_view> models;
    bool validate = false;
};

template <typename Table> auto find_by_name(const Table &table, std::string_view name) {
    return std::find_if(table.begin(), table.end(),
                        [name](const auto &row) { return row.name == name; });
}

uint32_t kind_from(std::string_view word) {
    if (auto it = find_by_name(kKinds, word); it != kKinds.end()) {
        return it->value;
    }
    if (auto number = detail::parse_decimal<uint32_t>(word)) {
        return *number;
    }
    throw UsageError("unknown kind \"" + std::string(word) + "\"");
}

const Format *format_from(std::string_view word) {
    if (auto it = find_by_name(kFormats, word); it != kFormats.end()) {
        return &*it;
    }
    throw UsageError("unknown format \"" + std::string(word) + "\"");
}

std::pair<std::string_view, std::string_view> sysdb_item_from(std::string_view word) {
    const auto equals_sign = word.find('=');
    if (equals_sign == std::string_view::npos || !word.starts_with('/')) {
        throw UsageError("--sysdb takes PATH=VALUE with a full item path, not \"" +
                         std::string(word) + "\"");
    }
    return {word.substr(0, equals_sign), word.substr(equals_sign + 1)};
}

// The stand-in database holds the command's items while it runs, and is
// absent, as on a host without one, when none is given.
class SysdbScope {
public:
    explicit SysdbScope(const MapOptions &options) {
        yfw::sysdb::clear();
        for (const auto &[path, value] : options.sysdb_items) {
            yfw::sysdb::set_item(path, value);
        }
        yfw::sysdb::set_present(!options.sysdb_items.empty());
    }
    ~SysdbScope() { yfw::sysdb::clear(); }
    SysdbScope(const SysdbScope &) = delete;
    SysdbScope &operator=(const SysdbScope &) = delete;
};

MapOptions parse_map_options(std::span<const std::string_view> args) {
    MapOptions o;
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string_view arg = args[i];
        auto operand = [&]() {
            if (i + 1 == args.size()) {
                throw UsageError(std::string(arg) + " needs a value");
            }
            return args[++i];
        };
        if (arg == "--kind") {
            o.kind = kind_from(operand());
        } else if (arg == "--format") {
            o.format = format_from(operand());
        } else if (arg == "--oper-only") {
            o.oper_only = true;
        } else if (arg == "--trace") {
            o.trace = true;
        } else if (arg == "--sysdb") {
            o.sysdb_items.push_back(sysdb_item_from(operand()));
        } else if (arg == "--models") {
            o.models = operand();
        } else if (arg == "--validate") {
            o.validate = true;
        } else if (arg.size() > 1 && arg.front() == '-') {
            throw UsageError("unknown option " + std::string(arg));
        } else if (o.file) {
            throw UsageError("only one input file is taken");
        } else {
            o.file = arg;
        }
    }
    if (!o.kind) {
        throw UsageError("--kind is required");
    }
    if (!o.file) {
        throw UsageError("an input file is required (- for standard input)");
    }
    return o;
}

std::string input_name(std::string_view file) {
    return file == "-" ? std::string("standard input") : std::string(file);
}

// The whole input in one string, read in large pieces straight into it.
std::string read_input(std::string_view file, std::istream &in) {
    auto slurp = [](std::istream &s, std::string &text) {
        constexpr std::size_t kPiece = 1 << 16;
        for (std::size_t got = 0; s; text.resize(got)) {
            text.resize(got + kPiece);
            s.read(text.data() + got, kPiece);
            got += static_cast<std::size_t>(s.gcount());
        }
    };
    std::string text;
    if (file == "-") {
        slurp(in, text);
        return text;
    }
    const std::filesystem::path path(file);
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) {
        throw InputError(input_name(file) + ": is a directory");
    }
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        throw InputError(input_name(file) + ": " + std::strerror(errno));
    }
    // A regular file's size is known: one allocation of the right size.
    if (const auto size = std::filesystem::file_size(path, ec); !ec) {
        text.reserve(static_cast<std::size_t>(size));
    }
    slurp(stream, text);
    if (stream.bad()) {
        throw InputError(input_name(file) + ": read error");
    }
    return text;
}

std::string describe_root(const tidl_yfw_datatree &root) {
    std::string text = root.tag != nullptr ? "\"" + std::string(root.tag) + "\"" : "without a tag";
    return text + (root.namespace_ != nullptr
                       ? " in namespace \"" + std::string(root.namespace_) + "\""
                       : " without a namespace");
}

void print_lines(std::ostream &err, const std::vector<std::string> &lines) {
    for (std::string_view line : lines) {
        if (!line.empty() && line.back() == '\n') {
            line.remove_suffix(1);
        }
        err << line << '\n';
    }
}

void report(std::ostream &err, cerrno status, yfw::Session &session) {
    err << "status: ";
    if (const StatusRow *named = status_row(status)) {
        err << named->name << " (" << status_hex(status) << ")\n";
    } else {
        err << status_hex(status) << '\n';
    }
    // A run that succeeded names no failed node, whatever a refusal whose
    // status was dropped along the way left behind.
    if (status == YFW_SUCCESS) {
        return;
    }
    const yfw_map_state *state = session.state();
    if (state->error_tag != nullptr) {
        err << "error-tag: " << state->error_tag << '\n';
    }
    if (const std::string_view message = library_message(session); !message.empty()) {
        err << "error-message: " << message << '\n';
    }
    if (!session.error_path().empty()) {
        err << "error-path: " << session.error_path() << '\n';
    }
}

// ---- The OpenConfig side through the published models (--models) --------

// The models refuse OpenConfig data: exit 3, each complaint with its path.
struct Rejected {
    std::string what;
    std::vector<yang::Diagnostic> diagnostics;
};

std::optional<yang::Models> load_models(const MapOptions &options) {
    const auto dir = yang::models_dir(options.models);
    if (!dir) {
        if (options.validate || options.format->write == nullptr) {
            throw UsageError(std::string(options.validate ? "--validate" : "--format ietf-json") +
                             " needs the models: --models DIR or OCSYSMAP_MODELS");
        }
        return std::nullopt;
    }
    try {
        return std::optional<yang::Models>(std::in_place, *dir);
    } catch (const yang::YangError &e) {
        throw InputError(std::string("models: ") + e.what());
    }
}

bool is_openconfig(const tidl_yfw_datatree &root) {
    const yfw::Module *m =
        root.namespace_ != nullptr ? yfw::module_by_namespace(root.namespace_) : nullptr;
    return m != nullptr && m->name.starts_with("openconfig-");
}

// An object whose first member is module-qualified is RFC 7951 JSON; the
// record form's keys never have a colon.
bool is_ietf_json(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    auto at = text.find_first_not_of(kSpace);
    if (at == std::string_view::npos || text[at] != '{') {
        return false;
    }
    at = text.find_first_not_of(kSpace, at + 1);
    if (at == std::string_view::npos || text[at] != '"') {
        return false;
    }
    const auto end = text.find('"', at + 1);
    return end != std::string_view::npos &&
           text.substr(at + 1, end - at - 1).find(':') != std::string_view::npos;
}

// An OpenConfig request parsed again by the models, typed and checked.
std::vector<tidl_yfw_datatree *> typed_request(const yang::Models &models, std::string_view text,
                                               bool read_kind, bool validate, yfw::Arena &arena) {
    // The text parsed already, as XML or as JSON by its first character.
    const auto first = text.find_first_of("<{[");
    const auto format = text[first] == '<' ? yang::Format::xml : yang::Format::json;
    const auto content = read_kind ? yang::Content::filter : yang::Content::edit;
    try {
        yang::Data tree = yang::parse(models, text, format, content);
        if (validate) {
            if (auto found = yang::validate(models, tree, content); !found.empty()) {
                throw Rejected{"request", std::move(found)};
            }
        }
        return yang::from_lyd(arena, tree.get(), read_kind);
    } catch (const yang::YangError &e) {
        throw Rejected{"request", e.diagnostics};
    }
}

// The OpenConfig roots typed by the models, printed once the tool's own
// trees are given back.
struct Typed {
    yang::Data data;
    yang::Format format;
};

// The output printed: OpenConfig roots by the models (checked with
// --validate), native roots by the tool's own writers; the typed roots are
// handed back to be printed last. Nothing is written when the models refuse
// the answer or a writer refuses the tree. `let_go` is called, at most once,
// as soon as the document is no longer read: libyang's copy and the tool's
// tree together are where the memory peaks otherwise.
std::optional<Typed> write_output(std::ostream &out, const MapOptions &options,
                                  const yang::Models *models, tidl_yfw_datatree &document,
                                  yfw::Arena &arena, const std::function<void()> &let_go) {
    if (models == nullptr) {
        options.format->write(out, document);
        return std::nullopt;
    }
    std::vector<tidl_yfw_datatree *> native;
    for (const tidl_yfw_datatree &root : detail::children_of(document)) {
        if (!is_openconfig(root)) {
            native.push_back(const_cast<tidl_yfw_datatree *>(&root));
        }
    }
    const bool models_print =
        options.format->write == nullptr || options.format->write == write_xml;
    yang::Data typed;
    try {
        // The models print it all: the OpenConfig roots go as they are typed.
        typed = models_print ? yang::take_lyd(*models, document) : yang::to_lyd(*models, document);
        if (models_print && native.empty()) {
            let_go();
        }
        if (options.validate) {
            const auto content =
                *options.kind == KIND_GET ? yang::Content::operational : yang::Content::config;
            if (auto found = yang::validate(*models, typed, content); !found.empty()) {
                throw Rejected{"answer", std::move(found)};
            }
        }
    } catch (const yang::YangError &e) {
        throw Rejected{"answer", e.diagnostics};
    }
    if (options.format->write == nullptr) {
        if (!native.empty()) {
            throw std::invalid_argument("native data is not in the models");
        }
        return Typed{std::move(typed), yang::Format::json};
    }
    if (options.format->write != write_xml) {
        options.format->write(out, document);
        return std::nullopt;
    }
    if (!native.empty()) {
        write_xml(out, *document_of(arena, native));
        let_go();
    }
    return Typed{std::move(typed), yang::Format::xml};
}

void report_rejected(std::ostream &err, const Rejected &r) {
    for (const yang::Diagnostic &d : r.diagnostics) {
        err << "ocsysmap: the models refuse the " << r.what << ": "
            << (d.path.empty() ? std::string("(top)") : d.path) << ": " << d.message << '\n';
    }
}

// ---- end of the OpenConfig side --------------------------------------------

int map_command(const MapOptions &options, std::istream &in, std::ostream &out, std::ostream &err,
                std::span<const yfw_map_reg_mod_t> trees) {
    std::string text = read_input(*options.file, in);
    const std::optional<yang::Models> models = load_models(options);
    std::optional<yfw::Session> held(std::in_place, *options.kind, options.oper_only);
    yfw::Session &session = *held;
    // The input has an arena of its own, let go once the walk is done.
    std::optional<yfw::Arena> input(std::in_place);
    std::vector<tidl_yfw_datatree *> roots;
    const bool read_kind = yfw_map_is_read_kind(*options.kind);
    try {
        roots = is_ietf_json(text) ? parse_ietf_json(*input, text, read_kind)
                                   : parse_input(*input, text, read_kind);
    } catch (const ParseError &e) {
        throw InputError(input_name(*options.file) + ": " + e.what());
    }
    if (models && std::any_of(roots.begin(), roots.end(),
                              [](const tidl_yfw_datatree *r) { return is_openconfig(*r); })) {
        try {
            roots = typed_request(*models, text, read_kind, options.validate, *input);
        } catch (const Rejected &r) {
            report_rejected(err, r);
            return 3;
        }
    }
    std::string().swap(text); // the trees hold copies of what they need
    // Every root must have a tree before any is mapped.
    std::vector<yfw_map_walker_fn> walkers;
    for (const tidl_yfw_datatree *root : roots) {
        walkers.push_back(mapping_of(trees, *root).walker);
        if (walkers.back() == nullptr) {
            throw InputError("no tree is registered for the root " + describe_root(*root));
        }
    }

    session.set_debug_log(options.trace);
    session.set_ring_trace(options.trace);
    const SysdbScope sysdb(options);
    cerrno status = YFW_SUCCESS;
    for (std::size_t i = 0; i < roots.size() && status == YFW_SUCCESS; ++i) {
        session.note_input(roots[i]);
        status = walkers[i](session.ctx(), roots[i], session.output());
    }
    roots.clear();
    input.reset();
    if (models) {
        // What libyang is about to build is as large as both trees.
        yfw::release_kept_memory();
    }

    if (options.trace) {
        print_lines(err, session.debug_log());
        print_lines(err, session.ring_trace());
    }
    // The tree goes out before the report, so that a reader of both streams
    // sees the status last. A writer refuses a tree before writing any of it.
    std::optional<std::string> write_error;
    std::optional<Rejected> rejected;
    std::ostringstream status_report;
    const auto let_go = [&] {
        if (held) {
            report(status_report, status, *held);
            held.reset();
            yfw::release_kept_memory();
        }
    };
    try {
        std::optional<Typed> typed = write_output(out, options, models ? &*models : nullptr,
                                                  *session.output(), session.arena(), let_go);
        if (typed) {
            let_go();
            yang::print(typed->data.get(), typed->format, out);
        }
        out << std::flush;
    } catch (const std::invalid_argument &e) {
        write_error = e.what();
        err << "ocsysmap: the output tree has no " << options.format->name
            << " form: " << *write_error << '\n';
    } catch (Rejected &r) {
        rejected = std::move(r);
        report_rejected(err, *rejected);
    }
    if (held) {
        report(err, status, *held);
    } else {
        err << status_report.str();
    }
    if (write_error) {
        return 2;
    }
    if (rejected) {
        return 3;
    }
    return status == YFW_SUCCESS ? 0 : 1;
}

} // namespace

int run(std::span<const std::string_view> args, std::istream &in, std::ostream &out,
        std::ostream &err, std::span<const yfw_map_reg_mod_t> trees) {
    try {
        std::string_view command = args.empty() ? std::string_view{} : args.front();
        if (command == "map") {
            return map_command(parse_map_options(args.subspan(1)), in, out, err, trees);
        }
        if (command == "modules" && args.size() == 1) {
            for (const yfw::Module &m : yfw::modules()) {
                out << m.name << '\t' << m.ns << '\n';
            }
            return 0;
        }
        if (command == "rows" && args.size() == 1) {
            out << rows_table();
            return 0;
        }
        if (command == "coverage" && args.size() == 1) {
            out << yang::coverage_report();
            return 0;
        }
        if (command == "--help" || command == "-h") {
            out << kUsage;
            return 0;
        }
        if (command == "--version") {
            out << "ocsysmap " OCSYSTEM_MAP_VERSION "\n";
            return 0;
        }
        throw UsageError(command.empty() ? "a command is required"
                         : command == "modules" || command == "coverage" || command == "rows"
                             ? std::string(command) + " takes no arguments"
                             : "unknown command " + std::string(command));
    } catch (const UsageError &e) {
        err << "ocsysmap: " << e.what() << '\n' << kUsage;
    } catch (const InputError &e) {
        err << "ocsysmap: " << e.what() << '\n';
    }
    return 2;
}

} // namespace ocsysmap
