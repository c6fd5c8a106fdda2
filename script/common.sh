# Shared by the scripts beside it: where the repository is, and how they speak.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\033[1m==> %s\033[0m\n' "$*"; }
fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}
jobs() { nproc 2>/dev/null || echo 2; }

# What ccache must overlook for a precompiled header to be of use to it.
export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
