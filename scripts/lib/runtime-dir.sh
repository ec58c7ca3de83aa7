# Sourced by scripts that start the editor or the offscreen tool: Qt wants a
# private runtime folder. When the session has none, make one for this run
# and remove it when the script exits (the caller's EXIT trap must call
# remove_private_runtime_dir).
private_runtime_dir=""
use_private_runtime_dir() {
  [ -n "${XDG_RUNTIME_DIR:-}" ] && return 0
  private_runtime_dir=$(mktemp -d "${TMPDIR:-/tmp}/modelyne-runtime.XXXXXX")
  chmod 700 "$private_runtime_dir"
  export XDG_RUNTIME_DIR="$private_runtime_dir"
}
remove_private_runtime_dir() {
  [ -n "$private_runtime_dir" ] && rm -rf "$private_runtime_dir"
  return 0
}
