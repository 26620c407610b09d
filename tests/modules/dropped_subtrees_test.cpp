// Native subtrees with no OpenConfig face are walked to the leaves: each node
// is checked, none is traced as unknown; and the DNS silencing mark acts
// before any tree check.
#include "harness.hpp"
#include "ymap_ocsystem_modules.h"

namespace {

using test::Request;

// Bodies in short: `a{...}` is a container or entry, a bare word a leaf of
// value 1, and `@` where a malformed node (a null tag) goes in the second walk.
std::string xml(std::string_view text) {
    std::string out, word;
    std::vector<std::string> open;
    for (char ch : std::string(text) + ' ') {
        if (ch == '{')
            out += "<" + word + ">", open.push_back(word);
        else if ((ch == ' ' || ch == '}') && !word.empty())
            out += word == "@" ? word : "<" + word + ">1</" + word + ">";
        else if (ch != ' ' && ch != '}')
            word += ch;
        if (ch == '{' || ch == ' ' || ch == '}')
            word.clear();
        if (ch == '}')
            out += "</" + open.back() + ">", open.pop_back();
    }
    return out;
}

struct Dropped {
    const char *name;
    yfw_map_walker_fn walker;
    const char *module;
    const char *root;
    const char *body;
};

tidl_yfw_datatree *find(tidl_yfw_datatree *node, std::string_view tag) {
    if (node->tag != nullptr && tag == node->tag)
        return node;
    for (uint32_t i = 0; i < node->subtree_count; ++i)
        if (tidl_yfw_datatree *found = find(&node->subtrees[i], tag))
            return found;
    return nullptr;
}

class DroppedSubtrees : public testing::TestWithParam<Dropped> {};

TEST_P(DroppedSubtrees, AreWalkedDownToEveryNode) {
    const Dropped &c = GetParam();
    yfw::sysdb::set_present(true); // the gRPC root names its entry from it
    std::string body = xml(c.body);
    const std::size_t at = body.find('@');
    Request valid(KIND_GET);
    ASSERT_EQ(valid.run(c.walker, test::native(std::string("Tarvex-QV-") + c.module, c.root,
                                               std::string(body).erase(at, 1))),
              YFW_SUCCESS);
    EXPECT_EQ(test::count_lines(valid.session().debug_log(), "Unsupported tag"), 0);
    valid.expect_state_restored();
    Request bad(KIND_GET);
    tidl_yfw_datatree *in = bad.input(
        test::native(std::string("Tarvex-QV-") + c.module, c.root, body.replace(at, 1, "<x/>")));
    find(in, "x")->tag = nullptr;
    EXPECT_EQ(c.walker(bad.ctx(), in, bad.session().output()), YFW_ERR_BAD_TREE);
    yfw::sysdb::clear();
}

const Dropped kCases[] = {
    {"ssh", &ymap_qo_ocsystem_tarvexqvcryptosshcfg_lvla_ssh, "crypto-ssh-cfg", "ssh",
     "client{client-disable{client-hmac @} client-algo{key-exchanges ciphers} "
     "client-enable{client-cipher}} backup-server{backup-port-vrf} server{disable{hmac} "
     "enable{cipher} usernames{username{name}} server-algo{host-key key-exchanges ciphers} "
     "netconf-vrf-table{vrf{vrf-name enable}} certificate{username} "
     "trustpoint{usertps{usertp{tp-name}}}}"},
    {"ntp", &ymap_qo_ocsystem_tarvexqvipntpcfg_lvla_ntp, "ip-ntp-cfg", "ntp",
     "authentication{auth-hmacsha1 auth-hmacsha2 auth-cmac "
     "trusted-keys{trusted-key{key-number}}} admin-types{admin-type} dscp-ipv4 dscp-ipv6 "
     "sources{source} drift{file @} passive "
     "interface-tables{interface-table{interface{interface-multicast interface-broadcast}}} "
     "access-group-tables{access-group-table{access-group-af-table{access-group}}}"},
    {"syslog", &ymap_qo_ocsystem_tarvexqvinfrasyslogcfg_lvla_syslog, "infra-syslog-cfg", "syslog",
     "console-logging{console-discriminator} host-server{vrfs{vrf{hosts{host{host-name "
     "host-name-severities}} ipv4s{ipv4{address ipv4-severity-levels}} ipv6s{ipv6{address "
     "ipv6-severity-levels}}}}} monitor-logging{monitor-discriminator} history-logging "
     "logging-facilities{facility-level @} trap-logging container-logs{all-containers} "
     "buffered-logging{buffered-discriminator} files{file{file-name file-specification "
     "file-log-discriminator}} ipv4{dscp tos precedence} ipv6{dscp traffic-class precedence} "
     "archive source-interface-table{source-interface-values{source-interface-value} "
     "source-interface-vrfs{source-interface-vrf}}"},
    {"grpc", &ymap_qo_ocsystem_tarvexqvmanemscfg_lvla_grpc, "man-ems-cfg", "grpc",
     "aaa{authentication authorization} service-layer tls-cipher "
     "tunnel{destinations{destination{address port @}}} tls"},
    {"telnet", &ymap_qo_ocsystem_tarvexqviptcpcfg_lvla_ip, "ip-tcp-cfg", "ip",
     "tinetd{services{tftp{vrfs{vrf{vrf-name ipv4{udp} ipv6{udp}}}} "
     "ipv4{small-servers{tcp-small-servers @}} ipv6{small-servers{tcp-small-servers}}}}"},
    {"aaa", &ymap_qo_ocsystem_tarvexqvaaalibcfg_lvla_aaa, "aaa-lib-cfg", "aaa",
     "authorization-nacms{authorization-nacm{listname @}} accounting-update banner"},
    {"taskgroups", &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlf_aaa, "aaa-locald-cfg",
     "taskgroups",
     "taskgroup{name taskgroup-under-taskgroups{taskgroup-under-taskgroup{name}} "
     "tasks{task{task-id @}}}"},
    {"usergroups", &ymap_qo_ocsystem_tarvexqvaaalocaldcfg_augment_lvlg_aaa, "aaa-locald-cfg",
     "usergroups",
     "usergroup{name taskgroup-under-usergroups{taskgroup-under-usergroup{name}} "
     "usergroup-under-usergroups{usergroup-under-usergroup{name @}}}"},
    {"tacacs", &ymap_qo_ocsystem_tarvexqvaaatacacscfg_augment_lvla_aaa, "aaa-tacacs-cfg", "tacacs",
     "ipv4 ipv6 hosts{host{ip-address port-number key{encrypt-type secret7 secret6 @} "
     "timeout}} vrfs{vrf{vrf-name}} key{encrypt-type secret7 secret6} timeout"},
};
INSTANTIATE_TEST_SUITE_P(Native, DroppedSubtrees, testing::ValuesIn(kCases), test::case_name);

// An operational DNS answer silences the next configuration walk before that
// walk looks at its tree, and marks itself before it looks at its own.
TEST(DnsSilencing, ActsBeforeAnyTreeCheck) {
    constexpr auto kOcDns = &ymap_qo_ocsystem_tarvexqvprivateocdnsoper_lvla_ocdns;
    constexpr auto kIpDomain = &ymap_qo_ocsystem_tarvexqvipdomaincfg_lvla_ipdomain;
    const std::string domain =
        test::native("Tarvex-QV-ip-domain-cfg", "ip-domain", xml("vrfs{vrf{name}}"));
    Request oper(KIND_GET);
    tidl_yfw_datatree *dns =
        oper.input(test::native("Tarvex-QV-PRIVATE-oc-dns-oper", "oc-dns", ""));
    dns->present_subtrees = 1;
    dns->subtree_count = 1; // children announced, none given
    EXPECT_EQ(kOcDns(oper.ctx(), dns, oper.session().output()), YFW_ERR_BAD_TREE);
    Request silenced(KIND_GET_CONFIG);
    tidl_yfw_datatree *in = silenced.input(domain);
    find(in, "name")->tag = nullptr;
    EXPECT_EQ(kIpDomain(silenced.ctx(), in, silenced.session().output()), YFW_SUCCESS);
    EXPECT_EQ(silenced.paths(), "");
    Request next(KIND_GET_CONFIG);
    ASSERT_EQ(next.run(kIpDomain, domain), YFW_SUCCESS);
    EXPECT_NE(next.paths().find("domain-name = \"1\""), std::string::npos);
}

} // namespace
