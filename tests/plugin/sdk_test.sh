#!/usr/bin/env bash
# Plug-ins are built outside the tree, against an installed prefix alone: by the CMake package and by
# pkg-config, in C99 and in C++11 with all warnings as errors. What comes out is loaded.
#   sdk_test.sh SOURCE BUILD PROGRAM
set -euo pipefail
source=$1 build=$2 program=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --component sdk --prefix "$work/prefix" >"$work/log" || { cat "$work/log"; exit 1; }
mv "$work/prefix" "$work/moved" # it can be anywhere

mkdir "$work/project"
cp "$source"/examples/plugin-* "$work/project"
cat >"$work/project/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.18)
project(my_plugins C CXX)
find_package(vesk 3 REQUIRED)
foreach(name command importer filter)
    vesk_add_plugin(plugin-${name} plugin-${name}.c)
endforeach()
vesk_add_plugin(plugin-menu plugin-menu.cpp)
file(WRITE ${CMAKE_BINARY_DIR}/folder ${VESK_PLUGIN_DIR})
END
cmake -S "$work/project" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/moved" \
    -DCMAKE_C_FLAGS="-Wall -Wextra -Wpedantic -Werror" >"$work/log" || { cat "$work/log"; exit 1; }
cmake --build "$work/build" >"$work/log" || { cat "$work/log"; exit 1; }
[ "$(cat "$work/build/folder")" = "$work/moved/lib/vesk/plugins" ]
"$program" -noplugins -batch "$source/tests/tcl/example_plugins.tcl" "$work/build" "$work"

export PKG_CONFIG_PATH=$work/moved/share/pkgconfig
flags=$(pkg-config --cflags vesk)
strict="-Wall -Wextra -Wpedantic -Wundef -Wshadow -Werror"
cc -std=c99 $strict $flags -shared "$source/examples/plugin-command.c" -o "$work/by_hand.p"
c++ -std=c++11 $strict $flags -shared "$source/examples/plugin-menu.cpp" -o "$work/menu_by_hand.p"
[ "$(pkg-config --variable=plugindir vesk)" = "$work/moved/share/pkgconfig/../../lib/vesk/plugins" ]
printf 'vesk plugin_load %s/by_hand.p\nvesk plugin_load %s/menu_by_hand.p\nputs [vesk count_triangles]' \
    "$work" "$work" >"$work/load.tcl"
[ "$("$program" -noplugins -batch "$work/load.tcl" 2>/dev/null)" = 0 ]

# The guide's examples, word for word.
guide=$source/docs/plugins.md
block() { # LANGUAGE NUMBER
    awk -v begin="\`\`\`$1" -v number="$2" \
        '/^```/ {inside = $0 == begin && ++n == number; next} inside' "$guide"
}
mkdir "$work/guide"
block c 1 >"$work/guide/hello.c"
block c 2 >"$work/guide/pyramid.c"
block cmake 1 >"$work/guide/CMakeLists.txt"
echo "vesk_add_plugin(pyramid pyramid.c)" >>"$work/guide/CMakeLists.txt"
cmake -S "$work/guide" -B "$work/guide/build" -DCMAKE_PREFIX_PATH="$work/moved" >"$work/log" || { cat "$work/log"; exit 1; }
cmake --build "$work/guide/build" >"$work/log" || { cat "$work/log"; exit 1; }
cmake --install "$work/guide/build" >"$work/log" || { cat "$work/log"; exit 1; }
by_hand=$(sed -n 's/^By hand: `\([^`]*\)`.*/\1/p' "$guide")
(cd "$work/guide" && eval "$by_hand")
for made in "$work/moved/lib/vesk/plugins/hello.p" "$work/guide/hello.p"; do
    printf 'vesk plugin_load %s\nvesk hello' "$made" >"$work/hello.tcl"
    "$program" -noplugins -batch "$work/hello.tcl" 2>&1 | grep -q "hello from a plug-in"
done
cat >"$work/pyramid.tcl" <<END
vesk plugin_load $work/guide/build/pyramid.p
vesk pyramid 1.5
puts "[vesk get_counts] [lrange [vesk check_counts] 0 1]"
vesk undo
puts [vesk get_counts]
END
[ "$("$program" -noplugins -batch "$work/pyramid.tcl" 2>/dev/null)" = "0 1 0 5 0 5 open_edge 0
0 0 0 0 0 0" ]
echo "plug-ins build from an installed prefix"
