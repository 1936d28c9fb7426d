#!/usr/bin/env bash
# An installed copy serves a host: found by CMake and by pkg-config, compiled against, linked and run from a place that
# is not the build tree.
set -euo pipefail

build=${BINARY_DIR:-$(cd "$(dirname "$0")/../.." && pwd)/build/release}
cmake=${CMAKE:-cmake}
cxx=${CXX:-c++}
generator=${GENERATOR:-Ninja}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

"$cmake" --install "$build" --prefix "$prefix" >"$work/install.log"
lib=$(dirname "$(find "$prefix" -name libvarnpdf.so)")

for name in libvarnpdf.so libvarnpdf.so.2 libvarnpdf.so.2.10.0; do
    [[ -e $lib/$name ]] || { echo "$name is not installed" >&2; exit 1; }
done
soname=$(readelf -d "$lib/libvarnpdf.so" | sed -nE 's/.*SONAME.*\[(.*)\]/\1/p')
[[ $soname == libvarnpdf.so.2 ]] || { echo "the soname is \"$soname\"" >&2; exit 1; }

mkdir "$work/host"
cat >"$work/host/host.cpp" <<'SOURCE'
#include <cstdio>
#include <cstring>
#include <varnpdf/varnpdf.h>

int main() {
    CPdf pdf;
    const int code = pdf.Open("/nonexistent/document.pdf", "rb");
    std::printf("%d %s\n", code, varnpdf_message(code));
    return code == -1001 && std::strlen(varnpdf_message(code)) > 0 ? 0 : 1;
}
SOURCE
cat >"$work/host/CMakeLists.txt" <<'SOURCE'
cmake_minimum_required(VERSION 3.25)
project(host LANGUAGES CXX)
find_package(varnpdf 2.10 REQUIRED CONFIG)
find_package(varnpdf 1 QUIET CONFIG)
if(varnpdf_FOUND)
    message(FATAL_ERROR "the package passes for a version it is not")
endif()
find_package(varnpdf 2.10 REQUIRED CONFIG)
add_executable(host host.cpp)
target_link_libraries(host PRIVATE varnpdf::varnpdf)
SOURCE

"$cmake" -G "$generator" -S "$work/host" -B "$work/host/build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" \
    >"$work/configure.log"
"$cmake" --build "$work/host/build" >"$work/build.log" || { cat "$work/build.log" >&2; exit 1; }
"$work/host/build/host"

export PKG_CONFIG_PATH=$lib/pkgconfig
pkg-config --exists --print-errors 'varnpdf >= 2.10 varnpdf < 3'
read -ra flags <<<"$(pkg-config --cflags --libs varnpdf)"
"$cxx" -std=c++20 -o "$work/host/by_pkgconfig" "$work/host/host.cpp" "${flags[@]}"
LD_LIBRARY_PATH=$lib "$work/host/by_pkgconfig"

# The installed program must find the installed library by itself.
if [[ -e $prefix/bin/varnpdf ]]; then
    ldd "$prefix/bin/varnpdf" | grep -F "$work/prefix" | grep -q 'libvarnpdf.so.2' ||
        { echo "the installed program does not take the installed library" >&2; exit 1; }
    "$prefix/bin/varnpdf" --help >/dev/null
fi
echo "the installed copy serves a host by CMake and by pkg-config"
