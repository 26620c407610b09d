// Alarms: seven leaves each way, in KIND_GET alone.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kAlarmOper = &ymap_qo_ocsystem_tarvexqvprivatealarmmgrocoper_lvla_amfmedt;
constexpr auto kAlarmsAugment = &ymap_oq_ocsystem_openconfigalarms_augment_lvla_state;

const std::string kAlarm = "/openconfig-system:system/alarms/alarm";
std::string oc(std::string_view alarm) {
    return test::oc_system("<alarms><alarm>" + std::string(alarm) + "</alarm></alarms>");
}
const char kAnswer[] =
    "<amfm-edt xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper\">"
    "<system><alarms><alarm><id>a1</id><state><id>a1</id><resource>fan0</resource>"
    "<text>fan failed</text><time-created>1700000000</time-created><severity>MAJOR</severity>"
    "<type-id>FAN</type-id></state></alarm></alarms></system></amfm-edt>";

// The output entry is opened under the input entry's key, so leaves that
// come before the key land in their own alarm and not in the one before.
TEST(Alarms, KeyAfterTheStateStillOwnsTheLeaves) {
    Request r(KIND_GET);
    ASSERT_EQ(
        r.run(kAlarmOper,
              test::native("Tarvex-QV-PRIVATE-alarm-mgr-oc-oper", "amfm-edt",
                           "<system><alarms>"
                           "<alarm><id>a1</id><state><severity>MAJOR</severity></state></alarm>"
                           "<alarm><state><severity>MINOR</severity></state><id>a2</id></alarm>"
                           "</alarms></system>")),
        YFW_SUCCESS);
    EXPECT_EQ(r.paths(), test::chain(kAlarm + "[id='a1']") +
                             test::under(kAlarm + "[id='a1']", {"/id = \"a1\"", "/state",
                                                                "/state/severity = \"MAJOR\""}) +
                             test::under(kAlarm + "[id='a2']", {"", "/id = \"a2\"", "/state",
                                                                "/state/severity = \"MINOR\""}));
    r.expect_state_restored();
}

TEST(Alarms, ReadAsksThePrivateModule) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kSystem, oc("<id>a1</id><state><severity/><equipment-failure "
                                "xmlns=\"http://openconfig.net/yang/alarms\"/></state>")),
              YFW_SUCCESS);
    const std::string n = "/Tarvex-QV-PRIVATE-alarm-mgr-oc-oper:amfm-edt";
    const std::string e = n + "/system/alarms/alarm[id='a1']";
    EXPECT_EQ(r.paths(),
              test::chain(e) + test::under(e, {"/id = \"a1\"", "/state", "/state/severity"}));
}

TEST(Alarms, OutsideGetNothingIsMapped) {
    for (uint32_t kind : {KIND_GET_CONFIG, KIND_EDIT_A}) {
        test::expect_walk(kSystem, kind, oc("<id>a1</id><state><text>x</text></state>"), "");
        test::expect_walk(kAlarmOper, kind, kAnswer, "");
    }
}

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
