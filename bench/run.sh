#!/usr/bin/env bash
# bench/run.sh: measures pairscope-cli against the peer tools on generated corpora.
#
# usage: bench/run.sh [-n RUNS] [--scratch DIR] [--only small|large] [--files N] [--keep]
#                     [--reuse] [--cli PATH]
#   -n RUNS      timed rounds (default 5); the figures are medians over the rounds
#   --scratch    folder for the corpora and the read-floor tool, outside the repository
#                (default /tmp/pairscope-bench); about 3 GB per corpus
#   --only       run one corpus: small (200,000 small files) or large (~3 GB of 1-32 MiB files)
#   --files N    entries of the small corpus (default 200000)
#   --keep       keep the corpora afterwards (they are deleted by default)
#   --reuse      use corpora kept by an earlier --keep run instead of making them again
#   --cli PATH   time this pairscope-cli instead of a fresh release build in build/
#
# Steps: a release build of pairscope-cli in build/, read-floor built from the shared bench
# tools, the corpora made with make-corpus, a check that pairscope-cli reports exactly what
# make-corpus planted, then all tools timed side by side (bench/timeit.py) and the peak memory
# of pairscope-cli measured with /usr/bin/time -v. The shared bench tools are looked for in
# ../shared/bench beside the repository; set PAIRSCOPE_BENCH_TOOLS to use another folder.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
tools="${PAIRSCOPE_BENCH_TOOLS:-$root/../shared/bench}"
runs=5 scratch=/tmp/pairscope-bench only="" files=200000 keep=0 reuse=0 cli=""
while [ $# -gt 0 ]; do
  case "$1" in
    -n) runs="$2"; shift 2 ;;
    --scratch) scratch="$2"; shift 2 ;;
    --only) only="$2"; shift 2 ;;
    --files) files="$2"; shift 2 ;;
    --keep) keep=1; shift ;;
    --reuse) reuse=1; keep=1; shift ;;
    --cli) cli="$(realpath "$2")"; shift 2 ;;
    -h | --help) sed -n '2,22p' "$0"; exit 0 ;;
    *) echo "bench/run.sh: unknown argument '$1' (see --help)" >&2; exit 2 ;;
  esac
done
case "$only" in "" | small | large) ;; *) echo "bench/run.sh: --only small or large" >&2; exit 2 ;; esac
[ -x "$tools/make-corpus" ] || { echo "bench/run.sh: no make-corpus in $tools" >&2; exit 2; }
case "$(realpath -m "$scratch")/" in
  "$root"/*) echo "bench/run.sh: keep the scratch folder outside the repository" >&2; exit 2 ;;
esac
mkdir -p "$scratch"
scratch="$(cd "$scratch" && pwd)"

"$root/scripts/deps"
if [ -z "$cli" ]; then
  cmake -S "$root" -B "$root/build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$root/build" --target pairscope-cli
  cli="$root/build/cli/pairscope-cli"
fi
g++ -O2 -std=c++17 -o "$scratch/read-floor" "$tools/read-floor.cpp" -ldeflate
export PATH="$scratch:$PATH"

cleanup() { [ "$keep" = 1 ] || rm -rf "$scratch/small" "$scratch/large"; }
trap cleanup EXIT

# Peak memory of one run: /usr/bin/time -v's "Maximum resident set size", per file of both trees.
peak_memory() { # CORPUS COMPARE
  local kb n
  # The status is 1 when the trees differ, which they do; only the figure matters here.
  kb=$(cd "$1" && { /usr/bin/time -v "$cli" --no-progress --format tsv -c "$2" SRC DST 2>&1 >/dev/null || true; } |
    awk -F': ' '/Maximum resident set size/ {print $2}')
  n=$(find "$1/SRC" "$1/DST" -type f | wc -l)
  echo "peak memory, -c $2: $kb KiB for $n files = $((kb * 1024 / n)) bytes/file"
}

corpus() { # NAME MAKE-CORPUS-ARGS...: makes SCRATCH/NAME unless reusing one
  if [ "$reuse" = 1 ] && [ -f "$scratch/$1/summary.json" ]; then
    echo "reusing $scratch/$1"
  else
    "$tools/make-corpus" "$scratch/$1" "${@:2}" --force >/dev/null
  fi
}

timed() { # CORPUS ARGS...: bench/timeit.py with read-floor as the prewarm
  python3 "$root/bench/timeit.py" -n "$runs" --prewarm "read-floor read SRC DST" "$@"
}

ps="$cli --no-progress --format tsv"
if [ "$only" != large ]; then
  echo "== small corpus: $files entries"
  corpus small --files "$files" --sizes small --fanout 10 --depth 3 --seed 1
  python3 "$root/bench/check-corpus.py" "$cli" "$scratch/small"
  timed --ratio ps-size-modified/walk --ratio ps-crc/diff-rq --ratio ps-crc/rsync-c \
    --ratio ps-crc/read-floor-crc "$scratch/small" \
    "walk=find SRC DST -printf '%s %T@ %p\n'" \
    "rsync-quick=rsync -rn --delete --itemize-changes SRC/ DST/" \
    "rsync-c=rsync -rcn --delete --itemize-changes SRC/ DST/" \
    "diff-rq=diff -rq SRC DST" \
    "read-floor-read=read-floor read SRC DST" \
    "read-floor-crc=read-floor crc SRC DST" \
    "ps-size-modified=$ps -c size,modified SRC DST" \
    "ps-crc=$ps -c crc SRC DST"
  # Cold: the page cache dropped before every run, as after a reboot or for trees larger than
  # the memory. The disk then serves what is read, and how many requests are in flight counts.
  if [ -w /proc/sys/vm/drop_caches ]; then
    python3 "$root/bench/timeit.py" -n "$runs" --prewarm "sync; echo 3 >/proc/sys/vm/drop_caches" \
      --ratio ps-crc/diff-rq "$scratch/small" "diff-rq=diff -rq SRC DST" "ps-crc=$ps -c crc SRC DST"
  else
    echo "cold rounds skipped: dropping the page cache needs root"
  fi
  peak_memory "$scratch/small" size,modified
  peak_memory "$scratch/small" crc
fi

if [ "$only" != small ]; then
  echo "== large corpus"
  corpus large --files 200 --sizes large --fanout 4 --depth 1 --seed 2
  python3 "$root/bench/check-corpus.py" "$cli" "$scratch/large"
  timed --ratio ps-size-crc/read-floor-read --ratio ps-size-crc/read-floor-crc \
    --ratio ps-size-crc/diff-rq "$scratch/large" \
    "walk=find SRC DST -printf '%s %T@ %p\n'" \
    "diff-rq=diff -rq SRC DST" \
    "rsync-c=rsync -rcn --delete --itemize-changes SRC/ DST/" \
    "read-floor-read=read-floor read SRC DST" \
    "read-floor-crc=read-floor crc SRC DST" \
    "ps-size-crc=$ps -c size,crc SRC DST"
  peak_memory "$scratch/large" size,crc
fi
