#!/usr/bin/env python3
"""timeit.py: time named commands side by side on one corpus, round-robin, and print medians.

usage: timeit.py [-n RUNS] [-w WARMUP] [--no-prewarm] [--prewarm CMD] [--ratio A/B ...]
                 [--json FILE] CORPUS NAME=COMMAND...

Every command runs with bash -c inside CORPUS (a folder holding SRC/ and DST/), its output thrown
away. Each timed round runs every command once, the order rotating from round to round, so that
drift on a shared machine touches all commands alike. Before every run the corpus is re-read
(untimed, --prewarm CMD), because this machine's kernel evicts page cache that sat idle for about
30 s and a "warm" run would otherwise read from disk.

Printed per command: wall seconds median (min-max), CPU seconds (user+sys) median, the median over
rounds of its ratio to the first command measured in the same round, and the peak resident set
size of the command (largest over the runs). Each --ratio A/B prints the median over rounds of
wall(A) / wall(B), the figure to judge a target by: absolute times drift, same-round ratios hold.
"""
import argparse
import json
import os
import statistics
import subprocess
import sys
import time


def parse_args():
    p = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    p.add_argument("-n", "--runs", type=int, default=5)
    p.add_argument("-w", "--warmup", type=int, default=1)
    p.add_argument("--prewarm", default="find SRC DST -type f -exec cat {} + >/dev/null")
    p.add_argument("--no-prewarm", action="store_true")
    p.add_argument("--ratio", action="append", default=[], metavar="A/B")
    p.add_argument("--json")
    p.add_argument("corpus")
    p.add_argument("commands", nargs="+", metavar="NAME=COMMAND")
    a = p.parse_args()
    if a.runs < 1:
        p.error("-n must be at least 1")
    a.commands = [tuple(c.split("=", 1)) for c in a.commands]
    if any(len(c) != 2 or not c[0] for c in a.commands):
        p.error("commands are given as NAME=COMMAND")
    names = [n for n, _ in a.commands]
    for r in a.ratio:
        if r.count("/") != 1 or any(x not in names for x in r.split("/")):
            p.error(f"--ratio {r}: both sides must name a command")
    return a


def quiet(cmd):
    subprocess.run(["bash", "-c", cmd], stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def run(cmd, prewarm):
    if prewarm:
        quiet(prewarm)
    devnull = os.open(os.devnull, os.O_WRONLY)
    t0 = time.perf_counter()
    p = subprocess.Popen(["bash", "-c", cmd], stdin=subprocess.DEVNULL, stdout=devnull, stderr=devnull)
    _, status, usage = os.wait4(p.pid, 0)
    t1 = time.perf_counter()
    os.close(devnull)
    return {"wall": t1 - t0, "cpu": usage.ru_utime + usage.ru_stime,
            "rc": os.waitstatus_to_exitcode(status), "maxrss_kb": usage.ru_maxrss}


def main():
    a = parse_args()
    os.chdir(a.corpus)
    prewarm = None if a.no_prewarm else a.prewarm
    os.sync()  # write-back of a freshly made corpus must not overlap the timings
    print(f"corpus {a.corpus}: {os.cpu_count()} CPUs, {a.runs} rounds, {a.warmup} warm-up, "
          f"prewarm {'off' if prewarm is None else 'on'}; load average at start "
          f"{' '.join(open('/proc/loadavg').read().split()[:3])}", flush=True)

    res = {n: [] for n, _ in a.commands}
    for _ in range(a.warmup):
        for _, c in a.commands:
            run(c, prewarm)
    k = len(a.commands)
    for r in range(a.runs):
        for n, c in a.commands[r % k:] + a.commands[:r % k]:
            res[n].append(run(c, prewarm))
        print(f"  round {r + 1}/{a.runs} done", file=sys.stderr, flush=True)

    base = a.commands[0][0]
    def ratio(x, y):
        return statistics.median(p["wall"] / q["wall"] for p, q in zip(res[x], res[y]))

    print(f"\n{'command':<20} {'wall median s':>13} {'(min-max)':>17} {'cpu s':>7} "
          f"{'x ' + base:>10} {'peak RSS MB':>12} {'rc':>4}")
    for n, c in a.commands:
        w = [x["wall"] for x in res[n]]
        rcs = sorted({x["rc"] for x in res[n]})
        print(f"{n:<20} {statistics.median(w):>13.3f} {'(%.3f-%.3f)' % (min(w), max(w)):>17} "
              f"{statistics.median(x['cpu'] for x in res[n]):>7.2f} {ratio(n, base):>10.2f} "
              f"{max(x['maxrss_kb'] for x in res[n]) / 1024:>12.1f} {','.join(map(str, rcs)):>4}")
    if a.ratio:
        print()
    for r in a.ratio:
        x, y = r.split("/")
        print(f"ratio {x} / {y}: {ratio(x, y):.2f} (median of same-round ratios)")
    print(f"\nload average at end: {' '.join(open('/proc/loadavg').read().split()[:3])}")
    for n, c in a.commands:
        print(f"  {n}: {c}")
    if a.json:
        with open(a.json, "w") as f:
            json.dump({n: {"cmd": c, "runs": res[n]} for n, c in a.commands}, f, indent=1)


if __name__ == "__main__":
    main()
