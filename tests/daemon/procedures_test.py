"""The everyday OpenConfig `system` procedures against ocsysmapd, through two
independent clients: each value set with ncclient comes back as configuration
and as state and goes with its delete; the same edits sent by yangcli read
back the same.

usage: procedures_test.py OCSYSMAPD MODELS_DIR
"""
import os
import re
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from device_harness import NC, OC, RPC_SECONDS, ServedTestCase, config, oc_filter, system_of  # noqa: E402

NS = {"oc": OC}
TYPES = 'xmlns:t="http://openconfig.net/yang/aaa/types"'
LONG_BANNER = "Authorised access only; all activity is logged. " * 20


def leaf(container, name, value):
    return f"<{container}><{name}>{value}</{name}></{container}>"


def system_leaf(name, value):
    """A leaf of /system/config, its delete and where config and state show it."""
    return (leaf("config", name, value), f'<config><{name} nc:operation="delete"/></config>',
            [(f"oc:config/oc:{name}", [value]), (f"oc:state/oc:{name}", [value])])


def timezone(zone):
    return (f"<clock>{leaf('config', 'timezone-name', zone)}</clock>",
            '<clock><config><timezone-name nc:operation="delete"/></config></clock>',
            [("oc:clock/oc:config/oc:timezone-name", [zone]),
             ("oc:clock/oc:state/oc:timezone-name", [zone])])


def servers(addresses, inner):
    return "".join(f"<server><address>{a}</address><config><address>{a}</address>{inner}"
                   "</config></server>" for a in addresses)


NTP = [f"192.0.2.{i}" for i in range(1, 5)] + [f"2001:db8::{i}" for i in range(1, 5)]
DNS = ["192.0.2.53", "2001:db8::53"]
METHODS = ["TACACS_ALL", "LOCAL"]
# The facility a selector takes, from the device's own deviation module.
NONE = ('<facility xmlns:d="http://tarvex.local/ns/yang/Tarvex-QV-openconfig-system-deviations">'
        "d:NONE</facility>")
GROUP = "oc:aaa/oc:server-groups/oc:server-group/oc:servers/oc:server"
SYSLOG = "oc:logging/oc:remote-servers/oc:remote-server"

# name, edit, delete, then (path under /system, texts in order) of the get-config
# and get answers, and the reads' filter where a whole read is not enough; an
# identity is compared by its name, whatever the prefix.
PROCEDURES = [
    *[(f"host name {v[:12]}", *system_leaf("hostname", v))
      for v in ("r", "1234567", "core1.lab.example", "h" * 63)],
    ("domain name", *system_leaf("domain-name", "example.net")),
    ("login banner, one character", *system_leaf("login-banner", "!")),
    ("motd banner, long", *system_leaf("motd-banner", LONG_BANNER)),
    *[(f"time zone {z}", *timezone(z))
      for z in ("Etc/UTC", "GMT", "America/Chicago", "PST8PDT", "Europe/London")],
    ("four IPv4 and four IPv6 NTP servers",
     "<ntp><servers>" + servers(NTP, "<association-type>SERVER</association-type>")
     + "</servers></ntp>", '<ntp><servers nc:operation="delete"/></ntp>',
     [("oc:ntp/oc:servers/oc:server/oc:address", NTP),
      ("oc:ntp/oc:servers/oc:server/oc:state/oc:address", NTP)]),
    ("DNS servers and search domains",
     "<dns><config><search>a.example</search><search>b.example</search></config><servers>"
     + servers(DNS, "") + "</servers></dns>", '<dns nc:operation="delete"/>',
     [("oc:dns/oc:state/oc:search", ["a.example", "b.example"]),
      ("oc:dns/oc:servers/oc:server/oc:state/oc:address", DNS)]),
    ("authentication methods in their order",
     "<aaa><authentication><config>" + "".join(
         f"<authentication-method {TYPES}>t:{m}</authentication-method>" for m in METHODS)
     + "</config></authentication></aaa>",
     '<aaa><authentication><config nc:operation="delete"/></authentication></aaa>',
     [("oc:aaa/oc:authentication/oc:config/oc:authentication-method", METHODS)]),
    ("a local admin user",
     "<aaa><authentication><users><user><username>ops</username><config><username>ops"
     f"</username><password>pw1</password><role {TYPES}>t:SYSTEM_ROLE_ADMIN</role></config>"
     "</user></users></authentication></aaa>",
     '<aaa><authentication><users><user nc:operation="delete"><username>ops</username>'
     "</user></users></authentication></aaa>",
     [("oc:aaa/oc:authentication/oc:users/oc:user/oc:config/oc:role", ["SYSTEM_ROLE_ADMIN"])]),
    ("a TACACS server group with a server",
     "<aaa><server-groups><server-group><name>tg</name><config><name>tg</name>"
     f"<type {TYPES.replace('/types', '')}>t:TACACS</type></config><servers><server>"
     "<address>192.0.2.10</address><config><address>192.0.2.10</address><timeout>5</timeout>"
     "</config><tacacs><config><port>49</port><secret-key>k9</secret-key></config></tacacs>"
     "</server></servers></server-group></server-groups></aaa>",
     '<aaa><server-groups><server-group nc:operation="delete"><name>tg</name></server-group>'
     "</server-groups></aaa>",
     [(f"{GROUP}/oc:config/oc:timeout", ["5"]), (f"{GROUP}/oc:tacacs/oc:config/oc:port", ["49"])]),
    ("a remote syslog server with a selector",
     "<logging><remote-servers><remote-server><host>192.0.2.9</host><config><host>192.0.2.9"
     f"</host></config><selectors><selector>{NONE}<severity>WARNING</severity><config>{NONE}"
     "<severity>WARNING</severity></config></selector></selectors></remote-server>"
     "</remote-servers></logging>",
     '<logging><remote-servers><remote-server nc:operation="delete"><host>192.0.2.9</host>'
     "</remote-server></remote-servers></logging>",
     [(f"{SYSLOG}/oc:host", ["192.0.2.9"]),
      (f"{SYSLOG}/oc:selectors/oc:selector/oc:config/oc:severity", ["WARNING"])],
     # A whole read of a remote server asks the device for its port alone.
     "<logging><remote-servers><remote-server><host>192.0.2.9</host><selectors/>"
     "</remote-server></remote-servers></logging>"),
]


def texts(system, path):
    return [re.sub(r"^[\w.-]+:(?=[A-Z_]+$)", "", e.text or "")
            for e in system.iterfind(path, NS)]


class ProceduresTest(ServedTestCase):
    def read(self, paths, body=None):
        """Each path's texts, from get-config for config paths and get for state."""
        picked = oc_filter(body) if body else None
        answers = {"config": system_of(self.nc.get_config(source="running", filter=picked)),
                   "state": system_of(self.nc.get(filter=picked))}
        return [texts(answers["state" if "state" in p else "config"], p) for p, _ in paths]

    def edit(self, body):
        self.assertTrue(self.nc.edit_config(target="running", config=config(body)).ok)

    def test_each_procedure_sets_reads_back_and_deletes_through_ncclient(self):
        for name, edit, delete, paths, *body in PROCEDURES:
            with self.subTest(procedure=name):
                self.edit(edit)
                self.assertEqual(self.read(paths, *body), [want for _, want in paths])
                self.edit(delete)
                self.assertEqual(self.read(paths, *body), [[] for _ in paths])

    def yangcli(self, *commands):
        """Runs the commands in one yangcli session; its output, or a failure."""
        script = os.path.join(self.dir.name, "script")
        with open(script, "w") as f:
            f.write("\n".join(commands) + "\n")
        run = subprocess.run(
            ["yangcli", "--server=127.0.0.1", f"--ncport={self.device.port}", "--user=admin",
             "--password=admin", "--autoload=false", "--batch-mode", f"--run-script={script}"],
            capture_output=True, text=True, timeout=RPC_SECONDS)
        self.assertNotIn("RPC Error", run.stdout + run.stderr, commands)
        return run.stdout

    def test_yangcli_edits_read_back_the_same(self):
        for i, (name, edit, delete, paths, *body) in enumerate(PROCEDURES):
            with self.subTest(procedure=name):
                content = os.path.join(self.dir.name, f"edit{i}.xml")
                with open(content, "w") as f:
                    f.write(f'<system xmlns="{OC}" xmlns:nc="{NC}">{edit}</system>')
                shown = self.yangcli(f"edit-config target=running config=@{content}",
                                     "get-config source=running")
                self.assertEqual(self.read(paths, *body), [want for _, want in paths])
                # yangcli prints what its whole read holds in its own notation.
                for _, want in paths if not body else []:
                    for text in want:
                        self.assertIn(text.split()[0], shown)
                self.edit(delete)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
