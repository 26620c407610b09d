// The time zone: one OpenConfig name against the native area and zone names.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kClock = &ymap_qo_ocsystem_tarvexqvinfrainfraclocklinuxcfg_lvla_clock;

std::string clock_config(std::string_view body, std::string_view attrs = "") {
    return test::oc_system("<clock><config" + std::string(attrs) + ">" + std::string(body) +
                           "</config></clock>");
}
std::string native(std::string_view body) {
    return test::native("Tarvex-QV-infra-infra-clock-linux-cfg", "clock", body);
}

const std::string kZone = "/Tarvex-QV-infra-infra-clock-linux-cfg:clock/time-zone";
const std::string kClockLine = "/Tarvex-QV-infra-infra-clock-linux-cfg:clock\n";

using Case = test::Walk;

class ClockToNative : public ::testing::TestWithParam<Case> {};

TEST_P(ClockToNative, Output) {
    test::expect_walk(kSystem, GetParam().kind, GetParam().input, GetParam().output);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, ClockToNative,
    ::testing::Values(
        Case{"read_names_the_area_only", KIND_GET_CONFIG, clock_config("<timezone-name/>"),
             kClockLine + kZone + "\n" + kZone + "/area-name\n"},
        Case{
            "edit_fills_the_area_and_creates_the_zone_name_empty", KIND_EDIT_A,
            clock_config("<timezone-name>Europe/Berlin</timezone-name>", " nc:operation=\"merge\""),
            kClockLine + kZone + "\n" + kZone + "/area-name = \"Europe/Berlin\" @merge\n" + kZone +
                "/time-zone-name\n"},
        Case{"leaf_delete_deletes_the_container", KIND_EDIT_A,
             clock_config("<timezone-name nc:operation=\"delete\"/>"),
             kClockLine + kZone + " @delete\n"},
        Case{"bare_config_delete_takes_the_time_zone", KIND_EDIT_A,
             clock_config("", " nc:operation=\"delete\""), kClockLine + kZone + " @remove\n"},
        Case{"bare_config_edit_adds_the_container", KIND_EDIT_A, clock_config(""),
             kClockLine + kZone + "\n"}),
    test::case_name);

TEST(Clock, NativeAreaNameIsTheTimeZoneNameForAnyRead) {
    Request r(KIND_GET, /*oper_only=*/true);
    ASSERT_EQ(r.run(kClock, native("<time-zone><area-name>Asia/Tokyo</area-name>"
                                   "<time-zone-name>JST</time-zone-name></time-zone>")),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "/openconfig-system:system\n/openconfig-system:system/clock\n"
                         "/openconfig-system:system/clock/config\n"
                         "/openconfig-system:system/clock/config/timezone-name = \"Asia/Tokyo\"\n");
}

TEST(Clock, NativeZoneNameAloneGivesNothingAndAnEmptyTimeZoneGivesTheContainer) {
    Request only_zone(KIND_GET_CONFIG);
    ASSERT_EQ(only_zone.run(kClock, native("<time-zone><time-zone-name>JST</time-zone-name>"
                                           "</time-zone>")),
              YFW_SUCCESS);
    EXPECT_EQ(only_zone.paths(), "");
    Request empty(KIND_GET_CONFIG);
    ASSERT_EQ(empty.run(kClock, native("<time-zone/>")), YFW_SUCCESS);
    EXPECT_EQ(empty.paths(), test::chain("/openconfig-system:system/clock/config"));
}

} // namespace
