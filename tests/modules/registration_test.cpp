// The mapping trees as the framework receives them: each record pairs a native
// root with the one OpenConfig root, registering twice writes the same bytes,
// and the framework's own pointers are left alone. The labels by which the
// framework knows the trees keep their odd forms.
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "registered_trees.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

cerrno framework_walker(yfw_map_ctx *, tidl_yfw_datatree *, tidl_yfw_datatree *) {
    return 0;
}

TEST(Registration, EveryRecordPairsANativeRootWithTheOpenConfigSystemRoot) {
    std::multiset<std::string> labels;
    std::set<std::pair<std::string, std::string>> roots;
    for (const auto registration : ocsysmap::kRegistrations) {
        yfw_map_reg_mod_t reg;
        std::memset(&reg, 0x5a, sizeof reg);
        reg.framework_fn_a = &framework_walker;
        reg.framework_fn_b = &framework_walker;
        registration(&reg);
        SCOPED_TRACE(reg.label);
        EXPECT_STREQ(reg.oc_namespace, "http://openconfig.net/yang/system");
        EXPECT_STREQ(reg.oc_root, "system");
        EXPECT_EQ(reg.oc_to_native, &ymap_oq_ocsystem_openconfigsystem_lvla_system);
        EXPECT_TRUE(std::string(reg.native_namespace).starts_with("http://tarvex.local/ns/yang/"));
        EXPECT_NE(reg.native_to_oc, nullptr);
        EXPECT_EQ(reg.flags_a, 0u);
        // The SSH tree alone raises the second flag word.
        EXPECT_EQ(reg.flags_b, std::strcmp(reg.label, "OC SSH tree") == 0 ? 1u : 0u);
        EXPECT_EQ(reg.framework_fn_a, &framework_walker);
        EXPECT_EQ(reg.framework_fn_b, &framework_walker);
        yfw_map_reg_mod_t again = reg;
        registration(&again);
        EXPECT_EQ(std::memcmp(&again, &reg, sizeof reg), 0);
        labels.insert(reg.label);
        roots.emplace(reg.native_namespace, reg.native_root);
    }
    // Twenty trees; two share the private system module and its root, two
    // share a label, and two keep their short labels.
    EXPECT_EQ(ocsysmap::kRegistrations.size(), 20u);
    EXPECT_EQ(roots.size(), 19u);
    EXPECT_EQ(labels.count("OC SYSLOG tree"), 2u);
    EXPECT_EQ(labels.count("oc_am") + labels.count("oc_ems"), 2u);
}

TEST(Registration, LoadAndUnloadDoNothing) {
    EXPECT_EQ(yfw_ocsystem_init(), YFW_SUCCESS);
    yfw_ocsystem_cleanup();
}

} // namespace
