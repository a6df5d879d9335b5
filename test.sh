#!/bin/bash
# Installs what is missing, builds everything with the sanitizers and runs all tests.
# Arguments go to ctest: ./test.sh -R tst_parse_int runs one test.
set -euo pipefail
cd "$(dirname "$(readlink --canonicalize "$0")")"
source packaging/setup.sh

require_packages build programs test
build sanitize
exec ctest --preset sanitize --parallel 2 --output-on-failure --no-tests=error "$@"
