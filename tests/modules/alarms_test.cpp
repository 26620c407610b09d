// Alarms: the augment walker, twice on one request; the walks of the alarm
// trees are golden cases (golden/alarms.txt).
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kAlarmsAugment = &ymap_oq_ocsystem_openconfigalarms_augment_lvla_state;

TEST(Alarms, TheAugmentWalkerKnowsItsTwoLeavesAndRefusesOthersInAnEdit) {
    const std::string failure = "<equipment-failure xmlns=\"http://openconfig.net/yang/alarms\">"
                                "true</equipment-failure>";
    const std::string other =
        "<flapping xmlns=\"http://openconfig.net/yang/alarms\">true</flapping>";
    Request read(KIND_GET);
    EXPECT_EQ(read.run(kAlarmsAugment, failure), YFW_SUCCESS);
    EXPECT_EQ(read.run(kAlarmsAugment, other), YFW_SUCCESS);
    EXPECT_EQ(read.paths(), "");
    Request edit(KIND_EDIT_A);
    EXPECT_EQ(edit.run(kAlarmsAugment, failure), YFW_SUCCESS);
    EXPECT_EQ(edit.run(kAlarmsAugment, other), YFW_ERR_UNSUPPORTED_TAG);
    EXPECT_EQ(edit.error_tag(), "flapping");
}

} // namespace
