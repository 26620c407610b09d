"""ocsysmapd driven by ncclient: an edit leaves exactly what the client asked
for. A replace at any level keeps the new content alone, in every feature
area; what was written reads back whole, keys, empty leaves and identities
included.

usage: ncclient_edit_test.py OCSYSMAPD MODELS_DIR
"""
import os
import re
import shutil
import sys
import unittest
import xml.etree.ElementTree as ET

from lxml import etree

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from device_harness import NC, OC, Device, config, serve, unserve  # noqa: E402
from ncclient.operations import RPCError  # noqa: E402

DAEMON, MODELS = sys.argv[1], sys.argv[2]
GRPC = "http://openconfig.net/yang/system-grpc"
TELNET_EXT = "http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-terminal-ext"
TYPES = "http://openconfig.net/yang/aaa/types"
R = ' nc:operation="replace"'


def host(name, domain=""):
    domain = f"<domain-name>{domain}</domain-name>" if domain else ""
    return f"<config><hostname>{name}</hostname>{domain}</config>"


def ntp_server(address, version=4, op=""):
    return (f"<server{op}><address>{address}</address><config><address>{address}</address>"
            f"<port>123</port><version>{version}</version><association-type>SERVER</association-type>"
            "</config>"
            "</server>")


def ntp(*servers, op=""):
    return f"<ntp><servers{op}>{''.join(servers)}</servers></ntp>"


def dns_server(address):
    return f"<server><address>{address}</address><config><address>{address}</address></config></server>"


def dns(search, *servers, op="", servers_op=""):
    return (f"<dns><config{op}><search>{search}</search></config>"
            f"<servers{servers_op}>{''.join(dns_server(s) for s in servers)}</servers></dns>")


def syslog(*hosts, op=""):
    entries = "".join(f"<remote-server><host>{h}</host><config><host>{h}</host>"
                      f"<remote-port>{p}</remote-port></config></remote-server>" for h, p in hosts)
    return f"<logging><remote-servers{op}>{entries}</remote-servers></logging>"


def ssh(timeout, limit=None, op=""):
    limit = f"<session-limit>{limit}</session-limit>" if limit else ""
    return f"<ssh-server><config{op}><timeout>{timeout}</timeout>{limit}</config></ssh-server>"


def telnet(*vrfs, op=""):
    entries = "".join(f"<vrf><vrf-name>{v}</vrf-name><config><session-limit>{n}</session-limit>"
                      "</config></vrf>" for v, n in vrfs)
    return f'<telnet-server><ipv4 xmlns="{TELNET_EXT}"{op}>{entries}</ipv4></telnet-server>'


def grpc(port, tls=None, servers_op=""):
    tls = f"<transport-security>{tls}</transport-security>" if tls else ""
    return (f'<grpc-servers xmlns="{GRPC}"{servers_op}><grpc-server><name></name><config><name></name>'
            f"<enable>true</enable><port>{port}</port>{tls}</config></grpc-server></grpc-servers>")


def users(*entries):
    body = "".join(
        f"<user{op}><username>{name}</username><config><username>{name}</username>"
        f'<password>{password}</password><role xmlns:t="{TYPES}">t:SYSTEM_ROLE_ADMIN</role>'
        f"</config></user>" for name, password, op in entries)
    return f"<aaa><authentication><users>{body}</users></authentication></aaa>"


def methods(*names, op=""):
    listed = "".join(f"<authentication-method>t:{n}</authentication-method>" for n in names)
    return f'<aaa><authentication><config{op} xmlns:t="{TYPES}">{listed}</config></authentication></aaa>'


def group(name, *servers, op=""):
    entries = "".join(f"<server><address>{a}</address><config><address>{a}</address>"
                      f"<timeout>{t}</timeout></config><tacacs><config><port>49</port>"
                      f"<secret-key>key-{a}</secret-key></config></tacacs></server>"
                      for a, t in servers)
    return (f'<aaa><server-groups><server-group{op}><name>{name}</name><config><name>{name}'
            f'</name><type xmlns:a="http://openconfig.net/yang/aaa">a:TACACS</type></config>'
            f"<servers>{entries}</servers></server-group></server-groups></aaa>")


# name, the configuration before, the edit, the whole configuration after.
REPLACES = [
    ("host name leaf", host("a", "d.example"),
     '<config><hostname nc:operation="replace">b</hostname></config>', host("b", "d.example")),
    ("motd banner leaf", '<config><login-banner>in</login-banner><motd-banner>a</motd-banner></config>',
     '<config><motd-banner nc:operation="replace">b</motd-banner></config>',
     "<config><login-banner>in</login-banner><motd-banner>b</motd-banner></config>"),
    ("time zone leaf", "<clock><config><timezone-name>GMT</timezone-name></config></clock>",
     '<clock><config><timezone-name nc:operation="replace">PST8PDT</timezone-name></config></clock>',
     "<clock><config><timezone-name>PST8PDT</timezone-name></config></clock>"),
    ("system config container", host("a", "d.example"), f"<config{R}><hostname>b</hostname></config>",
     host("b")),
    ("NTP server entry", ntp(ntp_server("192.0.2.1"), ntp_server("192.0.2.2")),
     ntp(ntp_server("192.0.2.1", 3, R)), ntp(ntp_server("192.0.2.1", 3), ntp_server("192.0.2.2"))),
    ("NTP servers list", ntp(ntp_server("192.0.2.1")),
     ntp(ntp_server("192.0.2.7"), ntp_server("192.0.2.8"), op=R),
     ntp(ntp_server("192.0.2.7"), ntp_server("192.0.2.8"))),
    ("NTP container", host("a") + ntp(ntp_server("192.0.2.1")),
     f"<ntp{R}><servers>{ntp_server('192.0.2.5')}</servers></ntp>",
     host("a") + ntp(ntp_server("192.0.2.5"))),
    ("DNS search list", dns("a.example", "192.0.2.53"), dns("b.example", op=R).replace(
        "<servers></servers>", ""), dns("b.example", "192.0.2.53")),
    ("DNS servers list", dns("a.example", "192.0.2.53"),
     f"<dns><servers{R}>{dns_server('192.0.2.54')}</servers></dns>",
     dns("a.example", "192.0.2.54")),
    ("syslog remote server entry", syslog(("192.0.2.9", 514), ("192.0.2.10", 514)),
     syslog(("192.0.2.9", 601)).replace("<remote-server>", f"<remote-server{R}>"),
     syslog(("192.0.2.9", 601), ("192.0.2.10", 514))),
    ("syslog remote servers", syslog(("192.0.2.9", 514), ("192.0.2.10", 514)),
     syslog(("192.0.2.11", 601), op=R), syslog(("192.0.2.11", 601))),
    ("SSH config", ssh(60, 10), ssh(30, op=R), ssh(30)),
    ("telnet VRFs", telnet(("mgmt", 5), ("red", 2)), telnet(("blue", 4), op=R),
     telnet(("blue", 4))),
    ("users list", users(("alice", "old", ""), ("bob", "b", "")),
     users(("carol", "c", "")).replace("<users>", f"<users{R}>"), users(("carol", "c", ""))),
    ("TACACS servers of a group", group("ops", ("192.0.2.10", 5), ("192.0.2.11", 6)),
     group("ops", ("192.0.2.12", 7)).replace("<servers>", f"<servers{R}>"),
     group("ops", ("192.0.2.12", 7))),
    ("SSH server", ssh(60, 10), ssh(30).replace("<ssh-server>", f"<ssh-server{R}>"), ssh(30)),
    ("telnet server", telnet(("mgmt", 5), ("red", 2)),
     telnet(("blue", 4)).replace("<telnet-server>", f"<telnet-server{R}>"), telnet(("blue", 4))),
    ("logging container", syslog(("192.0.2.9", 514), ("192.0.2.10", 514)),
     syslog(("192.0.2.11", 601)).replace("<logging>", f"<logging{R}>"), syslog(("192.0.2.11", 601))),
    ("DNS container", dns("a.example", "192.0.2.53"),
     dns("b.example", "192.0.2.54").replace("<dns>", f"<dns{R}>"), dns("b.example", "192.0.2.54")),
    ("aaa container", users(("alice", "old", "")),
     users(("bob", "b", "")).replace("<aaa>", f"<aaa{R}>"), users(("bob", "b", ""))),
    ("local user entry", users(("alice", "old", ""), ("bob", "b", "")), users(("alice", "new", R)),
     users(("alice", "new", ""), ("bob", "b", ""))),
    ("TACACS server group", group("ops", ("192.0.2.10", 5), ("192.0.2.11", 6)),
     group("ops", ("192.0.2.12", 7), op=R), group("ops", ("192.0.2.12", 7))),
    # Last: the server's name outlives a replace of the configuration.
    ("gRPC servers", grpc(57400, "false"), grpc(57401, servers_op=R), grpc(57401)),
]


def canonical(element):
    """A tree as nested tuples, siblings sorted; identities without their prefix."""
    text = (element.text or "").strip()
    text = re.sub(r"^[\w.-]+:(?=[A-Z][A-Z0-9_]*$)", "", text)
    return (element.tag, text, tuple(sorted(canonical(c) for c in element)))


def system(body):
    return ET.fromstring(f'<system xmlns="{OC}" xmlns:nc="{NC}">{body}</system>')


class EditTest(unittest.TestCase):
    def setUp(self):
        serve(self, DAEMON, MODELS)

    def tearDown(self):
        self.assertEqual(unserve(self), 0, "ocsysmapd exit status")

    def edit(self, body, **options):
        return self.nc.edit_config(target="running", config=config(body), **options)

    def running(self):
        found = ET.fromstring(self.nc.get_config(source="running").data_xml).find(f"{{{OC}}}system")
        return found if found is not None else system("")

    def assert_running(self, body):
        running = self.running()
        self.assertEqual(canonical(running), canonical(system(body)), ET.tostring(running))

    def test_a_replace_at_any_level_leaves_exactly_the_new_content(self):
        for name, before, edit, after in REPLACES:
            with self.subTest(name):
                self.edit(before, default_operation="replace")
                self.assert_running(before)
                self.edit(edit)
                self.assert_running(after)

    def test_default_operation_replace_keeps_the_new_content_alone(self):
        self.edit(host("a", "d.example") + users(("alice", "x", "")) + ntp(ntp_server("192.0.2.1")))
        body = host("b") + ntp(ntp_server("192.0.2.2"))
        self.edit(body, default_operation="replace")
        self.assert_running(body)


    def test_authentication_methods_keep_their_order_through_replace_and_delete(self):
        cases = [  # edit, the methods read back
            (methods("TACACS_ALL", "LOCAL"), ["TACACS_ALL", "LOCAL"]),
            (methods("LOCAL", "TACACS_ALL", op=R), ["LOCAL", "TACACS_ALL"]),
            ('<aaa><authentication><config nc:operation="delete"/></authentication></aaa>', []),
        ]
        path = f"{{{OC}}}aaa/{{{OC}}}authentication/{{{OC}}}config/{{{OC}}}authentication-method"
        for edit, expected in cases:
            with self.subTest(edit):
                self.edit(edit)
                found = [re.sub(".*:", "", m.text) for m in self.running().findall(path)]
                self.assertEqual(found, expected)
                with open(self.store, "rb") as f:
                    self.assertEqual(f.read().count(b"<method"), len(expected))


    def test_a_new_ntp_server_takes_the_default_association_type(self):
        cases = [  # address, config beside it, association-type read back
            ("192.0.2.1", "<iburst>true</iburst>", "SERVER"),
            ("192.0.2.2", "<association-type>PEER</association-type>", "PEER"),
            # An entry that exists keeps its own.
            ("192.0.2.2", "<iburst>true</iburst>", "PEER"),
        ]
        for address, config_body, expected in cases:
            with self.subTest(address=address, config=config_body):
                self.edit(f"<ntp><servers><server><address>{address}</address><config><address>"
                          f"{address}</address>{config_body}</config></server></servers></ntp>")
                found = self.running().find(f"{{{OC}}}ntp/{{{OC}}}servers/{{{OC}}}server"
                                            f"[{{{OC}}}address='{address}']/{{{OC}}}config")
                self.assertEqual(found.findtext(f"{{{OC}}}association-type"), expected)

    def test_an_identity_of_a_union_comes_back_with_its_namespace(self):
        self.edit(users(("alice", "x", "")))
        data = etree.fromstring(self.nc.get_config(source="running").data_xml.encode())
        role = data.find(f".//{{{OC}}}role")
        prefix, _, name = role.text.partition(":")
        self.assertEqual((role.nsmap.get(prefix), name), (TYPES, "SYSTEM_ROLE_ADMIN"))


    def test_the_store_is_private_and_a_store_or_key_others_may_write_is_refused(self):
        self.edit(users(("alice", "secret", "")))
        self.assertEqual(os.stat(self.store).st_mode & 0o777, 0o600)
        for name, store_mode, key_mode in [("store", 0o664, 0o600), ("host key", 0o600, 0o602)]:
            with self.subTest(name):
                store = os.path.join(self.dir.name, name.replace(" ", "-") + "-refused.xml")
                shutil.copy(self.store, store)
                shutil.copy(self.store + ".host-key", store + ".host-key")
                os.chmod(store, store_mode)
                os.chmod(store + ".host-key", key_mode)
                device = Device(DAEMON, MODELS, store)
                with self.assertRaisesRegex(RuntimeError, f"the {name} .* is writable by"):
                    device.start()
                self.assertNotEqual(device.process.returncode, 0)


    def test_a_delete_the_store_cannot_tell_from_a_delete_of_all_is_refused(self):
        both = syslog(("192.0.2.9", 514), ("192.0.2.10", 514))
        self.edit(both)
        with open(self.store, "rb") as f:
            before = f.read()
        with self.assertRaises(RPCError) as caught:
            self.edit('<logging><remote-servers><remote-server nc:operation="delete">'
                      "<host>192.0.2.9</host></remote-server></remote-servers></logging>")
        self.assertEqual(caught.exception.tag, "missing-element")
        with open(self.store, "rb") as f:
            self.assertEqual(f.read(), before)
        self.assert_running(both)

    def test_a_refused_grpc_server_name_answers_its_status_name_and_message(self):
        self.edit(grpc(57400))
        with open(self.store, "rb") as f:
            before = f.read()
        with self.assertRaises(RPCError) as caught:
            self.edit(f'<grpc-servers xmlns="{GRPC}"><grpc-server nc:operation="delete">'
                      "<name></name></grpc-server></grpc-servers>")
        error = caught.exception.to_dict()
        self.assertEqual((error["tag"], error["app_tag"], error["message"].strip()),
                         ("operation-failed", "REFUSED", "the request was refused"))
        with open(self.store, "rb") as f:
            self.assertEqual(f.read(), before)

if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
