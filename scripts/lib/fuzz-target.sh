# Sourced by scripts/fuzz: runs one libFuzzer target for a number of seconds
# from the current folder, keeping its corpus and artifacts under build/fuzz.
# Quiet on success except for the figures CI should show (the last progress
# line and every final statistic); on a finding, the whole report.
run_fuzz_target() {
  local t="$1" seconds="$2"
  local name corpus artifacts log status=0
  name=$(basename "$t")
  corpus="build/fuzz/corpus/$name"
  artifacts="build/fuzz/artifacts"
  mkdir -p "$corpus" "$artifacts"
  local seeds=()
  [ -d "fuzz/corpus/${name#fuzz_}" ] && seeds=("fuzz/corpus/${name#fuzz_}")
  echo "==== $name (${seconds}s)"
  log="$artifacts/$name.log"
  # A fixed seed makes a CI run repeatable; FUZZ_SEED=0 picks a random one.
  ASAN_OPTIONS=detect_leaks=1 "$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -seed="${FUZZ_SEED:-1}" -artifact_prefix="$artifacts/$name-" \
    -print_final_stats=1 "$corpus" "${seeds[@]}" >"$log" 2>&1 || status=$?
  if [ "$status" -ne 0 ]; then
    cat "$log"
    echo "fuzz: $name failed (exit $status); artifacts in $artifacts, log in $log"
    return "$status"
  fi
  grep -E '^#[0-9]+' "$log" | tail -n 1 || true
  grep -E '^(stat::|Done )' "$log" || true
}
