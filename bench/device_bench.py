#!/usr/bin/python3
"""What one request costs the device, measured with a plain NETCONF client:
one SSH session (paramiko, which python3-ncclient brings), end-of-message
framing, each request sent and its reply read at once, no polling loop.

usage: device_bench.py OCSYSMAPD MODELS_DIR [SIZES] [REPEATS] [EDITS]
       [--tool OCSYSMAP]

For each store size (NTP servers; SIZES comma separated, default
10,1000,10000) a fresh device is filled with that many servers, then timed:
an edit of one leaf of one server, a get-config and a get of the NTP
servers, REPEATS times each (default 20; medians and minima in ms). Then
EDITS edits (default 10000) on the smallest store, with the device's
resident memory before and after. With --tool, ocsysmap maps the device's
store file to OpenConfig with the models, as a whole process, for the cost
of the mapping alone next to the device's get-config.
"""
import os
import select
import socket
import statistics
import subprocess
import sys
import tempfile
import time

import paramiko

NC = "urn:ietf:params:xml:ns:netconf:base:1.0"
OC = "http://openconfig.net/yang/system"
EOM = b"]]>]]>"
HELLO = (f'<hello xmlns="{NC}"><capabilities>'
         "<capability>urn:ietf:params:netconf:base:1.0</capability>"
         "</capabilities></hello>")
FILTER = f'<filter type="subtree"><system xmlns="{OC}"><ntp><servers/></ntp></system></filter>'


class Netconf:
    """One NETCONF session over SSH; only base:1.0 is offered, so that every
    message ends with the end-of-message mark."""

    def __init__(self, port):
        self.transport = paramiko.Transport(("127.0.0.1", port))
        self.transport.connect(username="admin", password="admin")
        self.channel = self.transport.open_session()
        self.channel.invoke_subsystem("netconf")
        self.pending = bytearray()
        self.next_id = 0
        self.channel.sendall(HELLO.encode() + EOM)
        self.read()

    def read(self):
        start = 0
        while True:
            at = self.pending.find(EOM, start)
            if at >= 0:
                message = bytes(self.pending[:at])
                del self.pending[:at + len(EOM)]
                return message
            # The mark may straddle two reads.
            start = max(0, len(self.pending) - len(EOM) + 1)
            data = self.channel.recv(1 << 20)
            if not data:
                raise EOFError("the device closed the session")
            self.pending += data

    def rpc(self, body):
        self.next_id += 1
        self.channel.sendall(
            f'<rpc message-id="{self.next_id}" xmlns="{NC}">{body}</rpc>'.encode() + EOM)
        reply = self.read()
        if b"rpc-error>" in reply:
            raise RuntimeError("the device refused a request: " + reply.decode()[:2000])
        return reply

    def edit(self, system_body):
        return self.rpc(f"<edit-config><target><running/></target><config>"
                        f'<system xmlns="{OC}">{system_body}</system></config></edit-config>')

    def close(self):
        self.transport.close()


def address(i):
    return f"10.{i >> 16 & 255}.{i >> 8 & 255}.{i & 255}"


def servers(count, version=4):
    return "<ntp><servers>" + "".join(
        f"<server><address>{address(i)}</address><config><address>{address(i)}</address>"
        f"<version>{version}</version><association-type>SERVER</association-type>"
        "</config></server>" for i in range(count)) + "</servers></ntp>"


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def rss_kb(pid):
    with open(f"/proc/{pid}/status") as f:
        for line in f:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    raise RuntimeError("no VmRSS for the device")


class Device:
    def __init__(self, daemon, models, folder):
        self.port = free_port()
        self.store = os.path.join(folder, "store.xml")
        self.log = open(os.path.join(folder, "device.log"), "wb")
        self.process = subprocess.Popen(
            [daemon, "--port", str(self.port), "--store", self.store, "--models", models],
            stdout=subprocess.PIPE, stderr=self.log)
        seen, deadline = b"", time.monotonic() + 120
        while b"listening" not in seen:
            if self.process.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError("ocsysmapd did not start; see " + self.log.name)
            if select.select([self.process.stdout], [], [], 0.1)[0]:
                seen += os.read(self.process.stdout.fileno(), 4096)

    def stop(self):
        self.process.terminate()
        self.process.wait(timeout=60)
        self.log.close()


def timed_ms(action, repeats):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        action()
        times.append((time.perf_counter() - start) * 1000)
    return statistics.median(times), min(times)


def one_leaf(nc, count):
    # Each edit changes the value, so that the store is written every time.
    state = {"version": 4}

    def edit():
        state["version"] = 7 - state["version"]
        a = address(count // 2)
        nc.edit(f"<ntp><servers><server><address>{a}</address><config><address>{a}</address>"
                f"<version>{state['version']}</version></config></server></servers></ntp>")
    return edit


def tool_ms(tool, models, store, repeats):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        subprocess.run([tool, "map", "--kind", "get-config", "--models", models, "--format", "xml",
                        store], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        times.append((time.perf_counter() - start) * 1000)
    return statistics.median(times), min(times)


def main():
    args = sys.argv[1:]
    tool = None
    if "--tool" in args:
        at = args.index("--tool")
        tool = args[at + 1]
        del args[at:at + 2]
    if len(args) < 2:
        sys.exit(__doc__)
    daemon, models = args[0], args[1]
    sizes = [int(s) for s in (args[2] if len(args) > 2 else "10,1000,10000").split(",")]
    repeats = int(args[3]) if len(args) > 3 else 20
    edits = int(args[4]) if len(args) > 4 else 10000

    print(f"{'servers':>8} {'store B':>9} {'edit ms':>15} {'get-config ms':>15} {'get ms':>15}"
          f" {'answer B':>9}" + (f" {'ocsysmap ms':>15}" if tool else ""))
    print(f"{'':>8} {'':>9}" + f" {'median / min':>15}" * (3 if not tool else 3) + f" {'':>9}"
          + (f" {'median / min':>15}" if tool else ""))
    for count in sizes:
        with tempfile.TemporaryDirectory() as folder:
            device = Device(daemon, models, folder)
            try:
                nc = Netconf(device.port)
                nc.edit(servers(count))
                edit = timed_ms(one_leaf(nc, count), repeats)
                get_config = timed_ms(lambda: nc.rpc(
                    f"<get-config><source><running/></source>{FILTER}</get-config>"), repeats)
                get = timed_ms(lambda: nc.rpc(f"<get>{FILTER}</get>"), repeats)
                answer = len(nc.rpc(f"<get-config><source><running/></source>{FILTER}</get-config>"))
                row = (f"{count:>8} {os.path.getsize(device.store):>9}"
                       + "".join(f" {m:>7.2f} / {n:>5.2f}" for m, n in (edit, get_config, get))
                       + f" {answer:>9}")
                if tool:
                    m, n = tool_ms(tool, models, device.store, max(3, repeats // 4))
                    row += f" {m:>7.1f} / {n:>5.1f}"
                print(row, flush=True)
                nc.close()
            finally:
                device.stop()

    if edits > 0:
        with tempfile.TemporaryDirectory() as folder:
            device = Device(daemon, models, folder)
            try:
                nc = Netconf(device.port)
                nc.edit(servers(sizes[0]))
                edit = one_leaf(nc, sizes[0])
                for _ in range(100):
                    edit()
                before = rss_kb(device.process.pid)
                start = time.perf_counter()
                for _ in range(edits):
                    edit()
                spent = time.perf_counter() - start
                after = rss_kb(device.process.pid)
                print(f"{edits} edits on {sizes[0]} servers: {spent / edits * 1000:.2f} ms each, "
                      f"resident {before} kB before, {after} kB after ({after - before:+d} kB)")
                nc.close()
            finally:
                device.stop()


if __name__ == "__main__":
    main()
