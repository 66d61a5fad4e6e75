#!/usr/bin/env bash
# Builds the libFuzzer target of the measurement-file readers with clang and runs it.
#   tools/fuzz/run.sh [CPU_SECONDS] [CORPUS_DIR]
# CPU_SECONDS (default 600) is the fuzzing time, split over the jobs (FUZZ_JOBS, default 1:
# CPU_SECONDS / FUZZ_JOBS each, one core per job). CORPUS_DIR (default build/fuzz/corpus) keeps
# the corpus between runs and is seeded with the sample spectra and the regression inputs.
# Crashing inputs land in build/fuzz/artifacts; copy the ones worth keeping to
# tests/data/fuzz_regressions/, where a unit test reads them.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
seconds=${1:-600}
corpus=${2:-$root/build/fuzz/corpus}
jobs=${FUZZ_JOBS:-1}
build=${FUZZ_BUILD_DIR:-$root/build/fuzz/build}
artifacts=${FUZZ_ARTIFACTS:-$root/build/fuzz/artifacts}

if ! command -v clang++ >/dev/null; then
  echo "fuzz: clang++ is missing; installing clang" >&2
  sudo=()
  [ "$(id -u)" -ne 0 ] && sudo=(sudo)
  "${sudo[@]}" apt-get update -qq
  "${sudo[@]}" apt-get install -y -qq --no-install-recommends clang
fi

cmake -S "$root/tools/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
cmake --build "$build" -j "${FUZZ_BUILD_JOBS:-2}" --target velquor_measurement_fuzzer

mkdir -p "$corpus" "$artifacts"
# Seeds: each input's first byte selects the delivery (see the fuzz target); 0 = from memory.
seed() { { printf '\000'; cat "$1"; } > "$corpus/seed-$(basename "$1")"; }
for f in "$root"/tests/data/samples/*.csv "$root"/tests/data/fuzz_regressions/*; do
  [ -f "$f" ] && [ "$(basename "$f")" != README.md ] && seed "$f"
done
printf '\000CGATS.17\nORIGINATOR "seed"\nNUMBER_OF_FIELDS 5\nBEGIN_DATA_FORMAT\nSAMPLE_ID SAMPLE_NAME SPECTRAL_NM400 nm410 R_420\nEND_DATA_FORMAT\nNUMBER_OF_SETS 2\nBEGIN_DATA\n1 "a b" 0.1 0.2 0.3\n2 c 10 "" 30\nEND_DATA\n' \
  > "$corpus/seed-cgats"
printf '\000id;name;400 nm;410nm;nm420\n1;"x; y";10,5;20;30\n2;z;;NA;1\n' > "$corpus/seed-semicolon"

# libFuzzer's -max_total_time is wall-clock time; on a loaded machine that is more than the
# CPU time it gets. So the fuzzer runs again with the CPU time still owed until the budget is
# spent, measured with the shell's `times` (user + system time of the finished children).
# `times` must run in this shell (a $(...) subshell has no finished children of its own).
cpu_file=$(mktemp)
trap 'rm -f "$cpu_file"' EXIT
children_cpu() {
  times > "$cpu_file"
  cpu=$(sed -n 2p "$cpu_file" | awk '{
    total = 0
    for (i = 1; i <= 2; i++) { split($i, p, /[ms]/); total += p[1] * 60 + p[2] }
    printf "%d", total }')
}
options=(-max_len=65536 -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$artifacts/" -print_final_stats=1)
[ "$jobs" -gt 1 ] && options+=(-jobs="$jobs" -workers="$jobs")
children_cpu
start=$cpu
status=0
while :; do
  children_cpu
  spent=$(( cpu - start ))
  owed=$(( (seconds - spent) / jobs ))
  [ "$owed" -lt 5 ] && break
  echo "fuzz: ${spent}s of ${seconds}s CPU spent; running $jobs job(s) for ${owed}s" >&2
  "$build/velquor_measurement_fuzzer" "${options[@]}" -max_total_time="$owed" "$corpus" || { status=$?; break; }
done
children_cpu
echo "fuzz: $(( cpu - start ))s CPU in total; corpus $(ls "$corpus" | wc -l) inputs;" \
  "artifacts: $(ls "$artifacts" | wc -l)" >&2
exit "$status"
