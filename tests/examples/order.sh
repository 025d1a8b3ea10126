# order.sh ROOT BIN: the order example ends well and shows what it has to.
set -euo pipefail
"$2/order" 2>&1 | bash "$1/tests/examples/expect.sh" "$1/tests/examples/order.lines"
