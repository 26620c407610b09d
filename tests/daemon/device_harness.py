"""Starts ocsysmapd on a free port of 127.0.0.1 and connects ncclient to it.

Every wait has a deadline, so a test stops by itself even when the server hangs.
"""
import os
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ET

import ncclient.transport.ssh
from ncclient import manager

# The client's transport thread looks for requests to send once per tick; its
# tenth of a second would be most of each exchange with a local server.
ncclient.transport.ssh.TICK = 0.002

NC = "urn:ietf:params:xml:ns:netconf:base:1.0"
OC = "http://openconfig.net/yang/system"
START_SECONDS = 60
RPC_SECONDS = 30


def free_port():
    with socket.socket(socket.AF_INET, socket.SOCK_STREAM) as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


class Device:
    """One ocsysmapd process over a store file; start() again after kill()."""

    def __init__(self, daemon, models, store):
        self.daemon, self.models, self.store = daemon, models, store
        self.port = free_port()
        self.process = None
        # Standard error goes to a file: a pipe nobody reads could stall the server.
        self.log = tempfile.TemporaryFile()

    def start(self):
        self.process = subprocess.Popen(
            [self.daemon, "--port", str(self.port), "--store", self.store,
             "--models", self.models],
            stdout=subprocess.PIPE, stderr=self.log)
        # The server says when it listens; a dead one says nothing more.
        deadline = time.monotonic() + START_SECONDS
        seen = b""
        while b"listening" not in seen:
            if self.process.poll() is not None or time.monotonic() > deadline:
                self.kill()
                self.log.seek(0)
                raise RuntimeError("ocsysmapd did not start: " + (seen + self.log.read()).decode())
            if select.select([self.process.stdout], [], [], 0.1)[0]:
                seen += os.read(self.process.stdout.fileno(), 4096)

    def connect(self):
        return manager.connect(host="127.0.0.1", port=self.port, username="admin",
                               password="admin", hostkey_verify=False, look_for_keys=False,
                               allow_agent=False, timeout=RPC_SECONDS)

    def kill(self):
        if self.process is not None and self.process.poll() is None:
            self.process.kill()
            self.process.wait(timeout=RPC_SECONDS)

    def stop(self):
        """SIGTERM and the exit status (ASan reports make it non-zero)."""
        self.process.send_signal(signal.SIGTERM)
        try:
            return self.process.wait(timeout=RPC_SECONDS)
        finally:
            self.kill()


def config(body):
    return (f'<config xmlns="{NC}" xmlns:nc="{NC}">'
            f'<system xmlns="{OC}">{body}</system></config>')


def oc_filter(body):
    return ("subtree", f'<system xmlns="{OC}">{body}</system>')


def serve(owner, daemon, models):
    """A device over a new store for `owner`, a test or its class: sets its
    dir, store, device and nc (a connected session)."""
    owner.dir = tempfile.TemporaryDirectory()
    owner.store = os.path.join(owner.dir.name, "store.xml")
    owner.device = Device(daemon, models, owner.store)
    owner.device.start()
    owner.nc = owner.device.connect()


def unserve(owner):
    """Ends what serve() started; the device's exit status (sanitizer reports
    make it non-zero)."""
    owner.nc.close_session()
    status = owner.device.stop()
    owner.dir.cleanup()
    return status


class ServedTestCase(unittest.TestCase):
    """One device for the whole class; the program and the models come first
    on the command line."""

    @classmethod
    def setUpClass(cls):
        serve(cls, sys.argv[1], sys.argv[2])

    @classmethod
    def tearDownClass(cls):
        status = unserve(cls)
        assert status == 0, f"ocsysmapd exited with {status}"


def system_of(reply):
    """The /system node of a reply's data, or an empty stand-in."""
    found = ET.fromstring(reply.data_xml).find(f"{{{OC}}}system")
    return found if found is not None else ET.Element("none")
