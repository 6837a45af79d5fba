#!/bin/sh
# Installs the component into a temporary prefix and uses it as a host would: the example is
# built against it with find_package and with pkg-config and run headless, the shared library
# is checked for its soname and its exports, and the Designer plugin is loaded by the probe.
# Arguments: the build folder, the examples folder, the plugin probe.
set -eu
build=$1
examples=$2
probe=$3
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix
fail() { echo "install test: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >/dev/null
lib=$prefix/lib
[ -L "$lib/libzentrel.so" ] && [ -L "$lib/libzentrel.so.1" ] && [ -f "$lib/libzentrel.so.1.0.0" ] || fail "library links missing"
readelf -d "$lib/libzentrel.so.1.0.0" | grep -q 'SONAME.*\[libzentrel.so.1\]' || fail "soname is not libzentrel.so.1"
for f in ZentrelConfig.cmake ZentrelConfigVersion.cmake ZentrelTargets.cmake; do
  [ -f "$lib/cmake/Zentrel/$f" ] || fail "$f not installed"
done
[ -f "$lib/pkgconfig/zentrel.pc" ] || fail "zentrel.pc not installed"

# Only the public API is exported: the widget, the entry points, the document factory and the
# component layer's value types; no class of the control or of the document leaks.
exports=$(nm -D --defined-only -C "$lib/libzentrel.so.1.0.0")
for name in DllGetClassObject DllCanUnloadNow DllRegisterServer ZentrelCreateHtmlDocument \
            'ZentrelWidget::staticMetaObject' 'ZentrelPropertySheet::ZentrelPropertySheet'; do
  echo "$exports" | grep -q "$name" || fail "$name is not exported"
done
if echo "$exports" | grep -E 'CZentrelCtrl|CHtmlDocument|CLineIndex|CQtPlatform|CBookmark'; then
  fail "internal symbols are exported"
fi
echo "exported symbols: $(echo "$exports" | wc -l)"

# The example through find_package, and through pkg-config; the compiler cache, if there is
# one, sees the same files under the temporary folder each time.
launcher=$(command -v ccache || true)
export CCACHE_BASEDIR=$tmp
cmake -S "$examples" -B "$tmp/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
      ${launcher:+-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher} >/dev/null || fail "find_package(Zentrel) failed"
cmake --build "$tmp/cmake-build" >/dev/null || fail "the example does not build with find_package"
cp "$examples/zentrel-example.cpp" "$tmp/"
PKG_CONFIG_PATH=$lib/pkgconfig
export PKG_CONFIG_PATH
# shellcheck disable=SC2046
$launcher c++ -std=c++20 -fPIC "$tmp/zentrel-example.cpp" -o "$tmp/pc-example" \
  $(pkg-config --cflags --libs zentrel) -Wl,-rpath,"$lib" || fail "the example does not build with pkg-config"

for example in "$tmp/cmake-build/zentrel-example" "$tmp/pc-example"; do
  out=$("$example" --check) || fail "$example --check failed"
  echo "$out"
  echo "$out" | grep -q '^changed .* at 16 count ' || fail "$example: no event of the cut"
  echo "$out" | grep -q '^lines 7 tabSize 4 showLineNumber 1 selection 16-16$' || fail "$example: unexpected report"
done
out=$("$tmp/cmake-build/zentrel-example" --store "$tmp/classes.reg") || fail "creation through the store failed"
echo "$out"
grep -qx "=$(realpath "$lib")/libzentrel.so.1.0.0" "$tmp/classes.reg" || fail "the store does not name the installed library"

"$probe" "$lib/qt6/plugins/designer/libzentreldesigner.so" || fail "the Designer plugin does not load"
