#!/usr/bin/env python3
"""Small mutation check: does some test fail when the code is wrong?

    tests/mutate.py [--scratch DIR] [--rev REV] [--exclude REGEX] [--only N[,N...]] [--list]

Each row below is one fault put into the library, a companion or the
stand-in framework: `file | old text | new text`. The old text must occur
exactly once in the file, so a row whose text has moved fails loudly instead
of testing nothing. The checkout is never touched: REV (default HEAD) is
checked out into a scratch worktree (default /tmp/ocsysmap-mutate, with its build in a folder
`build` inside it), built once, then for each row the file is changed, the
build is brought up to date, ctest runs, and the file is put back.

A mutation is "caught" when the build or some test fails, "escaped" when all
tests pass. The device's tests over SSH are left out by default (--exclude):
they are slow and reach the library only through the stand-in. Run by hand (each row costs an incremental build and a ctest run:
count on a minute or two a row on two cores); it is not part of CI. Set JOBS
to change the parallelism (default 2).
"""
import argparse
import os
import subprocess
import sys
import time

# (file, old text, new text, what the fault is)
MUTATIONS = [
    # The walkers of both families.
    ("src/ymap_walkers.cpp",
     "return node->present_operation != 0 && node->operation == op;",
     "return node->operation == op;",
     "an absent operation read as present"),
    ("src/ymap_walkers.cpp",
     "malformed = items == nullptr && count != 0;",
     "malformed = false;",
     "a missing child array with a count accepted"),
    ("src/ymap_walkers.cpp",
     "return (row.keys[0] != nullptr ? 1 : 0) + (row.keys[1] != nullptr ? 1 : 0);",
     "return (row.keys[0] != nullptr ? 1 : 0);",
     "the second key of a two-key list skipped"),
    ("src/ymap_walkers.cpp",
     "if ((row.flags & kNoOwnNsTest) == 0 && text_equal(node.namespace_, row.ns))",
     "if (text_equal(node.namespace_, row.ns))",
     "the no-own-namespace-test flag ignored"),
    ("src/ymap_walkers.cpp",
     "    if (read_kind(ctx))\n        return YFW_SUCCESS;\n    return refuse(ctx, child->tag,",
     "    if (true)\n        return YFW_SUCCESS;\n    return refuse(ctx, child->tag,",
     "an unknown own-namespace tag passed in a write"),
    ("src/ymap_walkers.cpp",
     "for (uint32_t i = 0; i < count && status == YFW_SUCCESS; ++i)",
     "for (uint32_t i = 0; i < count; ++i)",
     "children visited on after one failed"),
    ("src/ymap_walkers.cpp",
     "if (subs.items[i].tag != nullptr && is_key_tag(row, subs.items[i].tag))",
     "if (false && subs.items[i].tag != nullptr && is_key_tag(row, subs.items[i].tag))",
     "native list keys not marked as keys"),
    ("src/ymap_walkers.cpp",
     "if (st->walk_all != 1 && st->walk_suppress == YFW_MAP_SUPPRESS_NONE) {",
     "if (st->walk_suppress == YFW_MAP_SUPPRESS_NONE) {",
     "a leaf marks the ancestor in a walk-all pass"),
    ("src/ymap_walkers.cpp",
     "if ((c.flags & kStateOnly) == 0 && c.walk != nullptr)\n                    (void)c.walk(ctx, node, out_tree);\n        }",
     "if (c.walk != nullptr)\n                    (void)c.walk(ctx, node, out_tree);\n        }",
     "state-only children walked outside KIND_GET"),
    ("src/ymap_walkers.cpp",
     "YMAP_MSG_DELETE_WITH_SUBTREE);\n        return end(row, ctx, YFW_ERR_INVALID_ARGS);",
     "YMAP_MSG_DELETE_WITH_SUBTREE);\n        return end(row, ctx, YFW_SUCCESS);",
     "a delete naming a container's children succeeds"),
    ("src/ymap_walkers.cpp",
     "return v == 1 && k < 2;",
     "return v == 1 && k <= 2;",
     "off by one in the key count of an edit"),
    ("src/ymap_walkers.cpp",
     "return k != 0 && v != 0;",
     "return k != 0 || v != 0;",
     "a two-key list accepts keys without values"),
    ("src/ymap_walkers.cpp",
     "if (demanding && child->present_value == 0) {",
     "if (demanding && child->present_value != 0) {",
     "empty-key check inverted"),
    ("src/ymap_walkers.cpp",
     "if (walks_openconfig(row) && yfw_map_is_request_add(ctx, node))",
     "if (false && walks_openconfig(row) && yfw_map_is_request_add(ctx, node))",
     "a foreign node in an edit passes"),
    ("src/ymap_walkers.cpp",
     "        if (checked != YFW_SUCCESS)\n            return end(row, ctx, checked);",
     "        if (false)\n            return end(row, ctx, checked);",
     "a failed leafref check of a key dropped"),
    ("src/ymap_walkers.cpp",
     "if (status == YFW_SUCCESS && read && !walk_all && scan.other_children && scan.keys == 0)",
     "if (status == YFW_SUCCESS && read && !walk_all && scan.other_children && scan.keys == 1)",
     "the missing key of a read not added"),
    # The mapper forms.
    ("src/ymap_mappers.cpp",
     "if (node != nullptr && out_tree != nullptr)",
     "if (node != nullptr || out_tree != nullptr)",
     "a null tree accepted"),
    ("src/ymap_mappers.cpp",
     "        if (count != 0) {\n            YFW_MAP_TRC(ctx, row.name, YMAP_MSG_NOT_MAPPED);",
     "        if (count == 0) {\n            YFW_MAP_TRC(ctx, row.name, YMAP_MSG_NOT_MAPPED);",
     "state pickup inverted"),
    ("src/ymap_mappers.cpp",
     "        if (!read_kind(ctx))\n            return YFW_SUCCESS;\n        return add_from_pieces",
     "        if (read_kind(ctx))\n            return YFW_SUCCESS;\n        return add_from_pieces",
     "private state leaves mapped in writes, not in reads"),
    ("src/ymap_mappers.cpp",
     "const int repeats = (row.flags & kTwice) != 0 ? 2 : 1;",
     "const int repeats = 1;",
     "a leaf added twice on purpose added once"),
    ("src/ymap_xpath.cpp",
     "if (read && has_second(row))",
     "if (has_second(row))",
     "a list table's second path added in writes"),
    ("include/ymap_namespaces.h",
     '"Tarvex-QV-ip-ntp-cfg")',
     '"Tarvex-QV-ip-ntp-cf")',
     "a wrong native namespace"),
    ("include/ymap_namespaces.h",
     '"http://openconfig.net/yang/system-grpc"',
     '"http://openconfig.net/yang/grpc"',
     "a wrong OpenConfig namespace"),
    # Hand mappers and companions.
    ("oc-syslog/src/ymap_syslog_words.cpp",
     "return indicator == 0 && value[length] == '\\0';",
     "return indicator == 0;",
     "a longer word taken for its prefix"),
    ("src/ymap_ocsystem_openconfig_system_dns_man.cpp",
     'if (child_count == 0 && ymap::text_equal(node->tag, "config"))',
     'if (child_count != 0 && ymap::text_equal(node->tag, "config"))',
     "a bare search config not mapped whole"),
    ("companions/ntp_companion.cpp",
     "if (qv_inet_pton(AF_INET, address, buf) == 1)",
     "if (qv_inet_pton(AF_INET, address, buf) != 1)",
     "address family test inverted"),
    # The stand-in framework.
    ("framework/src/tree_ops.cpp",
     "if (used + length + 1 > text.size())",
     "if (used + length > text.size())",
     "off by one in a path's copy limit"),
    ("framework/src/tree_ops.cpp",
     "    if (!own.any())\n        return YFW_MAP_SKIP_NODE;",
     "    if (false)\n        return YFW_MAP_SKIP_NODE;",
     "an entry with no own keys not skipped"),
    ("framework/src/editor.cpp",
     "if (leaf == nullptr || !same_text(leaf->value, values.values()[k]))",
     "if (leaf == nullptr)",
     "list entries told apart without their key values"),
    ("framework/src/editor.cpp",
     "if (chunks_.empty() || kChunk - used_ < text.size() + 1) {",
     "if (chunks_.empty() || kChunk - used_ < text.size()) {",
     "off by one in the text store's room check"),
    ("framework/src/editor.cpp",
     "if (node->value != nullptr && std::strcmp(node->value, value) == 0) {",
     "if (node->value != nullptr && std::strcmp(node->value, value) != 0) {",
     "an unchanged value taken for a change"),
]


def run(cmd, cwd, log):
    with open(log, "a") as out:
        out.write(f"\n$ {' '.join(cmd)}\n")
        out.flush()
        return subprocess.run(cmd, cwd=cwd, stdout=out, stderr=subprocess.STDOUT).returncode


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--scratch", default="/tmp/ocsysmap-mutate")
    ap.add_argument("--rev", default="HEAD", help="the commit to mutate")
    ap.add_argument("--exclude", default="^ocsysmapd_", help="ctest -E: tests not run")
    ap.add_argument("--only", help="comma-separated row numbers (1-based)")
    ap.add_argument("--list", action="store_true", help="print the rows and stop")
    args = ap.parse_args()
    jobs = os.environ.get("JOBS", "2")
    rows = list(enumerate(MUTATIONS, 1))
    if args.only:
        wanted = {int(n) for n in args.only.split(",")}
        rows = [r for r in rows if r[0] in wanted]
    if args.list:
        for n, (path, _, _, what) in rows:
            print(f"{n:3} {path}: {what}")
        return 0

    repo = subprocess.check_output(["git", "rev-parse", "--show-toplevel"],
                                   cwd=os.path.dirname(os.path.abspath(__file__)), text=True).strip()
    scratch = args.scratch
    head = subprocess.check_output(["git", "rev-parse", args.rev], cwd=repo, text=True).strip()
    if os.path.isdir(scratch):
        subprocess.check_call(["git", "checkout", "-q", "--detach", "--force", head], cwd=scratch)
    else:
        subprocess.check_call(["git", "worktree", "add", "-q", "--detach", scratch, head], cwd=repo)
    # The scratch tree must find the OpenConfig models beside the checkout, as the real one does.
    models = os.path.join(os.path.dirname(repo), "shared")
    link = os.path.join(os.path.dirname(scratch), "shared")
    if not os.path.exists(link) and os.path.isdir(models):
        os.symlink(models, link)

    log = os.path.join(scratch, "mutate.log")
    build = os.path.join(scratch, "build")
    missing = []
    for n, (path, old, _, _) in rows:
        with open(os.path.join(scratch, path)) as f:
            found = f.read().count(old)
        if found != 1:
            missing.append(f"row {n}: {path}: old text found {found} times")
    if missing:
        print("\n".join(missing), file=sys.stderr)
        return 2

    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache", "-DCMAKE_C_COMPILER_LAUNCHER=ccache"]
    if run(["cmake", "-S", ".", "-B", build, "-G", "Ninja", "-DOCSYSMAP_BENCH=OFF"] + launcher,
           scratch, log) or run(["cmake", "--build", build, f"-j{jobs}"], scratch, log):
        print(f"the unmutated tree does not build: see {log}", file=sys.stderr)
        return 2
    ctest = ["ctest", "--test-dir", build, f"-j{jobs}", "--stop-on-failure"]
    if args.exclude:
        ctest += ["-E", args.exclude]
    if run(ctest, scratch, log):
        print(f"the unmutated tree fails its tests: see {log}", file=sys.stderr)
        return 2

    escaped = []
    for n, (path, old, new, what) in rows:
        file = os.path.join(scratch, path)
        with open(file) as f:
            original = f.read()
        start = time.time()
        try:
            with open(file, "w") as f:
                f.write(original.replace(old, new))
            if run(["cmake", "--build", build, f"-j{jobs}"], scratch, log):
                verdict = "caught (build)"
            elif run(ctest, scratch, log):
                verdict = "caught"
            else:
                verdict = "ESCAPED"
                escaped.append(n)
        finally:
            with open(file, "w") as f:
                f.write(original)
        print(f"{n:3} {verdict:<15} {time.time() - start:5.0f}s  {path}: {what}", flush=True)
    # Leave the build matching the clean sources for the next run.
    run(["cmake", "--build", build, f"-j{jobs}"], scratch, log)
    print(f"{len(rows) - len(escaped)} of {len(rows)} caught; escaped: {escaped or 'none'}")
    return 1 if escaped else 0


if __name__ == "__main__":
    sys.exit(main())
