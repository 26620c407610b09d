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
    EXPECT_EQ(r.paths(), kNative + "\n" + kNative + "/system\n" + kNative + "/system/cpuses\n" +
                             kNative + "/system/cpuses/cpus\n" + kNative +
                             "/system/cpuses/cpus/state\n" + kNative +
                             "/system/cpuses/cpus/state/index = \"0\"\n" + kNative +
                             "/system/cpuses/cpus/state/hardware-interrupt\n" + kNative +
                             "/system/cpuses/cpus/state/hardware-interrupt/max-time\n");
    r.expect_state_restored();
}

TEST(Cpu, StateIndexInARequestIsRefused) {
    Request r(KIND_GET);
    test::expect_refused(
        r, r.run(kSystem, oc("<index>0</index><state><index/></state>")),
        {YFW_ERR_UNSUPPORTED_TAG, "index", "/openconfig-system:system/cpus/cpu[index='0']/state"});
}

TEST(Cpu, NativeEntryComesBackUnderItsIndex) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kCpuOper, native(native_cpu("0", "<hardware-interrupt><max-time>12</max-time>"
                                                     "</hardware-interrupt>"))),
              YFW_SUCCESS);
    EXPECT_EQ(r.paths(), "/openconfig-system:system\n/openconfig-system:system/cpus\n" + kCpu0 +
                             "\n" + kCpu0 + "/index = \"0\"\n" + kCpu0 + "/state\n" + kCpu0 +
                             "/state/index = \"0\"\n" + kCpu0 + "/state/hardware-interrupt\n" +
                             kCpu0 + "/state/hardware-interrupt/max-time = \"12\"\n");
    r.expect_state_restored();
}

TEST(Cpu, AStitchedEntryLandsOnTheExistingEntryOfTheSameIndex) {
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kCpuOper, native(native_cpu("0", "<total><avg>5</avg></total>") +
                                     native_cpu("1", "<total><avg>6</avg></total>"))),
              YFW_SUCCESS);
    ASSERT_EQ(r.run(kCpuOper, native(native_cpu("0", "<idle><avg>90</avg></idle>"))), YFW_SUCCESS);
    const std::string out = r.paths();
    EXPECT_NE(out.find(kCpu0 + "/state/idle/avg = \"90\"\n"), std::string::npos) << out;
    std::size_t entries = 0;
    for (std::size_t at = out.find(kCpu0 + "\n"); at != std::string::npos;
         at = out.find(kCpu0 + "\n", at + 1))
        ++entries;
    EXPECT_EQ(entries, 1u) << out;
}

TEST(Cpu, EveryCounterOfEveryMeasureComesBack) {
    std::string state;
    for (const char *m : {"total", "user", "kernel", "nice", "idle", "wait", "hardware-interrupt",
                          "software-interrupt"}) {
        state += std::string("<") + m + ">";
        for (const char *c : {"instant", "avg", "min", "max", "interval", "min-time", "max-time"})
            state += std::string("<") + c + ">1</" + c + ">";
        state += std::string("</") + m + ">";
    }
    Request r(KIND_GET);
    ASSERT_EQ(r.run(kCpuOper, native(native_cpu("3", state))), YFW_SUCCESS);
    const std::string out = r.paths();
    std::size_t leaves = 0;
    for (std::size_t at = out.find(" = \"1\""); at != std::string::npos;
         at = out.find(" = \"1\"", at + 1))
        ++leaves;
    EXPECT_EQ(leaves, 56u);
}

TEST(Cpu, NativeTreeOnAnotherKindProducesNothing) {
    for (uint32_t kind : {KIND_GET_CONFIG, KIND_EDIT_A}) {
        Request r(kind);
        ASSERT_EQ(r.run(kCpuOper, native(native_cpu("0", "<total><avg>5</avg></total>"))),
                  YFW_SUCCESS);
        EXPECT_EQ(r.paths(), "") << kind;
    }
}

TEST(Cpu, OutsideGetTheSubtreeIsNotEnteredAndAnEditAddsNothing) {
    Request read(KIND_GET_CONFIG);
    EXPECT_EQ(read.run(kSystem, oc("<index>0</index><state><total><avg/></total></state>")),
              YFW_SUCCESS);
    EXPECT_EQ(read.paths(), "");
    // The root augment parser drops the node of a foreign place in an edit.
    Request edit(KIND_EDIT_A);
    EXPECT_EQ(edit.run(kSystem, oc("<index>0</index>")), YFW_SUCCESS);
    EXPECT_EQ(edit.paths(), "");
    edit.expect_state_restored();
}

} // namespace
