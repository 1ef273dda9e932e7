#!/usr/bin/env bash
# Runs the test of the page: run.sh BUILD_DIRECTORY
set -euo pipefail
build=$1
for needed in /usr/bin/node /usr/bin/chromium "$build/browser/node_modules/playwright-core"; do
  if [ ! -e "$needed" ]; then
    echo "skipped: there is no $needed; scripts/screenshot installs it"
    exit 77
  fi
done
exec node "$(dirname "$0")/viewer_test.mjs" "$build"
