// CPU state: a list stitched onto /system/cpus/cpu, 8 measures of 7 counters.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

constexpr auto kSystem = &ymap_oq_ocsystem_openconfigsystem_lvla_system;
constexpr auto kCpuOper = &ymap_qo_ocsystem_tarvexqvprivateocsystemcpuoper_lvla_ocsystemcpu;

std::string oc(std::string_view cpu) {
    return test::oc_system("<cpus><cpu>" + std::string(cpu) + "</cpu></cpus>");
}
std::string native(std::string_view cpus) {
    return test::native("Tarvex-QV-PRIVATE-ocsystem-cpu-oper", "ocsystemcpu",
                        "<system><cpuses>" + std::string(cpus) + "</cpuses></system>");
}
std::string native_cpu(std::string_view index, std::string_view state) {
    return "<cpus><index>" + std::string(index) + "</index><state><index>" + std::string(index) +
           "</index>" + std::string(state) + "</state></cpus>";
}

const std::string kNative = "/Tarvex-QV-PRIVATE-ocsystem-cpu-oper:ocsystemcpu";
const std::string kCpu0 = "/openconfig-system:system/cpus/cpu[index='0']";

TEST(Cpu, TheKeyOfARequestGoesToTheNativeStateIndex) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kSystem, oc("<index>0</index><state><hardware-interrupt><max-time/>"
                                "</hardware-interrupt></state>")),
              YFW_SUCCESS);
    const std::string state = kNative + "/system/cpuses/cpus/state";
    EXPECT_EQ(r.paths(),
              test::chain(state) + test::under(state, {"/index = \"0\"", "/hardware-interrupt",
                                                       "/hardware-interrupt/max-time"}));
    r.expect_state_restored();
}

TEST(Cpu, StateIndexInARequestIsRefused) {
    Request r(KIND_GET);
    test::expect_refused(
        r, r.run(kSystem, oc("<index>0</index><state><index/></state>")),
        {YFW_ERR_UNSUPPORTED_TAG, "index", "/openconfig-system:system/cpus/cpu[index='0']/state"});
}

TEST(Cpu, NativeEntryComesBackUnderItsIndex) {
    test::expect_walk(kCpuOper, KIND_GET,
                      native(native_cpu("0", "<hardware-interrupt><max-time>12</max-time>"
                                             "</hardware-interrupt>")),
                      test::chain(kCpu0) +
                          test::under(kCpu0, {"/index = \"0\"", "/state", "/state/index = \"0\"",
                                              "/state/hardware-interrupt",
                                              "/state/hardware-interrupt/max-time = \"12\""}));
}

// Outside KIND_GET nothing is entered either way; the root augment parser
// drops the node of a foreign place in an edit.
TEST(Cpu, OutsideGetNothingIsMapped) {
    for (uint32_t kind : {KIND_GET_CONFIG, KIND_EDIT_A}) {
        test::expect_walk(kCpuOper, kind, native(native_cpu("0", "<total><avg>5</avg></total>")),
                          "");
        test::expect_walk(kSystem, kind, oc("<index>0</index><state><total><avg/></total></state>"),
                          "");
    }
}

} // namespace
