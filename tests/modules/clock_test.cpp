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
             kClockLine + kZone + "\n"},
        Case{"bare_config_read_reads_the_area", KIND_GET_CONFIG, clock_config(""),
             kClockLine + kZone + "\n" + kZone + "/area-name\n"}),
    test::case_name);

TEST(Clock, NativeAreaNameIsTheTimeZoneNameForAnyRead) {
    test::expect_walk(kClock, KIND_GET,
                      native("<time-zone><area-name>Asia/Tokyo</area-name>"
                             "<time-zone-name>JST</time-zone-name></time-zone>"),
                      "/openconfig-system:system\n/openconfig-system:system/clock\n"
                      "/openconfig-system:system/clock/config\n"
                      "/openconfig-system:system/clock/config/timezone-name = \"Asia/Tokyo\"\n",
                      true);
}

TEST(Clock, NativeZoneNameAloneGivesNothingAndAnEmptyTimeZoneGivesTheContainer) {
    test::expect_walk(kClock, KIND_GET_CONFIG,
                      native("<time-zone><time-zone-name>JST</time-zone-name>"
                             "</time-zone>"),
                      "");
    test::expect_walk(kClock, KIND_GET_CONFIG, native("<time-zone/>"),
                      test::chain("/openconfig-system:system/clock/config"));
}

} // namespace
