#!/usr/bin/env bash
# Checks scripts/setup, scripts/lib/runtime-dir.sh and scripts/lib/fuzz-target.sh
# against stand-in tools on PATH; never installs anything.
set -uo pipefail
root="$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# ---- setup: stand-ins for dpkg-query, apt-get and sudo --------------------
fake="$work/bin"
mkdir -p "$fake" "$work/tmp"
cat >"$fake/dpkg-query" <<'SH'
#!/bin/sh
# Every package is installed except graphviz.
for last; do :; done
[ "$last" = graphviz ] && { echo "unknown ok not-installed"; exit 0; }
echo "install ok installed"
SH
cat >"$fake/apt-get" <<'SH'
#!/bin/sh
echo "Reading package lists..."
echo "Building dependency tree..."
[ -n "$FAKE_APT_FAIL" ] && [ "$1" = install ] && { echo "E: Unable to locate package graphviz"; exit 100; }
exit 0
SH
printf '#!/bin/sh\nexec "$@"\n' >"$fake/sudo"
chmod +x "$fake"/*

out=$(PATH="$fake:$PATH" TMPDIR="$work/tmp" bash "$root/scripts/setup" 2>"$work/err")
status=$?
[ "$status" -eq 0 ] || fail "setup with a working apt-get exited $status"
[ "$out" = "setup: installing 1 Debian packages" ] || fail "setup printed: $out"
[ ! -s "$work/err" ] || fail "setup wrote to stderr: $(cat "$work/err")"
[ -z "$(ls "$work/tmp")" ] || fail "setup left its log behind: $(ls "$work/tmp")"

out=$(PATH="$fake:$PATH" TMPDIR="$work/tmp" FAKE_APT_FAIL=1 bash "$root/scripts/setup" 2>"$work/err")
status=$?
[ "$status" -eq 1 ] || fail "setup with a failing apt-get exited $status"
case "$out" in *"Reading package lists"*) fail "package tool output on stdout: $out" ;; esac
log=$(sed -n 's/.*the whole log is in \(.*\)$/\1/p' "$work/err")
[ -n "$log" ] || fail "the failure does not name the log: $(cat "$work/err")"
grep -q "Unable to locate package graphviz" "$work/err" || fail "the failure does not show apt's error"
grep -q "Reading package lists" "$log" 2>/dev/null || fail "the log $log does not hold apt's output"

rm -f "$log"

# ---- runtime-dir: a private folder only when none is set, gone at exit ----
made=$(env -u XDG_RUNTIME_DIR TMPDIR="$work/tmp" bash -c '
  source "$1/scripts/lib/runtime-dir.sh"
  trap remove_private_runtime_dir EXIT
  use_private_runtime_dir
  echo "$XDG_RUNTIME_DIR $(stat -c %a "$XDG_RUNTIME_DIR")"' _ "$root")
dir=${made% *}
[ "${made##* }" = 700 ] || fail "private runtime folder mode: $made"
case "$dir" in "$work/tmp/modelyne-runtime."*) ;; *) fail "private runtime folder in the wrong place: $dir" ;; esac
[ ! -e "$dir" ] || fail "private runtime folder $dir left behind"
kept=$(XDG_RUNTIME_DIR=/run/user/4242 TMPDIR="$work/tmp" bash -c '
  source "$1/scripts/lib/runtime-dir.sh"; use_private_runtime_dir; remove_private_runtime_dir; echo "$XDG_RUNTIME_DIR"' _ "$root")
[ "$kept" = /run/user/4242 ] || fail "a set XDG_RUNTIME_DIR was replaced by $kept"
[ -z "$(ls "$work/tmp")" ] || fail "a folder was made although XDG_RUNTIME_DIR was set"

# ---- fuzz-target: the figures on success, the whole report on a finding ---
mkdir -p "$work/fuzzrun"
cat >"$work/fuzz_ok" <<'SH'
#!/bin/sh
for i in $(seq 1 40); do printf '#%d\tNEW    cov: %d ft: 9 corp: 3/9b exec/s: 100\n' "$i" "$i"; done
echo "Done 4242 runs in 2 second(s)"
for i in $(seq 1 15); do echo "stat::figure_$i: $i"; done
SH
cat >"$work/fuzz_bad" <<'SH'
#!/bin/sh
echo "==1==ERROR: AddressSanitizer: heap-buffer-overflow"
for i in $(seq 1 60); do echo "    #$i 0x0 in frame$i"; done
exit 77
SH
chmod +x "$work/fuzz_ok" "$work/fuzz_bad"
out=$(cd "$work/fuzzrun" && source "$root/scripts/lib/fuzz-target.sh" && run_fuzz_target "$work/fuzz_ok" 3)
status=$?
expected="==== fuzz_ok (3s)
#40	NEW    cov: 40 ft: 9 corp: 3/9b exec/s: 100
Done 4242 runs in 2 second(s)
$(for i in $(seq 1 15); do echo "stat::figure_$i: $i"; done)"
[ "$status" -eq 0 ] || fail "a clean fuzz run returned $status"
[ "$out" = "$expected" ] || fail "a clean fuzz run printed:
$out"
out=$(cd "$work/fuzzrun" && source "$root/scripts/lib/fuzz-target.sh" && run_fuzz_target "$work/fuzz_bad" 3)
status=$?
[ "$status" -eq 77 ] || fail "a finding returned $status, not the target's 77"
[ "$(grep -c 'in frame' <<<"$out")" -eq 60 ] || fail "a finding's report was cut"
grep -q "fuzz: fuzz_bad failed (exit 77); artifacts in build/fuzz/artifacts" <<<"$out" || fail "no failure line: $out"

[ "$failures" -eq 0 ] && echo "scripts: all checks passed"
exit $((failures > 0))
