"""ocsysmapd's operational state through ncclient: what a client configures
comes back as state in <get>, the host's clock, memory and CPUs are read from
the host, alarms and messages follow the events raised through the device's
own RPCs, and every answer validates against the models.

usage: oper_state_test.py OCSYSMAPD MODELS_DIR
"""
import os
import re
import subprocess
import sys
import time
import unittest
from datetime import datetime

from lxml import etree

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from device_harness import OC, ServedTestCase, config, oc_filter  # noqa: E402
from ncclient.operations import RPCError  # noqa: E402
from ncclient.xml_ import to_ele  # noqa: E402

EV = "urn:ocsysmap:yang:ocsysmapd-events"
NCM = "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"
EXT = "http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-terminal-ext"
DEV = "http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-deviations"
NS = {"oc": OC, "grpc": "http://openconfig.net/yang/system-grpc", "ext": EXT}
OC_MODULES = ("openconfig-system", "openconfig-system-grpc", "openconfig-alarms",
              "openconfig-messages")

# Per feature area: the edit, then (path under /system of the get answer, text);
# a row may end with the get's filter (the whole system when none).
AREAS = [
    ("identity and clock",
     "<config><hostname>edge-7</hostname><motd-banner>authorised use only</motd-banner>"
     "</config><clock><config><timezone-name>America/Chicago</timezone-name></config></clock>",
     [("oc:state/oc:hostname", "edge-7"), ("oc:state/oc:motd-banner", "authorised use only"),
      ("oc:clock/oc:state/oc:timezone-name", "America/Chicago")]),
    ("DNS",
     "<config><domain-name>example.net</domain-name></config><dns><config><search>a.example"
     "</search><search>b.example</search></config><servers><server><address>192.0.2.53"
     "</address><config><address>192.0.2.53</address></config></server></servers></dns>",
     [("oc:state/oc:domain-name", "example.net"),
      ("oc:dns/oc:state/oc:search[2]", "b.example"),
      ("oc:dns/oc:servers/oc:server/oc:state/oc:address", "192.0.2.53"),
      ("oc:dns/oc:servers/oc:server/oc:state/oc:port", "53")]),
    ("NTP",
     "<ntp><servers><server><address>192.0.2.1</address><config><address>192.0.2.1</address>"
     "<version>3</version><association-type>SERVER</association-type></config></server>"
     "</servers></ntp>",
     [("oc:ntp/oc:servers/oc:server/oc:state/oc:version", "3")]),
    ("logging",
     "<logging><remote-servers><remote-server><host>192.0.2.9</host><config><host>192.0.2.9"
     "</host><remote-port>601</remote-port></config></remote-server></remote-servers></logging>"
     "<messages><config><severity>WARNING</severity></config></messages>",
     [("oc:logging/oc:remote-servers/oc:remote-server/oc:state/oc:remote-port", "601"),
      ("oc:messages/oc:state/oc:severity", "WARNING")]),
    ("SSH",
     "<ssh-server><config><enable>true</enable><session-limit>7</session-limit></config>"
     "</ssh-server>",
     [("oc:ssh-server/oc:state/oc:session-limit", "7")]),
    ("gRPC",
     '<grpc-servers xmlns="http://openconfig.net/yang/system-grpc"><grpc-server><name>grpc-a'
     "</name><config><name>grpc-a</name><enable>true</enable><port>9339</port></config>"
     "</grpc-server></grpc-servers>",
     [("grpc:grpc-servers/grpc:grpc-server/grpc:state/grpc:port", "9339"),
      ("grpc:grpc-servers/grpc:grpc-server/grpc:state/grpc:enable", "true")]),
    ("TACACS",
     "<aaa><server-groups><server-group><name>tg</name><config><name>tg</name>"
     '<type xmlns:oc-aaa="http://openconfig.net/yang/aaa">oc-aaa:TACACS</type></config>'
     "<servers><server><address>192.0.2.10</address><config><address>192.0.2.10</address>"
     "<timeout>5</timeout></config><tacacs><config><port>49</port><secret-key>k9</secret-key>"
     "</config></tacacs></server></servers></server-group></server-groups></aaa>",
     [("oc:aaa/oc:server-groups/oc:server-group/oc:servers/oc:server/oc:state/oc:timeout", "5"),
      ("oc:aaa/oc:server-groups/oc:server-group/oc:servers/oc:server/oc:tacacs/oc:state/oc:port",
       "49")],
     # A whole read of a group leaves its servers' state out.
     "<aaa><server-groups><server-group><name>tg</name><servers><server><address>192.0.2.10"
     "</address><state/><tacacs/></server></servers></server-group></server-groups></aaa>"),
    ("Telnet",
     f'<telnet-server><ipv4 xmlns="{EXT}"><vrf><vrf-name>default</vrf-name><config>'
     "<session-limit>4</session-limit></config></vrf></ipv4></telnet-server>",
     [("oc:telnet-server/ext:ipv4/ext:vrf/ext:state/ext:session-limit", "4"),
      ("oc:telnet-server/ext:ipv4/ext:vrf/ext:state/ext:enable", "true")]),
    ("syslog selector",
     "<logging><remote-servers><remote-server><host>192.0.2.9</host><selectors><selector>"
     f'<facility xmlns:d="{DEV}">d:NONE</facility><severity>WARNING</severity><config>'
     f'<facility xmlns:d="{DEV}">d:NONE</facility><severity>WARNING</severity></config>'
     "</selector></selectors></remote-server></remote-servers></logging>",
     [("oc:logging/oc:remote-servers/oc:remote-server/oc:selectors/oc:selector/oc:severity",
       "WARNING")],
     # A whole read of a remote server asks the device for its port alone.
     "<logging><remote-servers><remote-server><host>192.0.2.9</host><selectors/>"
     "</remote-server></remote-servers></logging>"),
]


def event(name, **leaves):
    body = "".join(f"<{k.replace('_', '-')}>{v}</{k.replace('_', '-')}>"
                   for k, v in leaves.items())
    return to_ele(f'<{name} xmlns="{EV}">{body}</{name}>')


class OperStateTest(ServedTestCase):
    @classmethod
    def setUpClass(cls):
        cls.started = time.time_ns()
        super().setUpClass()
        cls.modules = cls.fetch_schemas()

    @classmethod
    def fetch_schemas(cls):
        """Every module the hello advertises, and what they import or include, through
        <get-schema>; the advertised ones are the files to validate with."""
        cls.schemas = os.path.join(cls.dir.name, "schemas")
        os.mkdir(cls.schemas)
        advertised = sorted({re.search(r"module=([^&]+)", c).group(1)
                             for c in cls.nc.server_capabilities if "module=" in c})
        wanted, seen = list(advertised), set(advertised)
        while wanted:
            name = wanted.pop()
            text = cls.nc.get_schema(name).data
            with open(os.path.join(cls.schemas, f"{name}.yang"), "w") as f:
                f.write(text)
            for imported in re.findall(r"^\s*(?:import|include)\s+([\w.-]+)\s*[{;]", text, re.M):
                if imported not in seen:
                    seen.add(imported)
                    wanted.append(imported)
        assert {*OC_MODULES, "Tarvex-QV-openconfig-system-terminal-ext",
                "Tarvex-QV-openconfig-system-deviations"} <= set(advertised), advertised
        return [os.path.join(cls.schemas, f"{m}.yang") for m in advertised]

    def get(self, body=None):
        """The get answer's system node, once libyang found the whole answer valid."""
        reply = self.nc.get(filter=oc_filter(body) if body else None)
        data = reply.data_ele
        if len(data) == 0:
            return etree.Element("none")
        answer = os.path.join(self.dir.name, "answer.xml")
        with open(answer, "wb") as f:
            f.write(b"".join(etree.tostring(c) for c in data))
        check = subprocess.run(["yanglint", "-Q", "-D", "-i", "-i", "-t", "get", "-p", self.schemas,
                                *self.modules, answer], capture_output=True, text=True)
        self.assertEqual(check.returncode, 0, check.stderr + reply.data_xml)
        found = data.find("oc:system", NS)
        return found if found is not None else etree.Element("none")

    def test_state_follows_each_area_configured(self):
        for name, body, expected, *read in AREAS:
            with self.subTest(area=name):
                self.assertTrue(self.nc.edit_config(target="running", config=config(body)).ok)
                state = self.get(*read)
                for path, text in expected:
                    self.assertEqual(state.findtext(path, namespaces=NS), text, path)

    def test_clock_and_boot_time_come_from_the_host(self):
        first = self.get("<state/>")
        shown = datetime.fromisoformat(first.findtext("oc:state/oc:current-datetime",
                                                      namespaces=NS))
        self.assertLess(abs(shown.timestamp() - time.time()), 5)
        boot = int(first.findtext("oc:state/oc:boot-time", namespaces=NS))
        self.assertTrue(self.started <= boot <= time.time_ns())
        again = self.get("<state><boot-time/></state>")
        self.assertEqual(int(again.findtext("oc:state/oc:boot-time", namespaces=NS)), boot)

    def test_memory_and_a_cpu_entry_per_host_cpu(self):
        state = self.get("<memory/><cpus/>")
        with open("/proc/meminfo") as f:
            total = next(int(line.split()[1]) for line in f if line.startswith("MemTotal:"))
        self.assertEqual(state.findtext("oc:memory/oc:state/oc:physical", namespaces=NS),
                         str(total * 1024))
        indexes = {e.text for e in state.findall("oc:cpus/oc:cpu/oc:index", NS)}
        self.assertEqual(indexes, {"ALL", *map(str, range(os.cpu_count()))})
        for cpu in state.findall("oc:cpus/oc:cpu/oc:state/oc:total", NS):
            self.assertLessEqual(int(cpu.findtext("oc:instant", namespaces=NS)), 100)

    def test_alarms_and_messages_follow_the_events(self):
        alarm = "oc:alarms/oc:alarm[oc:id='fan-2']/oc:state/"
        cases = [
            ("raise", event("raise-alarm", id="fan-2", resource="fan tray 2", text="Fan failed",
                            severity="MAJOR"), alarm + "oc:text", "Fan failed"),
            ("raise again", event("raise-alarm", id="fan-2", text="Fan stopped",
                                  severity="CRITICAL"), alarm + "oc:text", "Fan stopped"),
            ("clear", event("clear-alarm", id="fan-2"), alarm + "oc:text", None),
            ("message", event("log-message", msg="link up", priority=14, app_name="ifmgr"),
             "oc:messages/oc:state/oc:message/oc:msg", "link up"),
        ]
        for name, rpc, path, text in cases:
            with self.subTest(event=name):
                self.assertTrue(self.nc.dispatch(rpc).ok)
                self.assertEqual(self.get().findtext(path, namespaces=NS), text)

    def test_schemas_listed_are_served(self):
        reply = self.nc.get(filter=("subtree", f'<netconf-state xmlns="{NCM}"/>'))
        listed = {e.text for e in reply.data_ele.iterfind(".//ncm:identifier", {"ncm": NCM})}
        # Submodules too, which the hello does not name.
        self.assertLessEqual({*OC_MODULES, "openconfig-aaa-tacacs",
                              "Tarvex-QV-openconfig-system-deviations"}, listed)
        self.assertIn("deviate not-supported",
                      self.nc.get_schema("Tarvex-QV-openconfig-system-deviations").data)

    def test_bad_events_are_refused(self):
        cases = [
            ("clear of an alarm not raised", event("clear-alarm", id="none"), "data-missing"),
            # The module's types refuse these before the device sees them.
            ("unknown severity", event("raise-alarm", id="x", severity="LOUD"), None),
            ("no id", event("raise-alarm", severity="MINOR"), None),
        ]
        for name, rpc, tag in cases:
            with self.subTest(event=name):
                with self.assertRaises(RPCError) as caught:
                    self.nc.dispatch(rpc)
                if tag:
                    self.assertEqual(caught.exception.tag, tag)
        self.assertIsNone(self.get("<alarms/>").find("oc:alarms/oc:alarm", NS))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
