# Sourced by the other scripts: enters the project's folder, installs what it needs and builds it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Debian packages, each with a file that exists if the package is installed.
demo_packages=(
  "g++:/usr/bin/g++"
  "cmake:/usr/bin/cmake"
  "ninja-build:/usr/bin/ninja"
  "libcli11-dev:/usr/include/CLI/CLI.hpp"
  "libfmt-dev:/usr/include/fmt/core.h"
  "nlohmann-json3-dev:/usr/include/nlohmann/json.hpp"
  "libcpp-httplib-dev:/usr/include/httplib.h"
  "libturbojpeg0-dev:/usr/include/turbojpeg.h"
  "libedit-dev:/usr/include/editline/readline.h"
  "pkg-config:/usr/bin/pkg-config"
  "libspdlog-dev:/usr/include/spdlog/spdlog.h"
  "zlib1g-dev:/usr/include/zlib.h"
  "libpng-dev:/usr/include/png.h"
)
# Tests and benchmarks need these as well.
test_packages=(
  "${demo_packages[@]}"
  "libgtest-dev:/usr/include/gtest/gtest.h"
  "libgmock-dev:/usr/include/gmock/gmock.h"
  "libbenchmark-dev:/usr/include/benchmark/benchmark.h"
  "libaravis-dev:/usr/include/aravis-0.8/arv.h"
  "locales:/usr/share/i18n/locales/de_DE"
  "dpkg-dev:/usr/bin/dpkg-shlibdeps"
  "file:/usr/bin/file"
  "python3:/usr/bin/python3"
)

# install_missing PACKAGE:FILE...
install_missing() {
  local missing=() entry
  for entry; do
    [ -e "${entry#*:}" ] || missing+=("${entry%%:*}")
  done
  [ "${#missing[@]}" -eq 0 ] && return
  echo "Installing ${missing[*]}"
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# What the test of the page needs: Chromium, and the module that drives it.
install_browser() {
  install_missing "chromium:/usr/bin/chromium" "nodejs:/usr/bin/node" "npm:/usr/bin/npm"
  [ -e build/browser/node_modules/playwright-core ] ||
    npm install --no-save --no-audit --no-fund --loglevel=error --prefix build/browser \
      playwright-core@1.65.1 >/dev/null
}

# build PRESET [TARGET...]
build() {
  local preset=$1
  shift
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" ${1:+--target "$@"}
}
