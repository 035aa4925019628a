#!/usr/bin/env bash
# Checks that a build writes the same decks and console output as a recorded one.
#   bench/deck_check.sh record BUILD_DIR [DIR]   run BUILD_DIR/vesk on the benchmark designs, keep what it writes
#   bench/deck_check.sh compare BUILD_DIR [DIR]  run again and compare byte for byte with the recording, and
#                                                import each design again to compare the database files
# DIR (default /tmp/i13-baseline) holds the designs, their databases and the recorded outputs. The designs are
# made by BUILD_DIR/bench/make_design and by ../shared/bench/gen-design, imported with BUILD_DIR/vesk-db.
set -u
mode=${1:?usage: deck_check.sh record|compare BUILD_DIR [DIR]}
bin=$(cd "${2:?usage: deck_check.sh record|compare BUILD_DIR [DIR]}" && pwd)
dir=${3:-/tmp/i13-baseline}
here=$(cd "$(dirname "$0")" && pwd)
gen="$here/../../shared/bench/gen-design"
[ -x "$gen" ] || gen=/work/shared/bench/gen-design
mkdir -p "$dir"
export SOURCE_DATE_EPOCH=0

# name and the command that writes its design.json
designs=(
  "mflat10k:$bin/bench/make_design flat 10000"
  "mhier1k:$bin/bench/make_design hier 1000 10"
  "gflat100k:$gen flat 100000"
  "ghier100k:$gen hier 100000"
  "ghier1M:$gen hier 1000000"
)
switchsets=("" "-s" "-h" "-n" "-m -h" "-e" "-_" "-w -h" "-9 -h" "-v" "-gheader.txt -h")

prepare() {  # name command... -> folder with a database
  local d="$dir/designs/$1"; shift
  if [ ! -d "$d/database" ]; then
    rm -rf "$d"; mkdir -p "$d/galt/standard"; : > "$d/galt/standard/vesk.cfg"
    for m in NCH0 NCH1 NCH2 NCH3 PCH0 PCH1 PCH2 PCH3 DMOD; do
      mkdir -p "$d/sym"; t=D; [ ${m:0:1} = N ] && t=NMOS; [ ${m:0:1} = P ] && t=PMOS
      echo ".MODEL $m $t (LEVEL=1)" > "$d/sym/$m.mod"
    done
    printf '* header\n.TRAN 1N 100N\n.AC DEC 10 1 1G\n' > "$d/header.txt"
    "$@" "$d/design.json" >/dev/null && (cd "$d" && "$bin/vesk-db" import design.json >/dev/null) ||
      { echo "cannot prepare $d"; rm -rf "$d"; exit 1; }
  fi
}

fail=0
for entry in "${designs[@]}"; do
  name=${entry%%:*}; cmd=${entry#*:}
  prepare "$name" $cmd
  d="$dir/designs/$name"
  if [ "$mode" = compare ]; then  # the import writes the same database file as the recorded build's
    t=$(mktemp -d)
    if ! (cd "$t" && "$bin/vesk-db" import "$d/design.json" >/dev/null) ||
       ! cmp -s "$t/database/design.sqlite" "$d/database/design.sqlite"; then
      echo "DIFFERS: $name vesk-db import"; fail=1
    fi
    rm -rf "$t"
  fi
  sets=("${switchsets[@]}")
  [ "$name" = ghier1M ] && sets=("-h")   # the flattened 1M design is left to the timing runs
  for s in "${sets[@]}"; do
    tag=$(echo "x$s" | tr -c 'A-Za-z0-9_\n' '_')
    out="$dir/$mode/$name/$tag"; rm -rf "$out"; mkdir -p "$out"
    before=$(ls "$d")
    (cd "$d" && GALT_HOME=galt "$bin/vesk" $s TOP > "$out/stdout" 2>&1; echo "exit $?" >> "$out/stdout")
    for f in $(ls "$d"); do
      case " $(echo $before) " in *" $f "*) [ "$f" = TOP.cir ] || continue;; esac
      [ -f "$d/$f" ] && mv "$d/$f" "$out/$f"
    done
    if [ "$mode" = compare ]; then
      if ! diff -rq "$dir/record/$name/$tag" "$out" >/dev/null; then
        echo "DIFFERS: $name vesk $s"; diff -r "$dir/record/$name/$tag" "$out" | head -5; fail=1
      fi
    fi
  done
done
[ "$mode" = compare ] && { [ $fail = 0 ] && echo "all decks and outputs match" || echo "some differ"; }
exit $fail
