#!/usr/bin/env python3
"""check-corpus.py: does pairscope-cli report exactly what make-corpus planted?

usage: check-corpus.py CLI CORPUS

Runs CLI (pairscope-cli) on CORPUS/SRC and CORPUS/DST with several comparison sets in tsv form and
compares every reported (code, path) with what CORPUS/planted.tsv says each planted entry must
give. Prints one line per kind and comparison set with the counts reported and expected, lists
the first mismatches, and exits 1 on any mismatch. One json run is checked to hold the same pairs.
"""
import collections
import json
import os
import subprocess
import sys

# What each planted kind must give, per comparison set (slack on, checksums last). A kind left
# out must not be listed at all. mtime deltas are DST minus SRC: a positive one makes DST newer.
def expected_code(kind, delta, compare, slack, ignore_case):
    bits = set(compare.split(","))
    # The corpus lies on a file system that tells letter case apart: a name that differs only
    # in case is a file of its own on each side, unless the run ignores case.
    if kind == "only_src" or (kind == "case_src" and not ignore_case):
        return 3
    if kind == "only_dst" or (kind == "case_dst" and not ignore_case):
        return 2
    if kind == "size" and "size" in bits:
        return 4
    if kind in ("size", "content") and "crc" in bits and not ("size" in bits and kind == "size"):
        return 5
    if kind == "mtime_far" or (kind == "mtime_near" and not slack):
        if "modified" in bits:
            return 8 if delta > 0 else 7
    if kind == "attr" and "attributes" in bits:
        return 6
    return None  # same, case paired with case ignored, or not compared


RUNS = [  # (--compare list, slack, letter case ignored)
    ("size,modified,attributes,crc", True, False),
    ("modified", False, False),
    ("crc", True, False),
    ("existence", True, False),
    ("size,modified,attributes,crc", True, True),
]


def unescape(path):
    out, i = bytearray(), 0
    while i < len(path):
        if path[i] == 0x5C and i + 1 < len(path):  # backslash
            out += {ord("t"): b"\t", ord("n"): b"\n", 0x5C: b"\\"}[path[i + 1]]
            i += 2
        else:
            out.append(path[i])
            i += 1
    return bytes(out)


def run_cli(cli, corpus, args):
    p = subprocess.run([cli, "--no-progress", *args, os.path.join(corpus, "SRC"),
                        os.path.join(corpus, "DST")], capture_output=True)
    if p.returncode not in (0, 1):
        sys.exit(f"{' '.join(args)}: exit status {p.returncode}\n{p.stderr.decode(errors='replace')}")
    return p.stdout


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    cli, corpus = sys.argv[1], sys.argv[2]
    planted = []
    with open(os.path.join(corpus, "planted.tsv"), "rb") as f:
        for line in f:
            if line.startswith(b"#"):
                continue
            kind, src, dst, detail = line.rstrip(b"\n").split(b"\t")
            delta = 0
            if detail.startswith(b"mtime delta "):
                delta = int(detail.split()[2])
            if kind == b"case":
                planted.append(("case_src", src, 0))
                planted.append(("case_dst", dst, 0))
            else:
                planted.append((kind.decode(), src if src != b"-" else dst, delta))

    bad = 0
    for compare, slack, ignore_case in RUNS:
        args = ["--format", "tsv", "--compare", compare] + ([] if slack else ["--no-slack"])
        args += ["--case", "insensitive"] if ignore_case else []
        got = {}
        for line in run_cli(cli, corpus, args).splitlines():
            code, _, path = line.split(b"\t", 2)
            got[unescape(path)] = int(code)
        expected = {}
        kind_of = {}
        for kind, path, delta in planted:
            code = expected_code(kind, delta, compare, slack, ignore_case)
            kind_of[path] = kind
            if code is not None:
                expected[path] = code
        counts = collections.Counter()
        for path, code in expected.items():
            counts[kind_of[path], "expected"] += 1
            counts[kind_of[path], "got"] += got.get(path) == code
        wrong = sorted(p for p in set(got) | set(expected) if got.get(p) != expected.get(p))
        label = compare + ("" if slack else " --no-slack") + (" --case insensitive" if ignore_case else "")
        for kind in sorted({k for k, _ in counts}):
            e, g = counts[kind, "expected"], counts[kind, "got"]
            print(f"{label:<32} {kind:<11} got {g:>7} expected {e:>7}  {'ok' if g == e else 'MISMATCH'}")
        print(f"{label:<32} {'(all)':<11} listed {len(got):>4} expected {len(expected):>7}  "
              f"{'ok' if not wrong else f'{len(wrong)} WRONG'}")
        for p in wrong[:10]:
            print(f"    {p!r}: got {got.get(p)} expected {expected.get(p)} ({kind_of.get(p, 'same')})")
        bad += bool(wrong)

    doc = json.loads(run_cli(cli, corpus, ["--format", "json", "--compare", RUNS[0][0]]))
    tsv_rows = run_cli(cli, corpus, ["--format", "tsv", "--compare", RUNS[0][0]]).count(b"\n")
    ok = len(doc["pairs"]) == tsv_rows
    print(f"json pairs {len(doc['pairs'])} = tsv lines {tsv_rows}  {'ok' if ok else 'MISMATCH'}")
    bad += not ok
    sys.exit(1 if bad else 0)


if __name__ == "__main__":
    main()
