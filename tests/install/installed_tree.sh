#!/usr/bin/env bash
# Installs a build, moves the tree, and builds the README's C program and a C++ program against it in both ways, by
# find_package and by pkg-config. Each program must turn real text into what the other made of it.
#
#   installed_tree.sh BUILD SOURCE WORK CC CXX
set -euo pipefail
build=$1 source=$2 work=$3 cc=$4 cxx=$5
rm -rf "$work"
mkdir -p "$work"
unset ZELCONV QRD BINPATHX LD_LIBRARY_PATH

cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/moved here"
tree="$work/moved here"

# The example of the README, as it stands there.
sed -n '/^```c$/,/^```$/p' "$source/README.md" | sed '/^```/d' >"$work/example.c"
[[ -s $work/example.c ]] || { echo "README.md has no example in C"; exit 1; }
text=$source/examples/samples/japanese.txt

# try NAME C_PROGRAM CXX_PROGRAM CONVMAP
try() {
    "$3" "$4" UTF-8 SHIFT-JIS <"$text" >"$work/$1.sjis"
    "$2" "$4" <"$work/$1.sjis" >"$work/$1.utf8"
    cmp "$text" "$work/$1.utf8"
    ! cmp -s "$text" "$work/$1.sjis"
    echo "$1: C and C++ programs turned $(stat -c %s "$text") bytes into Shift-JIS and back"
}

cmake -S "$source/tests/install/project" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$tree" -DCMAKE_C_COMPILER="$cc" \
    -DCMAKE_CXX_COMPILER="$cxx" -DC_SOURCE="$work/example.c" -DCXX_SOURCE="$source/tests/install/program.cpp" \
    >"$work/cmake.log"
cmake --build "$work/cmake" >>"$work/cmake.log"
try find_package "$work/cmake/c_program" "$work/cmake/cxx_program" "$(cat "$work/cmake/convmap.path")"

export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$tree" -name nls.pc)")
eval "flags=($(pkg-config --cflags nls))"
eval "libs=($(pkg-config --libs nls))"
eval "convmap=$(pkg-config --variable=convmap nls)"
"$cc" -std=c11 -D_GNU_SOURCE -Wall -Wextra -Werror "${flags[@]}" "$work/example.c" "${libs[@]}" -o "$work/c_program"
"$cxx" -std=c++20 -Wall -Wextra -Werror -pthread "${flags[@]}" "$source/tests/install/program.cpp" "${libs[@]}" -o "$work/cxx_program"
export LD_LIBRARY_PATH=${libs[0]#-L}
try pkg-config "$work/c_program" "$work/cxx_program" "$convmap"
unset LD_LIBRARY_PATH

# The installed classes find libnls.so, which finds libjutil.so beside itself.
if [[ -f $tree/share/java/nls.jar ]]; then
    printf 'charset SHIFT-JIS\n1001 %s\n' "$(head -n 1 "$text")" >"$work/messages.txt"
    "$tree/bin/mkmessages" -D "$convmap" "$work/messages.txt" -o "$work/zelmsgs.jpn"
    LC_ALL=C.UTF-8 ZELCONV=$convmap java -Dfile.encoding=UTF-8 -Djava.library.path="$(dirname "$(find "$tree" -name libnls.so)")" \
        -cp "$tree/share/java/nls.jar" "$source/tests/install/Program.java" "$work/zelmsgs.jpn" >"$work/java.utf8"
    head -n 1 "$text" | cmp - "$work/java.utf8"
    echo "nls.jar: a Java program reads a message in Shift-JIS"
fi

# The tools find libnls.so and the data file beside themselves, also by way of a link from elsewhere.
"$tree/bin/mkconvmap" --help >/dev/null
ln -s "$tree/bin/nls" "$work/nls"
for nls in "$tree/bin/nls" "$work/nls"; do
    "$nls" convert -f UTF-8 -t SHIFT-JIS "$text" | cmp - "$work/pkg-config.sjis"
    # So it does ICU's packs, where they were built.
    [[ ! -d $build/icu/packs ]] || "$nls" doctor | grep -F "the packs of this program" >/dev/null
    [[ ! -d $build/icu/packs ]] || [[ $("$nls" compare -l UTF-8/ICU-sv Zorn Åkesson) == "<" ]]
done
echo "nls: the installed command makes the same of it"

# So does the extension for SQLite, where it was built and the shell is there.
extension=$(find "$tree" -path '*/nls/nls.so')
if [[ -n $extension ]] && command -v sqlite3 >/dev/null; then
    [[ $(sqlite3 :memory: "SELECT load_extension('${extension%.so}')" \
        "SELECT hex(nls_convert('ö', 'UTF-8', 'SHIFT-JIS', 'subst')), nls_upper('ö')") == $'\n'*Ö ]]
    echo "nls.so: SQLite loads the installed extension"
fi
