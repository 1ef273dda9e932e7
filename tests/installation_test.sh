#!/usr/bin/env bash
# Installations as users have them, in a directory that goes away. The case is a function below.
#   installation_test.sh CASE SOURCE BUILD
set -euo pipefail
source=$2
build=$3
here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
cd "$here"
export CMAKE_GENERATOR=Ninja
unset LD_LIBRARY_PATH

# run COMMAND... shows what a command says only if it fails.
run() {
  "$@" >log 2>&1 || {
    cat log
    echo "failed: $*"
    exit 1
  }
}

# absent TEXT FILE... succeeds if no file has the text.
absent() {
  ! grep -rF -e "$@"
}

# host COMMAND... runs an example host, which leaves the same picture and settings in any language.
host() {
  run "$@"
  [ "$(stat -c %s picture.ppm)" -eq $((15 + 640 * 480 * 3)) ]
  head -n 3 picture.ppm | cmp - <(printf 'P6\n640 480\n255\n')
  for line in FG_WIDTH=640 FG_XOFFSET=192 FG_AREATRIGGERMODE=4 FG_TRIGGERQUEUE_MODE=1; do
    grep -qx "$line;" settings.mcf
  done
  for file in picture.ppm settings.mcf; do
    [ ! -e "first.$file" ] || cmp "first.$file" "$file"
    mv "$file" "first.$file"
  done
}

# link FILE PACKAGE... makes ./program, as pkg-config says.
link() {
  local flags
  read -ra flags <<<"$(pkg-config --cflags --libs "${@:2}")"
  run "${CC:-cc}" "$1" -o program -Wl,--no-as-needed "${flags[@]}"
}

# block KIND prints the document's one block of that kind.
block() {
  sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" after/share/doc/velmora/docs/virtual-board.md
}

# documented runs the program in the board's document, which prints what the document says.
documented() {
  block c >documented.c
  link documented.c velmora velmora-virtual-board
  ./program | diff - <(block text)
}

# producer SHARE opens the board through the GenTL producer that the environment script names.
producer() {
  cat >consumer.py <<'END'
import ctypes, os
producer = ctypes.CDLL(os.path.join(os.environ["GENICAM_GENTL64_PATH"], "velmora.cti"))
system, board = ctypes.c_void_p(), ctypes.c_void_p()
assert producer.GCInitLib() == 0 and producer.TLOpen(ctypes.byref(system)) == 0
assert producer.TLOpenInterface(system, b"velmora-board", ctypes.byref(board)) == 0
END
  run env -u GENICAM_GENTL64_PATH bash -c "source '$1/environment.sh' && python3 consumer.py"
}

moved() {
  run cmake --install "$build" --prefix "$here/before"
  mv before after
  local examples=$here/after/share/velmora/examples
  run cmake -S "$examples" -B hosts -D CMAKE_PREFIX_PATH="$here/after"
  run cmake --build hosts
  host hosts/host_c
  host hosts/host_cpp
  host python3 "$examples/host.py"
  export PKG_CONFIG_PATH=$here/after/share/pkgconfig
  link "$examples/host.c" velmora velmora-virtual-board
  host ./program
  echo '#include "velmora/virtual_board.h"
        int main(void) { return 0; }' >alone.c
  for package in velmora velmora-virtual-board; do
    link alone.c "$package"
    run ./program
  done
  documented
  [[ $(after/bin/velmora get FG_WIDTH) == *1024 ]]
  grep -q '^.SS get NAME' after/share/man/man1/velmora.1
  . after/share/bash-completion/completions/velmora
  COMP_LINE='velmora set gen_enable=fg_g' COMP_POINT=100 _velmora after/bin/velmora
  [[ ${COMPREPLY[*]} == FG_GENERATOR ]]
  producer after/share/velmora
  absent "$here" after
  absent "$source" after
}

# A root of its own, where the packages are that this machine has.
packages() {
  run cpack --config "$build/CPackConfig.cmake" -B "$here"
  mkdir -p root/var/lib/dpkg/{info,updates}
  cp /var/lib/dpkg/status root/var/lib/dpkg/
  PATH=$PATH:/usr/sbin:/sbin run dpkg --root="$here/root" --force-not-root --install ./*.deb
  [[ $(root/usr/bin/velmora get FG_WIDTH) == *1024 ]]
  host python3 root/usr/share/velmora/examples/host.py
  producer root/usr/share/velmora
}

# Another project, with tests of its own, gets the libraries and no tests, flags or folders.
subproject() {
  cat >CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.25)
project(Parent LANGUAGES C)
include(CTest)
include(FetchContent)
FetchContent_Declare(Velmora SOURCE_DIR "$source")
FetchContent_MakeAvailable(Velmora)
add_executable(host "$source/examples/host.c")
target_link_libraries(host PRIVATE Velmora::Velmora Velmora::VirtualBoard)
END
  run cmake -S . -B build -D CMAKE_DISABLE_FIND_PACKAGE_GTest=ON
  ctest --test-dir build -N | grep -qx "Total Tests: 0"
  run ninja -C build -n host
  grep -q libvorn5.so log
  ninja -C build -t commands host | grep "examples/host.c" >commands
  absent -Wconversion commands
  absent -fstack-protector commands
  [ ! -e build/lib64 ]
}

"$1"
