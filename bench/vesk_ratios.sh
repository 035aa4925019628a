#!/usr/bin/env bash
# The vesk side of the shared ratio figures, with CPU time beside the wall time.
#   bench/vesk_ratios.sh BUILD_DIR [--10m]
# Uses the designs of ../shared/bench/gen-design, cached (json and database) in $RATIOS_DIR (default
# /tmp/vesk-ratios, the cache of ../shared/bench/ratios). Each figure is the best of three runs; CPU is
# user + system seconds, which other load on a shared machine stretches far less than the wall time.
# --10m adds the 10M-component flat design (about 1.3 GB of json and a long import).
set -u
bin=$(cd "${1:?usage: vesk_ratios.sh BUILD_DIR [--10m]}" && pwd)
big=${2:-}
here=$(cd "$(dirname "$0")" && pwd)
gen="$here/../../shared/bench/gen-design"
[ -x "$gen" ] || gen=/work/shared/bench/gen-design
cache=${RATIOS_DIR:-/tmp/vesk-ratios}; mkdir -p "$cache"

measure() {  # command... -> "wall cpu kb"
  /usr/bin/time -f "%e %U %S %M" -o "$cache/time.vesk" "$@" >/dev/null 2>&1
  read -r w u s k < "$cache/time.vesk"
  python3 -c "print($w, round($u + $s, 2), $k)"
}
best() {  # command... -> the run of least CPU of three
  for _ in 1 2 3; do measure "$@"; done | sort -n -k2 | head -1
}
prep() {  # kind size -> folder holding its database
  local d="$cache/$1-$2"
  [ -f "$d.json" ] || "$gen" "$1" "$2" "$d.json"
  if [ ! -d "$d/database" ]; then
    rm -rf "$d"; mkdir -p "$d/galt/standard"; : > "$d/galt/standard/vesk.cfg"
    (cd "$d" && "$bin/vesk-db" import "$d.json" >/dev/null) || { rm -rf "$d"; return 1; }
  fi
  echo "$d"
}
run() {  # folder switches... -> "wall cpu kb"
  local d=$1; shift
  (cd "$d" && GALT_HOME=galt best "$bin/vesk" "$@" TOP)
}
show() {  # label "wall cpu kb"
  read -r w c k <<< "$2"
  printf '%-44s wall %7.2f s  cpu %7.2f s  peak %6d MB\n' "$1" "$w" "$c" $((k / 1024))
}

declare -A cpu mem
for kind in flat hier; do
  for size in 100000 1000000; do
    d=$(prep $kind $size) || { echo "import of $kind $size failed"; exit 1; }
    r=$(run "$d"); show "vesk $kind $size" "$r"
    read -r _ cpu[$kind$size] mem[$kind$size] <<< "$r"
  done
done
r=$(run "$cache/hier-1000000" -h); show "vesk -h, 100k placements of a 10-component block" "$r"
read -r _ cpu[h] mem[h] <<< "$r"
imp=$(mktemp -d)
r=$(cd "$imp" && best "$bin/vesk-db" import "$cache/flat-1000000.json"); show "vesk-db import, flat 1M" "$r"
read -r _ cpu[import] mem[import] <<< "$r"
rm -rf "$imp"
if [ "$big" = --10m ]; then
  d=$(prep flat 10000000) || { echo "import of flat 10M failed"; exit 1; }
  r=$(cd "$d" && GALT_HOME=galt measure "$bin/vesk" TOP); show "vesk flat 10000000 (one run)" "$r"
  read -r _ cpu[flat10000000] mem[flat10000000] <<< "$r"
fi
python3 - "${cpu[flat100000]}" "${cpu[flat1000000]}" "${cpu[hier100000]}" "${cpu[hier1000000]}" "${cpu[h]}" \
  "${mem[flat1000000]}" "${cpu[flat10000000]:-0}" "${mem[flat10000000]:-0}" <<'PY'
import sys
f1, f2, h1, h2, hs, m2, f3, m3 = map(float, sys.argv[1:])
print(f"cpu ratios: flat 1M / 100k = {f2 / f1:.1f} (<= 11); flattened 1M / 100k = {h2 / h1:.1f} (<= 11); "
      f"-h 100k placements / flat 100k = {hs / f1:.2f} (<= 1); flat 1M peak {m2 / 1024:.0f} MB (<= 500)")
if f3:
    print(f"cpu ratio: flat 10M / 1M = {f3 / f2:.1f} (<= 11); 10M peak {m3 / 1024:.0f} MB (<= 5120)")
PY
