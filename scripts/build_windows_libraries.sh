#!/usr/bin/env bash
# Builds the libraries of the Windows program from the distribution's source packages, once.
#
#   scripts/build_windows_libraries.sh core   SQLite, zstd, utf8proc, GoogleTest and the libraries that are headers only
#   scripts/build_windows_libraries.sh        these, and wxWidgets (about six minutes on two free cores)
#
# Results are kept in $TIDYFOLD_CACHE, by default ~/.cache/tidyfold, in folders named by version and a key of compiler
# and options, and are not built again. build/windows-libraries/ links to the ones in use. The versions are those of
# the development packages that are installed on this machine.
set -euo pipefail

home=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
case ${1:-} in
  core) with_wxwidgets=no ;;
  '') with_wxwidgets=yes ;;
  -h | --help) sed -n '2,9s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" && exit 0 ;;
  *) echo "${BASH_SOURCE[0]}: unknown argument '$1'. Try --help." >&2 && exit 2 ;;
esac

cache=${TIDYFOLD_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tidyfold}/windows
links=$home/build/windows-libraries
host=x86_64-w64-mingw32
export CC=$host-gcc-posix CXX=$host-g++-posix AR=$host-ar RANLIB=$host-ranlib
jobs=${TIDYFOLD_JOBS:-$(nproc)}
# Part of the key: the edition of this script's recipes, and the compiler.
edition="1 $($CXX -dumpfullversion) $(dpkg-query -W -f='${Version}' mingw-w64-common)"

scratch=$(mktemp -d "${TMPDIR:-/tmp}/tidyfold-libraries-XXXXXX")
trap 'rm -rf "$scratch"' EXIT

version_of() { dpkg-query -W -f="\${source:Version}" "$1"; }
key_of() { printf '%s\n' "$edition" "$@" | sha256sum | cut -c1-10; }

# Parallel builds would build the same library twice.
mkdir -p "$cache" "$links"
exec 9>"$cache/lock"
flock 9

# Keeps the lists of source packages in a directory of our own, from this machine's sources, so that neither root
# rights nor changed settings are needed. apt checks signatures and checksums as usual.
apt_of_sources() {
  apt-get -q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$scratch/sources.list.d" \
    -o Dir::State::Lists="$scratch/lists" -o Dir::Cache="$scratch/cache" -o APT::Sandbox::User="$(id -un)" \
    -o Acquire::Retries=3 "$@"
}
know_source_packages() {
  if [[ -d $scratch/lists ]]; then return; fi
  mkdir -p "$scratch"/{sources.list.d,lists/partial,cache/archives/partial}
  local file
  for file in /etc/apt/sources.list.d/*.sources; do
    if [[ -f $file ]]; then
      sed 's/^Types:.*/Types: deb-src/' "$file" >"$scratch/sources.list.d/$(basename "$file")"
    fi
  done
  cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    sed -n 's/^deb[[:space:]]/deb-src /p' >"$scratch/sources.list.d/one-line.list" || true
  apt_of_sources update || echo "Not every list of source packages could be read; going on with the others." >&2
}
# fetch PACKAGE VERSION: unpacks its source with the distribution's patches and prints the folder.
fetch() {
  know_source_packages >&2
  mkdir -p "$scratch/source"
  (cd "$scratch/source" && apt_of_sources source "$1=$2" >&2) || {
    echo "The source of $1 $2 could not be fetched. Is the installed package older than the archive's? Try" >&2
    echo "apt-get update && apt-get upgrade, and then again." >&2
    exit 1
  }
  find "$scratch/source" -maxdepth 1 -type d -name "$1-*" -print -quit
}

# begin NAME PREFIX: false if the library exists. Its folder counts only if it has the file `complete`.
begin() {
  if [[ -f $2/complete ]]; then
    echo "$1: there, in $2"
    return 1
  fi
  rm -rf "$2"
  mkdir -p "$2"
  started=$SECONDS
  echo "$1: building in $2"
}
finish() {
  touch "$2/complete"
  echo "$1: built in $((SECONDS - started)) s"
}

build_core() {
  local sqlite_version zstd_version utf8proc_version prefix
  sqlite_version=$(version_of libsqlite3-dev)
  zstd_version=$(version_of libzstd-dev)
  utf8proc_version=$(version_of libutf8proc-dev)
  # The options of the distribution's SQLite that Tidyfold relies on: deleted mail is overwritten.
  local sqlite_options=(-DSQLITE_THREADSAFE=1 -DSQLITE_SECURE_DELETE -DSQLITE_OMIT_LOAD_EXTENSION)
  prefix=$cache/core-$(key_of "$sqlite_version" "$zstd_version" "$utf8proc_version" "${sqlite_options[*]}" "$(version_of googletest)" \
    "$(version_of libcli11-dev)" "$(version_of nlohmann-json3-dev)")
  ln -sfn "$prefix" "$links/core"
  begin "core libraries" "$prefix" || return 0
  mkdir -p "$prefix"/{include,lib/pkgconfig,share/cmake}

  # Header-only libraries: this machine's, without the rest of /usr/include.
  cp -r /usr/include/CLI /usr/include/nlohmann "$prefix/include/"
  cp -r /usr/share/cmake/CLI11 /usr/share/cmake/nlohmann_json "$prefix/share/cmake/"

  local source
  source=$(fetch sqlite3 "$sqlite_version")
  mkdir "$scratch/sqlite"
  (
    cd "$scratch/sqlite"
    # This machine's tools make the amalgamated C file.
    CC=gcc AR=ar RANLIB=ranlib "$source/configure" --disable-shared --disable-readline >configure.log
    CC=gcc AR=ar RANLIB=ranlib make sqlite3.c sqlite3.h >make.log
    $CC -O2 "${sqlite_options[@]}" -c sqlite3.c -o sqlite3.o
    $AR rcs "$prefix/lib/libsqlite3.a" sqlite3.o
    cp sqlite3.h "$prefix/include/"
  )

  source=$(fetch libzstd "$zstd_version")
  mkdir "$scratch/zstd"
  (
    cd "$scratch/zstd"
    # The assembler part is for other object formats.
    $CC -O2 -DZSTD_DISABLE_ASM -c "$source"/lib/{common,compress,decompress}/*.c
    $AR rcs "$prefix/lib/libzstd.a" ./*.o
    cp "$source"/lib/zstd.h "$source"/lib/zstd_errors.h "$prefix/include/"
  )
  cat >"$prefix/lib/pkgconfig/libzstd.pc" <<PC
prefix=$prefix
Name: libzstd
Description: compression
Version: ${zstd_version%%+*}
Libs: -L\${prefix}/lib -lzstd
Cflags: -I\${prefix}/include
PC

  source=$(fetch utf8proc "$utf8proc_version")
  (
    cd "$source"
    $CC -O2 -DUTF8PROC_STATIC -c utf8proc.c -o utf8proc.o
    $AR rcs "$prefix/lib/libutf8proc.a" utf8proc.o
    cp utf8proc.h "$prefix/include/"
  )
  cat >"$prefix/lib/pkgconfig/libutf8proc.pc" <<PC
prefix=$prefix
Name: libutf8proc
Description: UTF8 processing
Version: ${utf8proc_version%%-*}
Libs: -L\${prefix}/lib -lutf8proc
Cflags: -I\${prefix}/include -DUTF8PROC_STATIC
PC

  cmake -S /usr/src/googletest -B "$scratch/googletest" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$home/cmake/mingw-w64.cmake" -DCMAKE_INSTALL_PREFIX="$prefix" >/dev/null
  cmake --build "$scratch/googletest" --parallel "$jobs" --target install >"$scratch/googletest.log" ||
    { tail -50 "$scratch/googletest.log" >&2 && return 1; }
  finish "core libraries" "$prefix"
}

build_wxwidgets() {
  local version prefix
  version=$(version_of libwxgtk3.2-dev)
  # Leaves out what the program does not link, which would cost build time.
  local options=(
    --disable-shared --enable-unicode --enable-pch --disable-tests --disable-sys-libs
    --enable-webview --enable-webviewie --disable-webviewedge
    --without-libpng --without-libjpeg --without-libtiff --without-zlib --without-nanosvg --without-expat
    --without-regex --without-opengl --without-liblzma --without-libmspack --without-libcurl --without-winhttp
    --disable-propgrid --disable-stc --disable-ribbon --disable-richtext --disable-aui --disable-xrc
    --disable-mediactrl --disable-sockets --disable-protocols --disable-webrequest --disable-ipc
    --disable-debugreport --disable-joystick --disable-sound --disable-secretstore --disable-wizarddlg
    --disable-docview --disable-mdi --disable-svg --disable-gif --disable-pcx --disable-tga --disable-iff
    --disable-pnm --disable-dialupman --disable-html --disable-htmlhelp --disable-addremovectrl
    --disable-animatectrl --disable-bannerwindow --disable-arttango --disable-bmpcombobox --disable-odcombobox
    --disable-colourpicker --disable-fontpicker --disable-commandlinkbutton --disable-editablebox
    --disable-infobar --disable-richtooltip --disable-prefseditor --disable-searchctrl --disable-splash
    --disable-timepick --disable-tipdlg --disable-treelist --disable-uiactionsim --disable-fswatcher
    --disable-tarstream --disable-finddlg --disable-aboutdlg --disable-creddlg --disable-busyinfo
    --disable-graphics-d2d --disable-dragimage --disable-metafile --disable-ps-in-msw --disable-sash
    --disable-snglinst --disable-actindicator --disable-filehistory
  )
  # The least optimization: what the toolkit does is drawn by the system.
  local flags=-O1
  prefix=$cache/wxwidgets-${version%%[+-]*}-$(key_of "$version" "${options[*]}" "$flags")
  # Debian 12's compiler made this one, with more parts; it serves as well.
  local fuller=$cache/wxwidgets-3.2.2-c42a63c206
  if [[ -f $fuller/complete && $(basename "$fuller") == wxwidgets-${version%%[+-]*}-* ]]; then prefix=$fuller; fi
  ln -sfn "$prefix" "$links/wxwidgets"
  begin wxWidgets "$prefix" || return 0
  local source
  source=$(fetch wxwidgets3.2 "$version")
  mkdir "$scratch/wxwidgets"
  (
    cd "$scratch/wxwidgets"
    "$source/configure" --host=$host --build="$(dpkg-architecture -qDEB_BUILD_GNU_TYPE)" --prefix="$prefix" \
      CFLAGS=$flags CXXFLAGS=$flags "${options[@]}" >configure.log || { tail -50 configure.log >&2 && exit 1; }
    make -j"$jobs" >make.log 2>make.errors || { tail -50 make.errors >&2 && exit 1; }
    make install >install.log 2>&1 || { tail -50 install.log >&2 && exit 1; }
  )
  finish wxWidgets "$prefix"
}

build_core
if [[ $with_wxwidgets == yes ]]; then build_wxwidgets; fi
