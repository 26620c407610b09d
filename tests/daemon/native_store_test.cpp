// The native store: edits with each operation, reads as subtree filters, and
// the store's file.
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "io/io_detail.hpp"
#include "io/ocsysmap_io.hpp"
#include "native_store.hpp"

namespace {

using ocsysmapd::DefaultOperation;
using ocsysmapd::EditError;
using ocsysmapd::Forest;

// NTP peers are a keyed list (address-ipv4) in the device's tables.
constexpr std::string_view kNtp =
    R"(<ntp xmlns="urn:n" xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0">)";

std::string ntp(std::string_view body) {
    return std::string(kNtp) + std::string(body) + "</ntp>";
}

std::string peer(std::string_view address, std::string_view rest = "",
                 std::string_view attribute = "") {
    return "<peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s><peer-ipv4" +
           std::string(attribute) + "><address-ipv4>" + std::string(address) + "</address-ipv4>" +
           std::string(rest) + "</peer-ipv4></peer-ipv4s></peer-vrf></peer-vrfs>";
}

Forest forest_of(std::string_view xml, bool read_kind = false) {
    yfw::Arena arena;
    Forest forest;
    for (const tidl_yfw_datatree *root : ocsysmap::parse_input(arena, xml, read_kind)) {
        forest.push_back(ocsysmapd::to_node(*root));
    }
    return forest;
}

std::string xml_of(const Forest &forest) {
    yfw::Arena arena;
    return ocsysmap::to_xml(*ocsysmapd::to_document(arena, forest));
}

// Runs `fn` with the parsed roots of `xml` as one contiguous array.
template <typename Fn> auto with_tree(std::string_view xml, bool read_kind, Fn fn) {
    yfw::Arena arena;
    auto roots = ocsysmap::parse_input(arena, xml, read_kind);
    return fn(ocsysmap::detail::children_of(*ocsysmap::document_of(arena, roots)));
}

struct EditCase {
    const char *name;
    std::string before;
    std::string edit;
    DefaultOperation default_op;
    std::string after;     // when the edit applies
    const char *error_tag; // when it is refused (the store stays as before)
};

TEST(NativeStore, EditsApplyEachOperation) {
    const std::string one = ntp(peer("192.0.2.1", "<iburst></iburst>"));
    const std::string two =
        ntp("<peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s><peer-ipv4>"
            "<address-ipv4>192.0.2.1</address-ipv4><iburst></iburst></peer-ipv4><peer-ipv4>"
            "<address-ipv4>192.0.2.2</address-ipv4></peer-ipv4></peer-ipv4s></peer-vrf>"
            "</peer-vrfs>");
    const EditCase cases[] = {
        {"merge makes a root", "", one, DefaultOperation::merge, one, nullptr},
        {"merge adds a second entry by its key", one, ntp(peer("192.0.2.2")),
         DefaultOperation::merge, two, nullptr},
        {"merge changes a leaf", ntp("<max>1</max>"), ntp("<max>2</max>"), DefaultOperation::merge,
         ntp("<max>2</max>"), nullptr},
        {"delete takes the entry and the containers it empties", one + "",
         ntp(peer("192.0.2.1", "", R"( nc:operation="delete")")), DefaultOperation::merge,
         ntp("<peer-vrfs><peer-vrf><vrf-name>default</vrf-name></peer-vrf></peer-vrfs>"), nullptr},
        {"delete of a missing entry", one, ntp(peer("192.0.2.9", "", R"( nc:operation="delete")")),
         DefaultOperation::merge, "", "data-missing"},
        {"remove of a missing entry changes nothing", one,
         ntp(peer("192.0.2.9", "", R"( nc:operation="remove")")), DefaultOperation::merge, one,
         nullptr},
        {"create of an existing entry", one,
         ntp(peer("192.0.2.1", "", R"( nc:operation="create")")), DefaultOperation::merge, "",
         "data-exists"},
        {"replace drops what it does not name", one,
         ntp(peer("192.0.2.1", "<prefer></prefer>", R"( nc:operation="replace")")),
         DefaultOperation::merge, ntp(peer("192.0.2.1", "<prefer></prefer>")), nullptr},
        {"a removal holding merged content builds the node anew", one,
         ntp(R"(<peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s>)"
             R"(<peer-ipv4 nc:operation="remove"><address-ipv4 nc:operation="merge">192.0.2.1)"
             R"(</address-ipv4><prefer nc:operation="merge"></prefer><iburst )"
             R"(nc:operation="remove"/></peer-ipv4></peer-ipv4s></peer-vrf></peer-vrfs>)"),
         DefaultOperation::merge, ntp(peer("192.0.2.1", "<prefer></prefer>")), nullptr},
        {"removals alone make nothing", ntp("<max>1</max>"),
         ntp(peer("192.0.2.1", R"(<iburst nc:operation="remove"/>)", R"( nc:operation="remove")")),
         DefaultOperation::merge, ntp("<max>1</max>"), nullptr},
        {"an entry without its key merges into the one entry it agrees with", one,
         ntp("<peer-vrfs><peer-vrf><peer-ipv4s><peer-ipv4><prefer></prefer></peer-ipv4>"
             "</peer-ipv4s></peer-vrf></peer-vrfs>"),
         DefaultOperation::merge, ntp(peer("192.0.2.1", "<iburst></iburst><prefer></prefer>")),
         nullptr},
        {"an entry without its key among several", two,
         ntp("<peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s><peer-ipv4><iburst>"
             "</iburst></peer-ipv4></peer-ipv4s></peer-vrf></peer-vrfs>"),
         DefaultOperation::merge, "", "missing-element"},
        {"a delete without its key among several", two,
         ntp("<peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s>"
             R"(<peer-ipv4 nc:operation="delete"><iburst/></peer-ipv4></peer-ipv4s></peer-vrf>)"
             "</peer-vrfs>"),
         DefaultOperation::merge, "", "missing-element"},
        {"none only leads to the nodes that carry an operation", ntp("<max>1</max>"),
         ntp(R"(<max>5</max><auth><enable nc:operation="merge"></enable></auth>)"),
         DefaultOperation::none, ntp("<max>1</max><auth><enable></enable></auth>"), nullptr},
    };
    for (const EditCase &c : cases) {
        SCOPED_TRACE(c.name);
        Forest store = c.before.empty() ? Forest{} : forest_of(c.before);
        const std::string before = xml_of(store);
        with_tree(c.edit, false, [&](auto edit) {
            if (c.error_tag == nullptr) {
                ocsysmapd::Undo undo = ocsysmapd::apply_edit(store, edit, c.default_op);
                EXPECT_EQ(xml_of(store), xml_of(forest_of(c.after)));
                ocsysmapd::revert(store, std::move(undo));
                EXPECT_EQ(xml_of(store), before);
                return;
            }
            try {
                ocsysmapd::apply_edit(store, edit, c.default_op);
                ADD_FAILURE() << "applied";
            } catch (const EditError &e) {
                EXPECT_EQ(e.tag, c.error_tag);
                EXPECT_NE(e.path.find("/ntp/"), std::string::npos) << e.path;
            }
            EXPECT_EQ(xml_of(store), before);
        });
    }
}

TEST(NativeStore, ReadsAreSubtreeFilters) {
    const Forest store = forest_of(
        ntp("<max>7</max><peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s><peer-ipv4>"
            "<address-ipv4>192.0.2.1</address-ipv4><iburst></iburst></peer-ipv4><peer-ipv4>"
            "<address-ipv4>192.0.2.2</address-ipv4></peer-ipv4></peer-ipv4s></peer-vrf>"
            "</peer-vrfs>"));
    const struct {
        const char *name;
        std::string request;
        std::string answer;
    } cases[] = {
        {"a selection leaf", ntp("<max/>"), ntp("<max>7</max>")},
        {"a key selects its entry whole", ntp(peer("192.0.2.1")),
         ntp(peer("192.0.2.1", "<iburst></iburst>"))},
        {"an entry keeps its keys beside what is selected in it",
         ntp("<peer-vrfs><peer-vrf><peer-ipv4s><peer-ipv4><iburst/></peer-ipv4></peer-ipv4s>"
             "</peer-vrf></peer-vrfs>"),
         ntp(peer("192.0.2.1", "<iburst></iburst>"))},
        {"an entry named by its keys alone comes whole",
         ntp("<peer-vrfs><peer-vrf><vrf-name/></peer-vrf></peer-vrfs>"),
         ntp("<peer-vrfs><peer-vrf><vrf-name>default</vrf-name><peer-ipv4s><peer-ipv4>"
             "<address-ipv4>192.0.2.1</address-ipv4><iburst></iburst></peer-ipv4><peer-ipv4>"
             "<address-ipv4>192.0.2.2</address-ipv4></peer-ipv4></peer-ipv4s></peer-vrf>"
             "</peer-vrfs>")},
        {"a content match that fails selects nothing", ntp("<max>8</max>"), ""},
        {"a containment node with nothing below selects nothing", ntp("<auth><enable/></auth>"),
         ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Forest answer = with_tree(
            c.request, true, [&](auto request) { return ocsysmapd::select(store, request); });
        EXPECT_EQ(xml_of(answer), xml_of(c.answer.empty() ? Forest{} : forest_of(c.answer)));
    }
}

TEST(NativeStore, FileHoldsTheStoreWhole) {
    const auto dir =
        std::filesystem::temp_directory_path() /
        ("ocsysmapd-store-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    std::filesystem::create_directories(dir);
    const ocsysmapd::StoreFile file(dir / "store.xml");
    EXPECT_TRUE(file.load().empty());
    const Forest store = forest_of(ntp(peer("192.0.2.1", "<iburst></iburst>")));
    file.save(store);
    EXPECT_EQ(xml_of(file.load()), xml_of(store));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir),
                            std::filesystem::directory_iterator()),
              1);
    std::ofstream(dir / "store.xml") << "<ntp xmlns=\"urn:n\"><max>";
    EXPECT_THROW(file.load(), std::runtime_error);
    std::filesystem::remove_all(dir);
}

} // namespace
