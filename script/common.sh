# Shared by the scripts beside it: where the repository is, and how they speak.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\033[1m==> %s\033[0m\n' "$*"; }
fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}
jobs() { nproc 2>/dev/null || echo 2; }
