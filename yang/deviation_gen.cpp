// Writes the device's deviation module from the mapping tables: every node of
// the OpenConfig system models that no walker row reaches with a mapper that
// maps it is `deviate not-supported`, so that what the device advertises is
// what it serves; and the coverage report of the same verdicts: the mapped and
// unmapped paths with counts per subtree. Both are compiled into the tool and
// the device with the Telnet extension module.
//
// usage: ocsysmap_yanggen MODELS_DIR EXTENSION_YANG coverage [SOURCE]...
//        ocsysmap_yanggen MODELS_DIR EXTENSION_YANG OUTPUT_CPP OUTPUT_YANG [SOURCE]...
// The SOURCEs are the hand-written mappers, whose written paths are literals.
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <libyang/libyang.h>

#include "ymap_frame.hpp"
#include "ymap_namespaces.h"
#include "ymap_ocsystem_modules.h"

namespace {

#define YMAP_MODULE_NAME_(id, name, ns) name,
constexpr const char *kModules[] = {YMAP_OPENCONFIG_MODULES(YMAP_MODULE_NAME_)};
#undef YMAP_MODULE_NAME_
// The device's own augment, which keeps the node it augments.
constexpr std::string_view kExtension = "Tarvex-QV-openconfig-system-terminal-ext";

std::string symbol_of(const void *fn) {
    Dl_info info{};
    if (fn == nullptr || dladdr(fn, &info) == 0 || info.dli_sname == nullptr) {
        return {};
    }
    return info.dli_sname;
}

std::string read_file(const char *path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// What the rows say of the OpenConfig walkers.
class Rows {
public:
    Rows() {
        for (const ymap::WalkerRow *row : ymap::all_walker_rows()) {
            by_walker_[reinterpret_cast<const void *>(row->self)] = row;
        }
        for (const ymap::MapperRow *row : ymap::all_mapper_rows()) {
            by_name_[row->name] = row;
            // What a native answer's mapper writes is served too.
            if (row->family == ymap::Family::Qo && row->ns != nullptr &&
                std::string_view(row->ns).starts_with("http://openconfig.net/")) {
                if (row->path != nullptr && row->path[0] == '/') {
                    written_.insert(row->path);
                }
            }
        }
    }

    bool written(const std::string &path) const { return written_.contains(path); }

    // The paths a hand-written mapper writes stand in its source as literals.
    void scan_source(const std::string &text) {
        const std::string_view open = "\"/system/";
        for (std::size_t at = text.find(open); at != std::string::npos;
             at = text.find(open, at + 1)) {
            const std::size_t end = text.find('"', at + 1);
            written_.insert(text.substr(at + 1, end - at - 1));
        }
    }

    const ymap::WalkerRow *walker(const void *fn) const {
        const auto found = by_walker_.find(fn);
        return found != by_walker_.end() ? found->second : nullptr;
    }

    // A child's walker under `row`, or the augment walker that takes the tag.
    const ymap::WalkerRow *child(const ymap::WalkerRow *row, std::string_view tag) const {
        if (row != nullptr) {
            for (const ymap::Child &c : row->children) {
                if (c.tag == tag) {
                    return walker(reinterpret_cast<const void *>(c.walk));
                }
            }
        }
        for (const auto &[fn, candidate] : by_walker_) {
            if (std::string_view(candidate->name).find("_augment_") != std::string_view::npos) {
                for (const ymap::Child &c : candidate->children) {
                    if (c.tag == tag && parent_matches(row, candidate)) {
                        return walker(reinterpret_cast<const void *>(c.walk));
                    }
                }
            }
        }
        return nullptr;
    }

    // Whether a leaf walker's mapper maps: a row of a form that writes.
    bool maps(const ymap::WalkerRow *row) const {
        if (row == nullptr) {
            return false;
        }
        const std::string name = symbol_of(reinterpret_cast<const void *>(row->mapper));
        const auto found = by_name_.find(name);
        if (found == by_name_.end()) {
            return false; // a duck: accepted or refused, never mapped
        }
        const ymap::MapperRow &m = *found->second;
        return m.leaf_form != ymap::LeafForm::None && m.leaf_form != ymap::LeafForm::Refuse;
    }

private:
    // An augment walker row is named for the node it augments.
    static bool parent_matches(const ymap::WalkerRow *row, const ymap::WalkerRow *augment) {
        if (row == nullptr) {
            return false;
        }
        const std::string_view name = row->name;
        const std::string_view aug = augment->name;
        const std::string_view tail = name.substr(name.rfind("_lvl"));
        return aug.ends_with(tail);
    }

    std::map<const void *, const ymap::WalkerRow *> by_walker_;
    std::map<std::string, const ymap::MapperRow *> by_name_;
    std::set<std::string> written_;
};

std::string without_prefixes(std::string_view path) {
    std::string out;
    while (!path.empty()) {
        path.remove_prefix(1); // '/'
        const std::size_t slash = path.find('/');
        std::string_view seg = path.substr(0, slash);
        seg.remove_prefix(seg.find(':') + 1);
        out.append("/").append(seg);
        path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash);
    }
    return out;
}

bool is_of_models(const lysc_node *n) {
    return std::any_of(std::begin(kModules), std::end(kModules),
                       [n](const char *m) { return std::strcmp(n->module->name, m) == 0; });
}

struct Verdict {
    std::string path; // schema path with prefixes
    const lysc_node *node;
    bool mapped;
};

// Decides each node: a leaf by its mapper, a list key when its list stays, an
// inner node when anything below it stays.
class Judge {
public:
    explicit Judge(const Rows &rows) : rows_(rows) {}

    bool judge(const lysc_node *n, const ymap::WalkerRow *row, const std::string &parent) {
        const std::string path = parent + "/" + n->module->prefix + ":" + n->name;
        if (n->nodetype & (LYS_LEAF | LYS_LEAFLIST)) {
            const bool mapped =
                rows_.maps(row) || lysc_is_key(n) || rows_.written(without_prefixes(path));
            verdicts_.push_back({path, n, mapped});
            return mapped;
        }
        const std::size_t at = verdicts_.size();
        verdicts_.push_back({path, n, false});
        bool any = false;
        bool keys_only = true;
        const lysc_node *c = nullptr;
        while ((c = lys_getnext(c, n, nullptr, 0)) != nullptr) {
            if (c->module->name == kExtension) {
                any = true;
                keys_only = false;
                continue;
            }
            if (!is_of_models(c) || !(c->nodetype & (LYS_CONTAINER | LYS_LIST | LYS_LEAF |
                                                     LYS_LEAFLIST | LYS_CHOICE | LYS_CASE))) {
                continue;
            }
            const bool kept = judge(c, rows_.child(row, c->name), path);
            any = any || kept;
            keys_only = keys_only && (!kept || lysc_is_key(c));
        }
        // A list whose only mapped nodes are its keys maps nothing.
        verdicts_[at].mapped = any && !(n->nodetype == LYS_LIST && keys_only);
        if (!verdicts_[at].mapped) {
            for (std::size_t i = at; i < verdicts_.size(); ++i) {
                verdicts_[i].mapped = false;
            }
        }
        return verdicts_[at].mapped;
    }

    std::vector<Verdict> &verdicts() { return verdicts_; }

private:
    const Rows &rows_;
    std::vector<Verdict> verdicts_;
};

// The leafref targets of what stays must stay, with their ancestors.
void keep_leafref_targets(std::vector<Verdict> &verdicts) {
    std::map<const lysc_node *, Verdict *> by_node;
    for (Verdict &v : verdicts) {
        by_node[v.node] = &v;
    }
    bool changed = true;
    while (changed) {
        changed = false;
        for (const Verdict &v : verdicts) {
            if (!v.mapped || !(v.node->nodetype & (LYS_LEAF | LYS_LEAFLIST))) {
                continue;
            }
            const auto *type = reinterpret_cast<const lysc_node_leaf *>(v.node)->type;
            if (type->basetype != LY_TYPE_LEAFREF) {
                continue;
            }
            const auto *lref = reinterpret_cast<const lysc_type_leafref *>(type);
            ly_set *atoms = nullptr;
            if (lys_find_expr_atoms(v.node, v.node->module, lref->path, lref->prefixes, 0,
                                    &atoms) != LY_SUCCESS) {
                continue;
            }
            for (uint32_t i = 0; i < atoms->count; ++i) {
                for (const lysc_node *t = atoms->snodes[i]; t != nullptr; t = lysc_data_parent(t)) {
                    const auto found = by_node.find(t);
                    if (found != by_node.end() && !found->second->mapped) {
                        found->second->mapped = true;
                        changed = true;
                    }
                }
            }
            ly_set_free(atoms, nullptr);
        }
    }
}

void write_deviation(std::ostream &out, const std::vector<Verdict> &verdicts) {
    out << "module Tarvex-QV-openconfig-system-deviations {\n"
           "  yang-version 1.1;\n"
           "  namespace \"http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-deviations\";\n"
           "  prefix tqv-oc-sys-dev;\n\n";
    std::set<std::string> prefixes;
    for (const Verdict &v : verdicts) {
        std::string_view p = v.path;
        while (!p.empty()) {
            p.remove_prefix(1);
            prefixes.insert(std::string(p.substr(0, p.find(':'))));
            const std::size_t slash = p.find('/');
            p = slash == std::string_view::npos ? std::string_view{} : p.substr(slash);
        }
    }
    const std::map<std::string, std::string> modules = {
        {"oc-sys", "openconfig-system"},         {"oc-sys-grpc", "openconfig-system-grpc"},
        {"oc-messages", "openconfig-messages"},  {"oc-alarms", "openconfig-alarms"},
        {"oc-log", "openconfig-system-logging"}, {"oc-aaa", "openconfig-aaa"},
        {"oc-proc", "openconfig-procmon"},       {"oc-sys-term", "openconfig-system-terminal"},
        {"oc-license", "openconfig-license"}};
    prefixes.insert("oc-log");
    for (const std::string &p : prefixes) {
        const auto m = modules.find(p);
        out << "  import " << (m != modules.end() ? m->second : p) << " { prefix " << p << "; }\n";
    }
    out << "\n  organization \"ocsystem-map\";\n"
           "  description\n"
           "    \"What the device does not serve of the OpenConfig system models, made from\n"
           "     its mapping tables when it is built, and the facility a remote syslog\n"
           "     selector takes as its key.\";\n\n"
           "  revision 2026-11-25 {\n    description \"Made from the mapping tables.\";\n  }\n\n"
           "  identity NONE {\n    base oc-log:SYSLOG_FACILITY;\n"
           "    description \"No facility: the selector names a severity alone.\";\n  }\n";
    std::string last_removed;
    for (const Verdict &v : verdicts) {
        if (v.mapped || (!last_removed.empty() && v.path.starts_with(last_removed + "/"))) {
            continue;
        }
        last_removed = v.path;
        out << "\n  deviation \"" << v.path << "\" {\n    deviate not-supported;\n  }\n";
    }
    // A selector's facility never comes back from the native side: the key
    // stands alone, with no config/facility to refer to.
    for (const char *selectors : {"oc-sys:console", "oc-sys:remote-servers/oc-sys:remote-server"}) {
        out << "\n  deviation \"/oc-sys:system/oc-sys:logging/" << selectors
            << "/oc-sys:selectors/oc-sys:selector/oc-sys:facility\" {\n"
               "    deviate replace {\n"
               "      type identityref { base oc-log:SYSLOG_FACILITY; }\n    }\n  }\n";
    }
    out << "}\n";
}

void write_coverage(std::ostream &out, const std::vector<Verdict> &verdicts) {
    // Counts of leaves per subtree of /system (two levels deep).
    std::map<std::string, std::pair<int, int>> counts;
    for (const Verdict &v : verdicts) {
        const std::string path = without_prefixes(v.path);
        out << (v.mapped ? "mapped     " : "not mapped ") << path << '\n';
    }
    out << '\n';
    for (const Verdict &v : verdicts) {
        const std::string path = without_prefixes(v.path);
        const std::size_t second = path.find('/', 1);
        const std::string subtree =
            second == std::string::npos ? path : path.substr(0, path.find('/', second + 1));
        auto &[mapped, unmapped] = counts[subtree];
        (v.mapped ? mapped : unmapped) += 1;
    }
    int total_mapped = 0;
    int total = 0;
    for (const auto &[subtree, c] : counts) {
        out << subtree << ": " << c.first << " mapped, " << c.second << " not mapped\n";
        total_mapped += c.first;
        total += c.first + c.second;
    }
    out << "total: " << total_mapped << " of " << total << " nodes mapped\n";
}

// The source that the device and the tool compile in: each module with its
// name and revision, and the coverage report.
void write_embedding(std::ostream &out, const std::string &extension, const std::string &deviation,
                     const std::string &coverage) {
    out << "// Made by ocsysmap_yanggen from the mapping tables when the project is built.\n"
           "#include \"device_modules.hpp\"\n\n"
           "namespace ocsysmap::yang {\nnamespace {\n"
           "constexpr DeviceModule kDeviceModules[] = {\n"
           "    {\"Tarvex-QV-openconfig-system-terminal-ext\", \"2026-11-25\", R\"yang("
        << extension
        << ")yang\"},\n"
           "    {\"Tarvex-QV-openconfig-system-deviations\", \"2026-11-25\", R\"yang("
        << deviation
        << ")yang\"},\n};\n} // namespace\n\n"
           "std::span<const DeviceModule> device_modules() { return kDeviceModules; }\n\n"
           "std::string_view coverage_report() {\n    return R\"report("
        << coverage << ")report\";\n}\n\n} // namespace ocsysmap::yang\n";
}

} // namespace

int main(int argc, char **argv) {
    const bool report_only = argc >= 4 && std::string_view(argv[3]) == "coverage";
    if (argc < (report_only ? 4 : 5)) {
        std::cerr << "usage: ocsysmap_yanggen MODELS_DIR EXTENSION_YANG coverage [SOURCE]...\n"
                     "       ocsysmap_yanggen MODELS_DIR EXTENSION_YANG OUTPUT_CPP OUTPUT_YANG "
                     "[SOURCE]...\n";
        return 2;
    }
    ly_log_options(0);
    // Without the models there is nothing to deviate: the tool and the device
    // then load the extension alone, and the report says why it is empty.
    auto without_models = [&](const std::string &why) {
        std::cerr << "ocsysmap_yanggen: " << why << ": no deviation module is made\n";
        if (report_only) {
            return 1;
        }
        std::ofstream(argv[4]) << "";
        std::ofstream cpp(argv[3]);
        write_embedding(cpp, read_file(argv[2]), "",
                        "The OpenConfig models were not found when this was built (" + why +
                            "): no coverage to tell.\n");
        return cpp ? 0 : 1;
    };
    ly_ctx *ctx = nullptr;
    if (ly_ctx_new(argv[1], LY_CTX_DISABLE_SEARCHDIR_CWD | LY_CTX_REF_IMPLEMENTED, &ctx) !=
        LY_SUCCESS) {
        return without_models(std::string("no models in ") + argv[1]);
    }
    const char *features[] = {"*", nullptr};
    for (const char *m : kModules) {
        if (ly_ctx_load_module(ctx, m, nullptr, features) == nullptr) {
            ly_ctx_destroy(ctx);
            return without_models(std::string("cannot load ") + m + " from " + argv[1]);
        }
    }
    if (lys_parse_path(ctx, argv[2], LYS_IN_YANG, nullptr) != LY_SUCCESS) {
        std::cerr << "cannot load " << argv[2] << '\n';
        return 1;
    }
    Rows rows;
    for (int i = report_only ? 4 : 5; i < argc; ++i) {
        rows.scan_source(read_file(argv[i]));
    }
    Judge judge(rows);
    const lys_module *system = ly_ctx_get_module_implemented(ctx, "openconfig-system");
    const lysc_node *top = nullptr;
    while ((top = lys_getnext(top, nullptr, system->compiled, 0)) != nullptr) {
        judge.judge(top,
                    rows.walker(reinterpret_cast<const void *>(
                        &ymap_oq_ocsystem_openconfigsystem_lvla_system)),
                    "");
    }
    keep_leafref_targets(judge.verdicts());
    std::ostringstream coverage;
    write_coverage(coverage, judge.verdicts());
    if (report_only) {
        std::cout << coverage.str();
        ly_ctx_destroy(ctx);
        return 0;
    }
    std::ostringstream deviation;
    write_deviation(deviation, judge.verdicts());
    ly_ctx_destroy(ctx);
    std::ofstream yang(argv[4]);
    yang << deviation.str();
    std::ofstream cpp(argv[3]);
    write_embedding(cpp, read_file(argv[2]), deviation.str(), coverage.str());
    return cpp && yang ? 0 : 1;
}
