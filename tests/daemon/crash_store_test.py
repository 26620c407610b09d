"""ocsysmapd killed with SIGKILL at random moments of 1,000 edits: after every
restart the store parses, holds every edit answered ok, and at most the one
edit that was in flight besides.

usage: crash_store_test.py OCSYSMAPD MODELS_DIR [EDITS]
"""
import os
import random
import sys
import tempfile
import threading
import xml.etree.ElementTree as ET

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from device_harness import Device, config  # noqa: E402

DAEMON, MODELS = sys.argv[1], sys.argv[2]
EDITS = int(sys.argv[3]) if len(sys.argv) > 3 else 1000
NTP_NS = "http://tarvex.local/ns/yang/Tarvex-QV-ip-ntp-cfg"


def address(i):
    return f"10.{i // 250}.{i % 250}.1"


def edit_body(i):
    a = address(i)
    return (f"<ntp><servers><server><address>{a}</address><config><address>{a}</address>"
            f"</config></server></servers></ntp>")


def stored_addresses(store):
    """The NTP peers of the store file; a torn file fails to parse here."""
    with open(store, "rb") as f:
        root = ET.fromstring(f.read())
    return {e.text for e in root.iter(f"{{{NTP_NS}}}address-ipv4")}


def main():
    seed = int(os.environ.get("CRASH_SEED", random.randrange(1 << 30)))
    rng = random.Random(seed)
    print(f"seed {seed}", flush=True)
    with tempfile.TemporaryDirectory() as tmp:
        store = os.path.join(tmp, "store.xml")
        device = Device(DAEMON, MODELS, store)
        acked, restarts, i = set(), 0, 0
        while i < EDITS:
            device.start()
            # A killer that strikes after a random time, in whatever the
            # server is doing then: parsing, mapping, writing or renaming.
            killer = threading.Timer(rng.uniform(0.02, 0.6), device.kill)
            killer.start()
            in_flight = None
            try:
                nc = device.connect()
                while i < EDITS:
                    in_flight = address(i)
                    if not nc.edit_config(target="running", config=config(edit_body(i))).ok:
                        raise AssertionError(f"edit {i} was not answered ok")
                    acked.add(in_flight)
                    in_flight = None
                    i += 1
                nc.close_session()
            except AssertionError:
                raise
            except Exception:
                pass  # the connection died with the server
            killer.cancel()
            device.kill()
            restarts += 1
            try:
                stored = stored_addresses(store)
            except ET.ParseError as e:
                raise AssertionError(f"restart {restarts}: the store does not parse: {e}")
            missing = acked - stored
            extra = stored - acked - {in_flight}
            assert not missing, f"restart {restarts}: acknowledged edits lost: {sorted(missing)}"
            assert not extra, f"restart {restarts}: edits nobody sent: {sorted(extra)}"
            # An edit that reached the store must stay; the next round sends it
            # again all the same, as a client that saw no answer would.
            if in_flight in stored:
                acked.add(in_flight)
        print(f"{EDITS} edits, {restarts} restarts, {len(acked)} in the store", flush=True)


if __name__ == "__main__":
    main()
