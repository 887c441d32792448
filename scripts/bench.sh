#!/usr/bin/env bash
# usage: scripts/bench.sh [ROUNDS]
#
# Measures the service beside other servers, on this machine, in build-bench/. Takes about six minutes; writes the tables
# of docs/performance.md and the plots in docs/images/.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
install_missing "${build_packages[@]}" "${isolation_packages[@]}" nodejs npm gnuplot-nox libboost-dev libbenchmark-dev
cmake -S . -B build-bench -G Ninja -DMVSIGNPAD_BENCH=ON
cmake --build build-bench
npm --prefix bench/node ci --no-audit --no-fund

mkdir -p build-bench/home
chmod 700 build-bench/home
export HOME="$PWD/build-bench/home" XDG_RUNTIME_DIR="$PWD/build-bench/home"
# With ports and a /tmp of its own, and without the user's settings.
tests/desktop/isolated.sh "$PWD" "$PWD/build-bench" node bench/run.mjs build-bench . "$@"
gnuplot -e "data='build-bench/bench/plots'; images='docs/images'" bench/plots.gp
