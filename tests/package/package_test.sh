#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Packs what is built, installs each package into an empty folder, and uses it there without anything else of ours.
# Usage: package_test.sh CPACK SOURCE BUILD
set -euo pipefail
cpack=$1 source=$2 build=$3

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "package_test: $*" >&2; exit 1; }

"$cpack" --config "$build/CPackConfig.cmake" -B "$folder/packed" >"$folder/log" 2>&1 || fail "$(cat "$folder/log")"
archive=("$folder"/packed/vhl-*.tar.gz)
package=("$folder"/packed/vhl_*.deb)
version=$(sed -nE 's/^project\(vhl VERSION ([0-9.]+).*/\1/p' "$source/CMakeLists.txt")
for file in "$archive" "$package"; do
    (cd "$folder/packed" && sha256sum --quiet -c "$(basename "$file").sha256") || fail "wrong checksum of $file"
done

clean() { env -i PATH=/usr/bin:/bin HOME="$folder" "$@"; }

# What holds wherever it is installed: programs, folder with examples, manual pages.
check_installed() # prefix, folder of docs/, examples/ and reference/
{
    local prefix=$1 doc=$2 file page
    [[ $(clean "$prefix/bin/vhrender" -version) == "vhrender $version" ]] || fail "$prefix: another vhrender"
    clean "$prefix/bin/vhpano" --help | grep -q -- --rotate || fail "$prefix: vhpano has no help"
    # The picture of the render test, by the libraries and declarations beside the program.
    clean "$prefix/bin/vhrender" -resolution 160 120 -samples 1 1 -o "$folder/first.png" "$doc/examples/first.mi"
    idiff -q -fail 0.0157 -failpercent 1 -warn 1 "$folder/first.png" "$source/tests/scenes/reference/first.png" ||
        fail "$prefix: another picture"
    rm "$folder/first.png"
    clean "$prefix/bin/vhrender" -o "$folder/recipe.png" "$doc/examples/recipes/vhrSepiaColor_v1.mi"
    idiff -q -fail 0.0157 -failpercent 1 -warn 1 "$folder/recipe.png" "$source/docs/pictures/recipes/vhrSepiaColor_v1.png" ||
        fail "$prefix: another picture of a recipe"
    rm "$folder/recipe.png"

    for page in vhrender vhpano; do
        file=$(find "$prefix/share/man/man1" -name "$page.1*")
        [[ -z $({ zcat -f "$file" | groff -mdoc -ww -Tutf8 >"$folder/page"; } 2>&1) ]] || fail "$file has warnings"
        grep -q "$page" "$folder/page" || fail "$file is another page"
        bash -c '. "$1" && complete -p "$2"' - "$prefix/share/bash-completion/completions/$page" $page >/dev/null ||
            fail "$prefix: no completion of $page"
    done
    for file in docs/README.md docs/reference/README.md docs/first.png examples/tile.png \
        reference/{index.html,recipes.html,pictures/vhAddColor_v2.png}; do
        [[ -s $doc/$file ]] || fail "$doc/$file is missing"
    done
    "$source/tests/docs/links_test.sh" "$doc"

    # For programs: what pkg-config says is there.
    local options option
    options=$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig PKG_CONFIG_ALLOW_SYSTEM_LIBS=1 pkg-config --cflags --libs vhl)
    [[ $options == *-lvhl_core* && -s $prefix/lib/libvhl_core.a ]] || fail "$prefix: no library for programs"
    [[ -s $prefix/include/vhl/noise.h && -s $prefix/lib/cmake/vhl/vhlConfig.cmake ]] || fail "$prefix: no headers"

    # Nothing remembers where it was built, and programs look for libraries nowhere but in the system's folders.
    file=$(grep -rlF -e "$source/" -e "$build/" "$prefix") && fail "these know where they were built: $file"
    while read -r file; do
        readelf -d "$file" | grep -E 'R(UN)?PATH' | grep -v 'ORIGIN' && fail "$file has a fixed path"
    done < <(find "$prefix" -type f \( -name '*.so' -o -path '*/bin/*' \))
    file=$(find "$prefix" -perm /022 ! -type l)
    [[ -z $file ]] || fail "others may write to $file"
}

# The archive, in a folder with a space.
mkdir "$folder/some where"
tar xf "$archive" -C "$folder/some where"
unpacked=("$folder/some where"/*)
[[ ${#unpacked[@]} -eq 1 && $(basename "$unpacked") == "$(basename "$archive" .tar.gz)" ]] ||
    fail "unpacks as ${unpacked[*]}"
[[ $(ls "$unpacked" | paste -sd' ') == "CHANGELOG.md CONTRIBUTING.md LICENSE README.md bin docs examples include lib reference share" ]] ||
    fail "the archive holds $(ls "$unpacked")"
for file in lib/{libvhl,base}.so include/{vhl,recipes,base}.mi; do
    [[ -s $unpacked/$file ]] || fail "$file is missing in the archive"
done
check_installed "$unpacked" "$unpacked"

# Debian's package, in an empty root.
field() { dpkg-deb -f "$package" "$1"; }
[[ $(field Package) == vhl && $(field Version) == "$version-1" ]] || fail "another package"
[[ $(field Architecture) == "$(dpkg --print-architecture)" ]] || fail "for another architecture"
[[ -z $(field Description | awk 'length > 80') ]] || fail "the description has lines that are too long"
[[ $(field Maintainer) =~ ^.+\ \<.+@.+\>$ ]] || fail "Maintainer: $(field Maintainer)"
[[ $(field Section) == graphics && $(field Priority) == optional ]] || fail "no section or priority"
for library in libc6 libstdc++6 libembree3 libopenimageio libtbb; do
    [[ $(field Depends) == *"$library"* ]] || fail "does not depend on $library: $(field Depends)"
done
field Description >"$folder/description"
[[ $(head -1 "$folder/description") =~ ^[a-z].{1,78}[^.]$ ]] || fail "the short description is against the rules"
[[ $(wc -l <"$folder/description") -gt 3 && -z $(grep -E '.{110}' "$folder/description") ]] || fail "so is the long one"
[[ -z $(dpkg-deb -c "$package" | awk '$2 != "root/root"') ]] || fail "files of someone else"

root=$folder/root
mkdir -p "$root/var/lib/dpkg/"{info,updates,triggers}
touch "$root/var/lib/dpkg/"{status,available}
# (Some containers leave manuals out.)
install()
{
    dpkg --root="$root" --path-include='/usr/share/*' --force-depends --force-bad-path --log="$folder/dpkg" "$@" \
        >"$folder/log" 2>&1
}
if [[ $EUID -eq 0 ]]; then
    install -i "$package" || fail "$(cat "$folder/log")"
else # nobody else may give files to root
    dpkg-deb -x "$package" "$root"
    dpkg-deb -e "$package" "$folder/control"
    cp "$folder/control/md5sums" "$root/var/lib/dpkg/info/vhl.md5sums"
fi
(cd "$root" && md5sum --quiet -c var/lib/dpkg/info/vhl.md5sums) || fail "files differ from their sums"
check_installed "$root/usr" "$root/usr/share/doc/vhl"
for file in lib/vhl/{lib/{libvhl,base}.so,include/{vhl,recipes,base}.mi} share/doc/vhl/copyright; do
    [[ -s $root/usr/$file ]] || fail "/usr/$file is missing"
done
[[ -n $(zcat "$root/usr/share/doc/vhl/changelog.gz") ]] || fail "no list of changes"
[[ $(zcat "$root/usr/share/doc/vhl/changelog.Debian.gz") == "vhl ($version-1) unstable; "*" -- $(field Maintainer)  "* ]] ||
    fail "Debian's list of changes is of another package"
[[ $(readlink "$root/usr/bin/vhrender") == ../* ]] || fail "/usr/bin/vhrender is no relative link"
if [[ $EUID -eq 0 ]]; then
    install -r vhl || fail "$(cat "$folder/log")"
    [[ ! -e $root/usr/lib && ! -e $root/usr/share ]] || fail "left behind: $(find "$root/usr")"
fi
