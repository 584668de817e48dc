# Libraries that Debian has as source only, built for the target. Sourced after common.sh and versions.sh.
# shellcheck shell=bash

THIRD_PARTY="$BUILD/third_party"

# private_apt COMMAND...: apt-get with package lists of its own in the build folder, which hold nothing but sources: the
# system's configuration stays as it is, and no root is needed.
private_apt() {
    local apt="$THIRD_PARTY/apt" options=()
    [ "$(id -u)" != 0 ] || options+=(-o APT::Sandbox::User=root)
    apt-get "${options[@]}" \
        -o Dir::Etc::SourceList="$apt/sources.list" -o Dir::Etc::SourceParts="$apt/none" \
        -o Dir::State::Lists="$apt/lists" -o Dir::Cache="$apt/cache" "$@"
}

# Uses the archive that the system itself is installed from.
prepare_private_apt() {
    local apt="$THIRD_PARTY/apt" archive
    # shellcheck disable=SC2016 # The names are apt's.
    archive=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        awk '$2 == "bookworm" && $3 == "main" { print $1; exit }')
    [ -n "$archive" ] ||
        fail "$STATUS_SETUP" "no Debian 12 (bookworm) archive is configured; its source packages are needed" \
            "add one to /etc/apt/sources.list"
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/none"
    printf 'deb-src [signed-by=%s] %s bookworm main\n' \
        /usr/share/keyrings/debian-archive-keyring.gpg "$archive" >"$apt/sources.list"
    logged apt-sources-update private_apt update ||
        fail "$STATUS_SETUP" "the list of source packages could not be fetched from $archive" \
            "check the network connection, then try again"
}

# fetch_source NAME: unpacks the pinned version below build/third_party/NAME-source. Where the archive has replaced it by
# a security update of the same release, that is taken.
fetch_source() {
    local name=$1 version=${SOURCE_VERSIONS[$1]} folder="$THIRD_PARTY/$1-source"
    prepare_private_apt
    rm -rf "$folder"
    mkdir -p "$folder"
    (cd "$folder" && { logged "fetch-$name" private_apt source --only-source "$name=$version" ||
        logged "fetch-$name" private_apt source --only-source "$name"; }) ||
        fail "$STATUS_SETUP" "the source package $name $version could not be fetched" \
            "check the network connection, then try again"
}

# ensure_benchmark: Google Benchmark in build/third_party/benchmark.
ensure_benchmark() {
    local version=${SOURCE_VERSIONS[benchmark]} install="$THIRD_PARTY/benchmark" work="$THIRD_PARTY/benchmark-build"
    [ "$(cat "$install/version" 2>/dev/null)" != "$version" ] || return 0
    say "[2/4] Google Benchmark $version for the target"
    fetch_source benchmark
    local sources=("$THIRD_PARTY"/benchmark-source/benchmark-*/)
    rm -rf "$work" "$install"
    # The source is no checkout, so its version is given.
    logged configure-benchmark cmake -G Ninja -S "${sources[0]}" -B "$work" \
        -DCMAKE_TOOLCHAIN_FILE="$TESSARY_ROOT/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$install" \
        -DGIT_VERSION="${version%%-*}" \
        -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_WERROR=OFF -DBENCHMARK_INSTALL_DOCS=OFF ||
        fail "$STATUS_SETUP" "Google Benchmark could not be configured" "remove build/third_party and try again"
    logged build-benchmark cmake --build "$work" --target install ||
        fail "$STATUS_SETUP" "Google Benchmark could not be built" "remove build/third_party and try again"
    printf '%s\n' "$version" >"$install/version"
}

# ensure_sqlite: SQLite's amalgamation and its extension that recovers damaged files in build/third_party/sqlite, as
# sources: they are compiled with the database server.
ensure_sqlite() {
    local version=${SOURCE_VERSIONS[sqlite3]} install="$THIRD_PARTY/sqlite" file
    [ "$(cat "$install/version" 2>/dev/null)" != "$version" ] || return 0
    say "[2/4] SQLite $version"
    fetch_source sqlite3
    local sources=("$THIRD_PARTY"/sqlite3-source/sqlite3-*/)
    rm -rf "$install"
    mkdir -p "$install"
    (cd "${sources[0]}" && logged configure-sqlite ./configure && logged build-sqlite make sqlite3.c) ||
        fail "$STATUS_SETUP" "SQLite could not be prepared" "remove build/third_party and try again"
    for file in sqlite3.c sqlite3.h sqlite3ext.h ext/recover/sqlite3recover.c ext/recover/sqlite3recover.h \
        ext/recover/dbdata.c; do
        cp "${sources[0]}/$file" "$install/" || fail "$STATUS_SETUP" "the source of SQLite has no $file"
    done
    printf '%s\n' "$version" >"$install/version"
}

# ensure_libdxfrw: libdxfrw, which is part of LibreCAD, in build/third_party/libdxfrw, with our patch, as sources: they are
# compiled with the DWG reader.
ensure_libdxfrw() {
    local version=${SOURCE_VERSIONS[librecad]} install="$THIRD_PARTY/libdxfrw" key
    local patch="$TESSARY_ROOT/dwgreader/libdxfrw.patch"
    key="$version, patch $(cksum <"$patch")"
    [ "$(cat "$install/version" 2>/dev/null)" != "$key" ] || return 0
    say "[2/4] libdxfrw of LibreCAD $version"
    fetch_source librecad
    local sources=("$THIRD_PARTY"/librecad-source/librecad-*/)
    rm -rf "$install" "$install.new"
    mkdir -p "$install.new"
    cp -r "${sources[0]}/libraries/libdxfrw/src" "$install.new/" ||
        fail "$STATUS_SETUP" "the source of LibreCAD has no libraries/libdxfrw/src"
    logged patch-libdxfrw patch -d "$install.new" -p1 --no-backup-if-mismatch -i "$patch" ||
        fail "$STATUS_SETUP" "dwgreader/libdxfrw.patch does not fit libdxfrw of LibreCAD $version"
    rm -rf "$THIRD_PARTY/librecad-source"
    printf '%s\n' "$key" >"$install.new/version"
    mv "$install.new" "$install"
}

# build_autotools NAME TITLE OPTION...: configures a fetched source for the target, builds it as a static library and
# installs it in build/third_party/NAME.
build_autotools() {
    local name=$1 title=$2 install="$THIRD_PARTY/$1" work="$THIRD_PARTY/$1-build" sources
    shift 2
    sources=("$THIRD_PARTY/$name-source"/*/)
    rm -rf "$work" "$install"
    mkdir -p "$work"
    (cd "$work" && logged "configure-$name" "${sources[0]}configure" --host=x86_64-w64-mingw32 \
        --disable-shared --enable-static --prefix="$install" CFLAGS='-O2 -w' CC=x86_64-w64-mingw32-gcc-posix "$@") ||
        fail "$STATUS_SETUP" "$title could not be configured" "remove build/third_party and try again"
    logged "build-$name" make -C "$work" -j "$(nproc)" install ||
        fail "$STATUS_SETUP" "$title could not be built" "remove build/third_party and try again"
    rm -rf "$work" "$THIRD_PARTY/$name-source"
}

# ensure_gmp: GMP's integers and rationals in build/third_party/gmp.
ensure_gmp() {
    local version=${SOURCE_VERSIONS[gmp]} install="$THIRD_PARTY/gmp"
    [ "$(cat "$install/version" 2>/dev/null)" != "$version" ] || return 0
    say "[2/4] GMP ${version#*:} for the target (about 40 seconds)"
    fetch_source gmp
    local sources=("$THIRD_PARTY"/gmp-source/gmp-*/)
    # Debian leaves out the manual, whose folder configure and make want.
    [ -f "${sources[0]}/doc/Makefile.in" ] ||
        { mkdir -p "${sources[0]}/doc" && printf 'all install:\n' >"${sources[0]}/doc/Makefile.in"; }
    build_autotools gmp GMP CC_FOR_BUILD=gcc
    printf '%s\n' "$version" >"$install/version"
}

# ensure_mpfr: MPFR's floating-point numbers of any precision, over GMP, in build/third_party/mpfr4.
ensure_mpfr() {
    local version=${SOURCE_VERSIONS[mpfr4]} install="$THIRD_PARTY/mpfr4" key
    ensure_gmp
    key="$version, GMP ${SOURCE_VERSIONS[gmp]}"
    [ "$(cat "$install/version" 2>/dev/null)" != "$key" ] || return 0
    say "[2/4] MPFR $version for the target (about 20 seconds)"
    fetch_source mpfr4
    build_autotools mpfr4 MPFR --with-gmp="$THIRD_PARTY/gmp"
    printf '%s\n' "$key" >"$install/version"
}

# ensure_cgal: CGAL and the parts of Boost that it needs are headers only and the same for every target: those of the
# system's packages, through an include folder of their own, since the rest of /usr/include is not the target's.
ensure_cgal() {
    local include="$THIRD_PARTY/cgal/include" library
    ensure_mpfr
    mkdir -p "$include"
    for library in CGAL boost; do
        [ -d "/usr/include/$library" ] ||
            fail "$STATUS_SETUP" "/usr/include/$library is missing" "reinstall it: apt-get install --reinstall libcgal-dev libboost-dev"
        [ -e "$include/$library" ] || ln -sfn "/usr/include/$library" "$include/$library"
    done
}
