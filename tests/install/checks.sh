# Sourced by the install tests: strict mode and the checks they share.
#   fail MESSAGE      reports a failed check and ends the test.
#   expect_file PATH  fails unless PATH is a regular file.
set -euo pipefail

fail() {
    echo "FAIL: $*" >&2
    exit 1
}
expect_file() {
    [[ -f $1 ]] || fail "missing $1"
}
