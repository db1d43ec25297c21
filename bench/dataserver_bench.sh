#!/usr/bin/env bash
# The figures of the data path on one machine in one run: a 60 000-trace x
# 1 000-sample IBM SEG-Y file (240 MB) in the page cache, read
#   - by cat, by the SEG-Y store in-process and by libsegyio (segyio_bench),
#   - by the Java host through the data server over its UNIX-domain socket:
#     every trace into Java float arrays by ranges of 1 000, and one header
#     word of every trace (RondoLoadBench).
#
#   bench/dataserver_bench.sh [BUILD_DIR]     (default: build; needs
#   RONDO_BENCH=ON, as scripts/build normal sets it)
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(cd "${1:-build}" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/rondo-bench-XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/root/bench" "$work/classes"
file="$work/root/bench/big.sgy"

SEGY_BENCH_FILE="$file" "$build/bin/segyio_bench" --benchmark_repetitions=3 \
  --benchmark_report_aggregates_only=true

javac -d "$work/classes" $(find java/com bench/java -name '*.java')
this_host=$(hostname)
export FS_CLUSTERS="seisserver=${this_host%%.*}" VSERVER="$build/bin/DataServer" SP_DATASERVER_ROOT="$work/root"
export HOME="$work"
unset SP_DATASERVER_BACKEND
cat "$file" >/dev/null
java -Xmx1g -Dsamples=1000 -Djava.library.path="$build/lib" -cp "$work/classes" \
  com.nyx.orda.business.io.protocols.rondo.RondoLoadBench SeisServer bench big 60000 1000 CMP 3
