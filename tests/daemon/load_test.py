"""ocsysmapd under load, on 127.0.0.1 only and bounded in time: several sessions
editing at once lose no edit, repeated edits leave its memory flat, and bad
requests and a client that drops in the middle of a request leave it serving.

usage: load_test.py OCSYSMAPD MODELS_DIR [SESSIONS] [EDITS_EACH] [REPEATS]
"""
import os
import socket
import sys
import tempfile
import threading
import time
import unittest
import xml.etree.ElementTree as ET

import paramiko
from ncclient.operations.rpc import RPCError

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from device_harness import NC, OC, Device, config, oc_filter  # noqa: E402

DAEMON, MODELS = sys.argv[1], sys.argv[2]
SESSIONS = int(sys.argv[3]) if len(sys.argv) > 3 else 8
EDITS_EACH = int(sys.argv[4]) if len(sys.argv) > 4 else 250
REPEATS = int(sys.argv[5]) if len(sys.argv) > 5 else 600
# Resident memory may grow this much over the repeats after the warm-up: the
# allocator's own slack, far below what a leak of every edit would leave.
RSS_SLACK_KB = 2048
NS = {"oc": OC}


def user_body(name, password):
    return (f"<aaa><authentication><users><user><username>{name}</username><config>"
            f"<username>{name}</username><password>{password}</password>"
            "<role>SYSTEM_ROLE_ADMIN</role></config></user></users></authentication></aaa>")


def rss_kb(pid):
    with open(f"/proc/{pid}/status") as f:
        for line in f:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    raise AssertionError("no VmRSS for the server")


def users_of(nc):
    reply = nc.get_config(source="running",
                          filter=oc_filter("<aaa><authentication><users/></authentication></aaa>"))
    data = ET.fromstring(reply.data_xml)
    return {e.text for e in data.iterfind(".//oc:users/oc:user/oc:username", NS)}


class LoadTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()
        self.device = Device(DAEMON, MODELS, os.path.join(self.dir.name, "store.xml"))
        self.device.start()

    def tearDown(self):
        status = self.device.stop()
        self.dir.cleanup()
        self.assertEqual(status, 0, f"ocsysmapd exited with {status}")

    def test_sessions_at_once_lose_no_edit(self):
        failures = []
        took = []  # seconds per edit of the first session, as the store grows

        def session(s):
            try:
                nc = self.device.connect()
                for i in range(EDITS_EACH):
                    name = f"user-{s}-{i}"
                    t = time.monotonic()
                    if not nc.edit_config(target="running",
                                          config=config(user_body(name, f"pw{i}"))).ok:
                        failures.append(name)
                    if s == 0:
                        took.append(time.monotonic() - t)
                nc.close_session()
            except Exception as e:  # noqa: BLE001 - reported below with its session
                failures.append(f"session {s}: {e!r}")

        started = time.monotonic()
        threads = [threading.Thread(target=session, args=(s,)) for s in range(SESSIONS)]
        for t in threads:
            t.start()
        for t in threads:
            t.join()
        seconds = time.monotonic() - started
        self.assertEqual(failures, [])
        nc = self.device.connect()
        expected = {f"user-{s}-{i}" for s in range(SESSIONS) for i in range(EDITS_EACH)}
        self.assertEqual(users_of(nc) ^ expected, set())
        nc.close_session()
        tenth = max(1, len(took) // 10)
        print(f"{SESSIONS} sessions, {len(expected)} edits in {seconds:.1f}s "
              f"({len(expected) / seconds:.0f}/s); an edit took "
              f"{1000 * sum(took[:tenth]) / tenth:.1f} ms in the first tenth, "
              f"{1000 * sum(took[-tenth:]) / tenth:.1f} ms in the last", file=sys.stderr)

    def test_repeated_edits_leave_memory_flat(self):
        nc = self.device.connect()
        pid = self.device.process.pid
        warm_up = REPEATS // 5
        for i in range(REPEATS):
            if i == warm_up:
                before = rss_kb(pid)
            nc.edit_config(target="running", config=config(user_body("alice", f"pw{i % 7}")))
            nc.get_config(source="running")
        after = rss_kb(pid)
        nc.close_session()
        print(f"VmRSS {before} kB after {warm_up} edits and reads, {after} kB after {REPEATS}",
              file=sys.stderr)
        self.assertLessEqual(after - before, RSS_SLACK_KB)

    def test_bad_requests_and_dropped_clients_leave_it_serving(self):
        nc = self.device.connect()
        bad = [
            "<config><hostname>x</hostname><bogus/></config>",   # the models refuse it
            "<telnet-server><config><enable>true</enable></config></telnet-server>",  # the mapping
            '<ntp><servers><server nc:operation="delete"><address>198.51.100.7</address>'
            "</server></servers></ntp>",                          # the store
        ]
        for body in bad:
            with self.subTest(body=body), self.assertRaises(RPCError):
                nc.edit_config(target="running", config=config(body))

        # Half a request, then gone: at the TCP level, and inside an SSH channel.
        with socket.create_connection(("127.0.0.1", self.device.port), timeout=10) as raw:
            raw.sendall(b"SSH-2.0-load\r\n\x00\x00\x01")
        transport = paramiko.Transport(("127.0.0.1", self.device.port))
        transport.connect(username="admin", password="admin")
        channel = transport.open_session()
        channel.invoke_subsystem("netconf")
        channel.sendall(f'<hello xmlns="{NC}"><capabilities><capability>'
                        "urn:ietf:params:netconf:base:1.0</capability></capabilities></hello>"
                        "]]>]]>"
                        f'<rpc message-id="1" xmlns="{NC}"><edit-config><target><running/>'
                        "</target><config><system")
        transport.close()

        self.assertTrue(nc.edit_config(target="running",
                                       config=config("<config><hostname>still</hostname>"
                                                     "</config>")).ok)
        other = self.device.connect()
        answer = ET.fromstring(other.get_config(source="running").data_xml)
        self.assertEqual(answer.findtext(".//oc:config/oc:hostname", namespaces=NS), "still")
        other.close_session()
        nc.close_session()
        self.assertIsNone(self.device.process.poll())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
