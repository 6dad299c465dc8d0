#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# usage: run.sh prefix|find-package|pkg-config BUILD-DIR COMPILER VERSION
set -euo pipefail
step=$1 build=$2 compiler=$3 version=$4
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$build/test-scratch/install
prefix=$scratch/prefix
host=$here/../../examples/embed.cpp

# An installed tree may be moved, so it is.
make_prefix() {
  rm -rf "$scratch"
  cmake --install "$build" --prefix "$scratch/first" >/dev/null
  mv "$scratch/first" "$prefix"
}

library_dir() { dirname "$(find "$prefix" -name libtessel.so)"; }

# The example host says how large the world is.
run_host() {
  local printed
  printed=$(LD_LIBRARY_PATH=$(library_dir) "$1" "$here/box.wrl")
  echo "$printed"
  [ "$printed" = "2 x 3 x 4 metres" ] || { echo "expected: 2 x 3 x 4 metres"; exit 1; }
}

case $step in
  prefix) make_prefix ;;
  find-package)
    cmake -S "$here/find-package" -B "$scratch/find-package" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
      -DCMAKE_PREFIX_PATH="$prefix" -DTESSEL_HOST="$host" -DTESSEL_VERSION="$version"
    cmake --build "$scratch/find-package"
    run_host "$scratch/find-package/host"
    ;;
  pkg-config)
    PKG_CONFIG_PATH=$(library_dir)/pkgconfig
    export PKG_CONFIG_PATH
    [ "$(pkg-config --modversion tessel)" = "$version" ]
    # shellcheck disable=SC2046
    "$compiler" "$host" -o "$scratch/pkg-config-host" $(pkg-config --cflags --libs tessel)
    run_host "$scratch/pkg-config-host"
    ;;
esac
