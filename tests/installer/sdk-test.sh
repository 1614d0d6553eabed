#!/usr/bin/env bash
# Unpacks the packages' zips and does what their README tells a program's author: finds the package with CMake, builds the
# example in C++ and in C from nothing else, and runs it with the packed library of its width, and the language files of the
# other, which serve as well.
. "$(dirname "${BASH_SOURCE[0]}")/../../tools/common.sh"

try="$BUILD/package/a program"
rm -rf "$try"
mkdir "$try"
(cd "$BUILD/package" && sha256sum --check --strict --quiet SHA256SUMS)
for zip in "$BUILD"/package/*.zip; do
    (cd "$try" && cmake -E tar xf "$zip")
done
sdk=$(ls -d "$try"/VixaVideoFX-*-sdk)
stage=$(ls -d "$try"/VixaVideoFX-*-x86-x64)
mkdir "$try/x86"
mv "$stage"/x86/*.nls "$try/x86/"
mv "$stage"/x64/*.nls "$stage/x86/"
mv "$try"/x86/*.nls "$stage/x64/"

# The README's own lines, for a host in each language.
{
    printf 'cmake_minimum_required(VERSION 3.14)\nproject(TheirHost C CXX)\n'
    for language in c cpp; do
        printf 'add_executable(my_host "%s/examples/host.%s")\n' "$sdk" $language
        sed -n 's/^    \(find_package(.*\|target_link_libraries(.*\)/\1/p' "$sdk/README.md" | sed "s|this/folder|\"$sdk\"|"
        printf 'target_link_libraries(my_host PRIVATE ole32 user32 strmiids)\ntarget_link_options(my_host PRIVATE -municode -static)\n'
    done | awk '/^add_executable/ { host = "my_host" ++n } { gsub(/my_host/, host); print }'
} >"$try/CMakeLists.txt"
[ "$(grep -c '^find_package' "$try/CMakeLists.txt")" = 2 ] || fail "The SDK's README names no package to be found."

for folder in x86:32:i686 x64:64:x86_64; do
    IFS=: read -r folder width machine <<<"$folder"
    (cd "$try" && cmake -G Ninja -B "build$width" -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_C_COMPILER=$machine-w64-mingw32-gcc-posix \
        -DCMAKE_CXX_COMPILER=$machine-w64-mingw32-g++-posix . && cmake --build "build$width") >"$LOGS/sdk-$width.log" 2>&1 ||
        fail "The example cannot be built from the SDK for $width bit; see $LOGS/sdk-$width.log"
    [ $width = 64 ] || runs32 || { say "32-bit programs don't run here: built and not run"; continue; }
    for host in "$try/build$width"/my_host?.exe; do
        said=$("$ROOT/tools/wine-run.sh" "$host" "$stage/$folder/VixaVideoFX.dll" | tr -d '\r')
        [[ $said == *"called Gammakorrektur"*"404040 becomes 6B6B6B"* ]] ||
            fail "$host does not run with the packed library; it says: $said"
    done
done
say "The example was built from the SDK and ran with the packed libraries."
