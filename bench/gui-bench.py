#!/usr/bin/env python3
"""gui-bench.py: the main window measured against pairscope-cli on the same trees, side by side.

usage: bench/gui-bench.py [-n ROUNDS] [--build DIR] [--scratch DIR] [--files N] [--keep] [--reuse]
                          [--only compare|listings|stalls|cancel]

  -n ROUNDS   rounds of the compare timings (default 5); figures are medians
  --build     a configured build folder holding gui-bench and pairscope-cli; they are built there
              (default: build/ in the repository, configured as a release build when missing)
  --scratch   folder for the trees, outside the repository (default /tmp/pairscope-gui-bench)
  --files N   files per tree of the compare corpus (default 100000)
  --keep      keep the trees afterwards (deleted by default); --reuse takes kept ones again
  --only      one part: compare, listings, stalls or cancel

Parts:
  compare   make-corpus trees of N files each, about 20 % of the pairs differing in size or
            modified date. Every round runs, in a rotating order and each after a fresh stat of
            both trees: pairscope-cli -c size,modified (with and without --all) and the window
            (gui-bench compare, Show All Files off and on). The window's time runs from the
            click on Compare until the run has ended and the window has painted its lists; the
            CLI's is its whole process. Printed: medians, the medians of same-round ratios, peak
            memory, and how alive the window stayed (largest wait of the event loop, status
            paints).
  listings  gui-bench listings on the compare corpus and on one of twice its size: header
            clicks on Size and Date Modified (both linked lists sort) and Show All Files
            turned off and on again.
  stalls    gui-bench stalls on the compare corpus, Show All Files on, ROUNDS times: the
            longest wait of the event loop during a compare, a second compare, and each View
            toggle that changes the listings (off and on again; Link File Listings goes on
            with rows of the source list selected); printed: the worst of the rounds and the
            median.
  cancel    a tree of 1,000,000 empty files (gui-bench make-tree); a compare of it cancelled
            0.5, 2 and 5 s after the click, by the mouse and by Esc, timed from the moment the
            cancel was posted to the window until the run has stopped.

Not a test: figures depend on the machine and on what else it does; judge by the ratios.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TOOLS = os.environ.get("PAIRSCOPE_BENCH_TOOLS", os.path.join(os.path.dirname(ROOT), "shared", "bench"))


def parse_args():
    p = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    p.add_argument("-n", "--rounds", type=int, default=5)
    p.add_argument("--build", default=os.path.join(ROOT, "build"))
    p.add_argument("--scratch", default="/tmp/pairscope-gui-bench")
    p.add_argument("--files", type=int, default=100000)
    p.add_argument("--keep", action="store_true")
    p.add_argument("--reuse", action="store_true")
    p.add_argument("--only", choices=["compare", "listings", "stalls", "cancel"])
    a = p.parse_args()
    a.scratch = os.path.realpath(a.scratch)
    if (a.scratch + "/").startswith(ROOT + "/"):
        p.error("keep the scratch folder outside the repository")
    if a.reuse:
        a.keep = True
    return a


def build(folder):
    if not os.path.exists(os.path.join(folder, "CMakeCache.txt")):
        subprocess.run(["cmake", "-S", ROOT, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release"],
                       check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", folder, "--target", "gui-bench", "pairscope-cli"], check=True,
                   stdout=subprocess.DEVNULL)
    return os.path.join(folder, "bench", "app", "gui-bench"), os.path.join(folder, "cli", "pairscope-cli")


def corpus(path, files, reuse):
    """make-corpus trees with FILES files per tree: 5 % each of source-only, destination-only,
    size and far modified-date entries make 20 % differing pairs under size,modified."""
    if reuse and os.path.exists(os.path.join(path, "summary.json")):
        return path
    entries = int(files / 0.95 + 0.5)  # source-only and destination-only entries are in one tree
    subprocess.run([os.path.join(TOOLS, "make-corpus"), path, "--files", str(entries), "--fanout", "10",
                    "--depth", "3", "--fill", "sparse", "--seed", "7", "--force"], check=True,
                   stdout=subprocess.DEVNULL)
    return path


def run(cmd, cwd=None):
    """Runs CMD; returns wall seconds, peak RSS in KiB and the key-value lines it printed."""
    t0 = time.perf_counter()
    p = subprocess.Popen(cmd, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL, text=True)
    out = p.stdout.read()
    _, status, usage = os.wait4(p.pid, 0)
    wall = time.perf_counter() - t0
    values = {}
    for line in out.splitlines():
        name, _, value = line.partition(" ")
        values.setdefault(name, []).append(value)
    values["process_cpu_s"] = [str(usage.ru_utime + usage.ru_stime)]
    return wall, usage.ru_maxrss, os.waitstatus_to_exitcode(status), values


def prewarm(path):
    # Every entry stat'ed again: the kernel here evicts what sat idle for about 30 s.
    subprocess.run(["find", "SRC", "DST", "-printf", "%s %T@\n"], cwd=path, stdout=subprocess.DEVNULL)


def first(values, name, cast=float):
    return cast(values[name][0].split()[0]) if name in values else float("nan")


def compare_part(a, gui, cli, path):
    print(f"== compare: {path}, {a.rounds} rounds; load average "
          f"{' '.join(open('/proc/loadavg').read().split()[:3])}", flush=True)
    commands = {
        "cli": ([cli, "--no-progress", "--format", "tsv", "-c", "size,modified", "SRC", "DST"], None),
        "cli-all": ([cli, "--no-progress", "--format", "tsv", "-a", "-c", "size,modified", "SRC", "DST"], None),
        "gui": ([gui, "compare", "SRC", "DST"], "settled_s"),
        "gui-all": ([gui, "compare", "--all-files", "SRC", "DST"], "settled_s"),
    }
    names = list(commands)
    res = {n: [] for n in names}
    for r in range(a.rounds + 1):  # round 0 warms up and is not counted
        for n in names[r % len(names):] + names[:r % len(names)]:
            prewarm(path)
            cmd, own = commands[n]
            wall, rss, rc, values = run(cmd, cwd=path)
            if r:
                res[n].append({"time": first(values, own) if own else wall, "rss": rss, "values": values})
        if r:
            print(f"  round {r}/{a.rounds} done", file=sys.stderr, flush=True)

    def med(n, key="time"):
        return statistics.median(x[key] for x in res[n])

    def ratio(x, y):
        return statistics.median(p["time"] / q["time"] for p, q in zip(res[x], res[y]))

    def peak_mb(n):  # the median over the runs of each run's peak
        return med(n, "rss") / 1024

    print(f"\n{'command':<9} {'median s':>9} {'(min-max)':>15} {'peak RSS MB':>12}   what is timed")
    for n in names:
        t = [x["time"] for x in res[n]]
        what = "click on Compare until run ended and lists painted" if commands[n][1] else "whole process"
        print(f"{n:<9} {statistics.median(t):>9.3f} {'(%.2f-%.2f)' % (min(t), max(t)):>15} "
              f"{peak_mb(n):>12.1f}   {what}")
    print()
    print(f"ratio gui / cli:         {ratio('gui', 'cli'):.2f}   (target <= 1.5)")
    print(f"ratio gui-all / cli:     {ratio('gui-all', 'cli'):.2f}   (target <= 2)")
    print(f"ratio gui-all / cli-all: {ratio('gui-all', 'cli-all'):.2f}")
    # On a machine shared with other work a single busy thread gets a smaller share of the CPUs
    # than a program that spreads its work over several; the processes' CPU time shows that.
    cpu = {n: statistics.median(first(x["values"], "process_cpu_s") for x in res[n]) for n in names}
    print("process CPU s (median): " + ", ".join(f"{n} {cpu[n]:.2f}" for n in names))
    for base in ("cli", "cli-all"):
        print(f"peak memory gui-all {peak_mb('gui-all'):.0f} MB; 2 x {base} + 100 MB = "
              f"{2 * peak_mb(base) + 100:.0f} MB")
    for n in ("gui", "gui-all"):
        v = [x["values"] for x in res[n]]
        rows = v[0].get("rows", ["?"])[0]
        worst = max(v, key=lambda x: first(x, "loop_gap_max_ms"))
        print(f"{n}: rows {rows}; status '{v[0].get('status', ['?'])[0]}'; GUI-thread CPU "
              f"{statistics.median(first(x, 'cpu_gui_thread_s') for x in v):.2f} s; event loop waited at most "
              f"{first(worst, 'loop_gap_max_ms'):.0f} ms (during '{worst.get('loop_gap_max_during', ['?'])[0]}'; 99 % within "
              f"{statistics.median(first(x, 'loop_gap_p99_ms') for x in v):.0f} ms); status text painted "
              f"{statistics.median(first(x, 'status_paints') for x in v):.0f} times, median "
              f"{statistics.median(first(x, 'status_paint_interval_median_ms') for x in v):.0f} ms apart; "
              f"list paints {statistics.median(first(x, 'list_paints') for x in v):.0f}")
    print(f"load average at end: {' '.join(open('/proc/loadavg').read().split()[:3])}")


def listings_part(a, gui, path):
    prewarm(path)
    wall, rss, rc, v = run([gui, "listings", "-r", str(a.rounds), "SRC", "DST"], cwd=path)
    rows = v.get("rows", ["?"])[0]
    print(f"\n== listings: {path}, rows per list {rows}, Show All Files on, linked (median of {a.rounds}, "
          "ms: median min max)")
    for name in ("sort_size_ms", "sort_modified_ms", "all_files_off_ms", "all_files_on_ms"):
        print(f"  {name:<18} {v.get(name, ['?'])[0]}")
    print(f"  both lists sorted by the click: {v.get('sorted_both', ['?'])}; rows off/on "
          f"{v.get('rows_off_on', ['?'])[0]}; status '{v.get('status', ['?'])[0]}'; rc {rc}")


def stalls_part(a, gui, path):
    waits = {}
    rows = "?"
    for _ in range(a.rounds):
        prewarm(path)
        wall, rss, rc, v = run([gui, "stalls", "SRC", "DST"], cwd=path)
        for line in v.get("stall", []):
            name, ms = line.split()[:2]
            waits.setdefault(name, []).append(float(ms))
        rows = [r.strip(",") for r in v.get("stall", ["? " * 10])[0].split()[8:10]]
    print(f"\n== stalls: {path}, rows per list {' '.join(rows)}, Show All Files on; longest wait of "
          f"the event loop, ms, over {a.rounds} runs (worst, median); load average "
          f"{' '.join(open('/proc/loadavg').read().split()[:3])}")
    for name, ms in waits.items():
        print(f"  {name:<12} {max(ms):>7.1f} {statistics.median(ms):>7.1f}")


def cancel_part(a, gui, scratch):
    tree = os.path.join(scratch, "million")
    if not (a.reuse and os.path.exists(os.path.join(tree, "d999"))):
        shutil.rmtree(tree, ignore_errors=True)
        subprocess.run([gui, "make-tree", tree, "1000000"], check=True)
    print(f"\n== cancel: {tree}, 1,000,000 files per side (the same tree on both sides)")
    for key in (False, True):
        subprocess.run(["find", tree, "-printf", ""], stdout=subprocess.DEVNULL)
        cmd = [gui, "cancel"] + (["--key"] if key else []) + \
              ["--after", "500", "--after", "2000", "--after", "5000", tree, tree]
        wall, rss, rc, v = run(cmd)
        for i, after in enumerate(v.get("cancel_after_ms", [])):
            print(f"  {'Esc' if key else 'click'} after {after} ms, during '{v['phase'][i]}': taken by the "
                  f"window after {v['taken_ms'][i]} ms, run stopped {v['stopped_ms'][i]} ms after the cancel; "
                  f"'{v['status'][i]}'; event loop waited at most {v['loop_gap_max_ms'][i]} ms, the "
                  f"wait ending while the status read '{v['loop_gap_max_during'][i]}'")


def main():
    a = parse_args()
    if not os.access(os.path.join(TOOLS, "make-corpus"), os.X_OK):
        sys.exit(f"gui-bench.py: no make-corpus in {TOOLS} (set PAIRSCOPE_BENCH_TOOLS)")
    gui, cli = build(a.build)
    os.makedirs(a.scratch, exist_ok=True)
    made = []
    try:
        if a.only in (None, "compare", "listings", "stalls"):
            made.append(corpus(os.path.join(a.scratch, "compare"), a.files, a.reuse))
            os.sync()
        if a.only in (None, "compare"):
            compare_part(a, gui, cli, made[0])
        if a.only in (None, "listings"):
            listings_part(a, gui, made[0])
            made.append(corpus(os.path.join(a.scratch, "double"), 2 * a.files, a.reuse))
            listings_part(a, gui, made[1])
        if a.only in (None, "stalls"):
            stalls_part(a, gui, made[0])
        if a.only in (None, "cancel"):
            made.append(os.path.join(a.scratch, "million"))
            cancel_part(a, gui, a.scratch)
    finally:
        if not a.keep:
            for path in made:
                shutil.rmtree(path, ignore_errors=True)


if __name__ == "__main__":
    main()
