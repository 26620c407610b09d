#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <netdb.h>
#include <string>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

#include "qv_platform.h"
#include "tree_text.hpp"
#include "yfw_map.h"

namespace {

TEST(Memory, NamedCopiesAreCountedPerLabel) {
    const std::size_t before = yfw::live_allocations();
    char *a = yfw_strdup("ssh-key", YFW_MAP_ALLOC_LABEL);
    char *b = yfw_strdup("x", "other");
    EXPECT_STREQ(a, "ssh-key");
    EXPECT_EQ(yfw::live_allocations(), before + 1);
    EXPECT_EQ(yfw::live_allocations("other"), 1u);
    EXPECT_EQ(yfw_strdup(nullptr, YFW_MAP_ALLOC_LABEL), nullptr);
    qvos_named_free(a);
    qvos_named_free(b);
    qvos_named_free(nullptr);
    EXPECT_EQ(yfw::live_allocations(), before);
    EXPECT_EQ(yfw::live_allocations("other"), 0u);
}

TEST(Memory, SessionReleasesErrorTexts) {
    const std::size_t before = yfw::live_allocations();
    {
        yfw::Session session(KIND_EDIT_A);
        session.state()->error_tag = yfw_strdup("enabled", YFW_MAP_ALLOC_LABEL);
        session.state()->error_message = yfw_strdup("Invalid value", YFW_MAP_ALLOC_LABEL);
        EXPECT_EQ(yfw::live_allocations(), before + 2);
    }
    EXPECT_EQ(yfw::live_allocations(), before);
}

TEST(SafeStrings, CopiesThatFitAndOnesThatDoNot) {
    struct Case {
        std::size_t size;
        const char *source;
        std::size_t count; // 0: yfw_strcpy_s, else yfw_strncpy_s
        bool ok;
        const char *result;
    };
    const Case cases[] = {
        {8, "system", 0, true, "system"}, {7, "system", 0, true, "system"},
        {6, "system", 0, false, ""},      {8, nullptr, 0, false, ""},
        {4, "system", 3, true, "sys"},    {4, "system", 4, false, ""},
        {8, "ab", 5, true, "ab"},
    };
    for (const Case &c : cases) {
        char dest[8] = "old";
        const int rc = c.count == 0 ? yfw_strcpy_s(__func__, dest, c.size, c.source)
                                    : yfw_strncpy_s(__func__, dest, c.size, c.source, c.count);
        EXPECT_EQ(rc == EOK, c.ok) << c.size << " " << (c.source ? c.source : "null");
        EXPECT_STREQ(dest, c.result);
    }
    char dest[4] = "old";
    EXPECT_NE(strcpy_s(dest, 0, "a"), EOK);
    EXPECT_STREQ(dest, "old");
    EXPECT_NE(strcpy_s(nullptr, 4, "a"), EOK);
    EXPECT_EQ(strcpy_s(dest, sizeof dest, "abc"), EOK);
    EXPECT_STREQ(dest, "abc");
}

TEST(SafeStrings, CompareWithinALimit) {
    int indicator = 7;
    EXPECT_EQ(yfw_strcmp_s(__func__, "DEFAULT", 64, "DEFAULT", &indicator), EOK);
    EXPECT_EQ(indicator, 0);
    EXPECT_EQ(yfw_strcmp_s(__func__, "abcX", 3, "abcY", &indicator), EOK);
    EXPECT_EQ(indicator, 0);
    EXPECT_EQ(yfw_strcmp_s(__func__, "a", 64, "b", &indicator), EOK);
    EXPECT_LT(indicator, 0);
    EXPECT_EQ(yfw_strcmp_s(__func__, "b", 64, "a", &indicator), EOK);
    EXPECT_GT(indicator, 0);
    EXPECT_NE(yfw_strcmp_s(__func__, nullptr, 64, "a", &indicator), EOK);
    EXPECT_NE(yfw_strcmp_s(__func__, "a", 64, "a", nullptr), EOK);
}

struct Sysdb : testing::Test {
    void SetUp() override {
        yfw::sysdb::clear();
        yfw::sysdb::set_present(true);
    }
    void TearDown() override { yfw::sysdb::clear(); }

    // The status of a read, and the value it returned (freed here).
    static std::pair<int, std::string> get(sysdb_connection *conn, const char *key) {
        uint32_t type = SYSDB_TYPE_STRING;
        void *value = nullptr;
        uint32_t size = 99;
        const int rc = sysdb_item_get(conn, key, &type, &value, &size, 0);
        std::string text;
        if (rc == 0) {
            text.assign(static_cast<char *>(value), size);
            std::free(value);
        }
        return {rc, text};
    }
};

TEST_F(Sysdb, ItemsByFullPathMissingOrEmpty) {
    yfw::sysdb::set_item("/cfg/gl/ems/ord_A/grpc/name", "srv");
    yfw::sysdb::set_item("/cfg/gl/ems/ord_A/grpc/running", "");
    sysdb_connection *conn = nullptr;
    ASSERT_EQ(_sysdb_bind(&conn, "/cfg/gl/ems/", 0), 0);
    EXPECT_EQ(get(conn, "ord_A/grpc/name"), std::make_pair(0, std::string("srv")));
    EXPECT_EQ(get(conn, "ord_A/grpc/running"), std::make_pair(0, std::string()));
    yfw::sysdb::erase_item("/cfg/gl/ems/ord_A/grpc/name");
    EXPECT_NE(get(conn, "ord_A/grpc/name").first, 0);
    EXPECT_NE(get(conn, "grpc/name").first, 0);
    EXPECT_EQ(_sysdb_unbind(conn), 0);
}

TEST_F(Sysdb, BindFailsOnRequestAndWhileAbsent) {
    sysdb_connection *conn = nullptr;
    yfw::sysdb::set_bind_fails(true);
    EXPECT_NE(_sysdb_bind(&conn, "/cfg/gl/ems/", 0), 0);
    yfw::sysdb::clear();
    EXPECT_NE(_sysdb_bind(&conn, "/cfg/gl/ems/", 0), 0);
    EXPECT_EQ(conn, nullptr);
}

// The library's probe reaches the stand-in; any other path is the host's.
TEST_F(Sysdb, PresenceAnswersTheProbeAndNothingElse) {
    EXPECT_EQ(access("/pkg/lib/libsysdb.so", R_OK), 0);
    yfw::sysdb::clear();
    EXPECT_FALSE(yfw::sysdb::present());
    errno = 0;
    EXPECT_EQ(access("/pkg/lib/libsysdb.so", R_OK), -1);
    EXPECT_EQ(errno, ENOENT);

    EXPECT_EQ(access("/", R_OK), 0);
    errno = 0;
    EXPECT_EQ(access("/nonexistent/libsysdb.so", F_OK), -1);
    EXPECT_EQ(errno, ENOENT);
    const std::string self = testing::internal::GetArgvs().front();
    EXPECT_EQ(access(self.c_str(), X_OK), 0);
}

// The platform's answers must be the host's, byte for byte, whether the
// stand-in answers itself or passes on; held answers stay apart, also more of
// them than it keeps.
TEST(Address, ParsesAndResolvesLiteralsAsTheHostDoes) {
    unsigned char out[16] = {};
    EXPECT_EQ(qv_inet_pton(AF_INET, nullptr, out), 0);
    const addrinfo zero{};
    std::vector<addrinfo *> held;
    for (const char *text : {"10.0.0.1",
                             "0.0.0.0",
                             "255.255.255.255",
                             "10.0.0.256",
                             "010.0.0.1",
                             "1.2.3.1234",
                             "1.2.3",
                             "1.2.3.4.",
                             "1..2.3",
                             "1.2.3.4 ",
                             "",
                             "10.1",
                             "::1",
                             "fe80::1",
                             "::ffff:1.2.3.4",
                             "2001:db8::1:2:3:4:5",
                             "2001:db8:::1",
                             "fe80::1%lo",
                             "localhost",
                             "a.example"}) {
        for (int family : {AF_INET, AF_INET6}) {
            unsigned char mine[16] = {}, host[16] = {};
            EXPECT_EQ(qv_inet_pton(family, text, mine), inet_pton(family, text, host)) << text;
            EXPECT_EQ(std::memcmp(mine, host, sizeof mine), 0) << text;
        }
        if (qv_inet_pton(AF_INET, text, out) != 1 && qv_inet_pton(AF_INET6, text, out) != 1)
            continue; // names would ask the network
        addrinfo *mine = nullptr, *host = nullptr;
        ASSERT_EQ(getaddrinfo_qv(text, nullptr, &zero, &mine),
                  getaddrinfo(text, nullptr, &zero, &host));
        held.push_back(mine);
        ASSERT_EQ(getaddrinfo_qv("10.9.9.9", nullptr, &zero, &held.emplace_back()), 0);
        const addrinfo *a = mine, *b = host;
        for (; a != nullptr && b != nullptr; a = a->ai_next, b = b->ai_next) {
            EXPECT_EQ(std::tie(a->ai_flags, a->ai_family, a->ai_socktype, a->ai_protocol,
                               a->ai_addrlen, a->ai_canonname),
                      std::tie(b->ai_flags, b->ai_family, b->ai_socktype, b->ai_protocol,
                               b->ai_addrlen, b->ai_canonname))
                << text;
            EXPECT_EQ(std::memcmp(a->ai_addr, b->ai_addr, b->ai_addrlen), 0) << text;
        }
        EXPECT_TRUE(a == nullptr && b == nullptr) << text;
        freeaddrinfo(host);
    }
    for (addrinfo *answer : held)
        freeaddrinfo_qv(answer);
}

TEST(Registry, ModulesAndListKeys) {
    const yfw::Module *ntp = yfw::module_by_name("Tarvex-QV-ip-ntp-cfg");
    ASSERT_NE(ntp, nullptr);
    EXPECT_EQ(ntp->ns, "http://tarvex.local/ns/yang/Tarvex-QV-ip-ntp-cfg");
    EXPECT_EQ(yfw::module_by_namespace("http://openconfig.net/yang/system-grpc")->name,
              "openconfig-system-grpc");
    EXPECT_EQ(yfw::module_by_namespace("urn:none"), nullptr);
    for (const yfw::Module &module : yfw::modules())
        EXPECT_LE(module.ns.size(), 80u) << module.name;

    using Keys = std::vector<std::string_view>;
    auto keys = [](std::string_view path) {
        auto span = yfw::list_keys(path);
        return Keys(span.begin(), span.end());
    };
    EXPECT_EQ(keys("/system/logging/remote-servers/remote-server/selectors/selector"),
              (Keys{"facility", "severity"}));
    EXPECT_EQ(keys("/a1:aaa/a2:server-groups/tacacs-server-groups/tacacs-server-group/"
                   "private-servers/private-server"),
              (Keys{"ip-address", "port-number"}));
    EXPECT_EQ(keys("/oc-sys:system/grpc-servers/grpc-server"), Keys{"name"});
    EXPECT_TRUE(keys("/system/dns/servers").empty());
}

TEST(Registry, SegmentsQuoteKeyValues) {
    yfw::Arena arena;
    tidl_yfw_datatree *selector = fwtest::new_root(arena, "selector");
    selector->namespace_ = arena.text("http://openconfig.net/yang/system");
    fwtest::add_node(arena, selector, "severity", "it's");
    fwtest::add_node(arena, selector, "facility", "NONE");
    EXPECT_EQ(yfw::describe_segment(*selector, "/system/logging/console/selectors/selector",
                                    "http://openconfig.net/yang/system"),
              "selector[facility='NONE'][severity=\"it's\"]");
    EXPECT_EQ(yfw::describe_segment(*selector, "/system", nullptr), "openconfig-system:selector");
}

} // namespace
