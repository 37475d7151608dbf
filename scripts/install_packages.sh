#!/usr/bin/env bash
# Lists the Debian packages that Tidyfold needs and installs those that are missing.
#
#   scripts/install_packages.sh run          for ./run: build the programs and show the window
#   scripts/install_packages.sh test         for ./test
#   scripts/install_packages.sh check        for scripts/check_sources.sh
#   scripts/install_packages.sh package      for ./package
#   scripts/install_packages.sh fuzz         for ./fuzz
#   scripts/install_packages.sh windows      for ./test windows: build and test the Windows program here
#   scripts/install_packages.sh --list run   only print the names
#
# Neither runs apt nor asks for a password if nothing is missing.
set -euo pipefail

to_build=(
  g++
  cmake
  ninja-build
  pkg-config
  libwxgtk3.2-dev      # the window
  libwxgtk-webview3.2-dev  # on-line help in a window of its own; without it, in the system's browser
  libwebkit2gtk-4.0-dev    # its page engine
  libgtk-3-dev         # for calls below wxWidgets
  libsqlite3-dev       # the embedded store
  libzstd-dev          # compresses what it keeps
  libpff-dev           # PST, OST, PAB
  libgmime-3.0-dev     # dates and encodings of mail
  libical-dev          # iCalendar
  libgsf-1-dev         # MSG
  libutf8proc-dev      # case mapping
  libcurl4-openssl-dev # connections to mail servers
  libsecret-1-dev      # the desktop's keyring; can be left out
  libcli11-dev         # the command line
  nlohmann-json3-dev
  libchm-dev           # the help book
  fp-utils             # its compiler, chmcmd
  python3              # puts right what that makes
)
to_show=(
  adwaita-icon-theme   # icons
  librsvg2-common      # icons in SVG
  fonts-dejavu-core    # at least one font
)
to_test=(
  libgtest-dev
  libgmock-dev
  libbenchmark-dev
  xvfb                 # a virtual screen
  openbox              # a window manager
  xdotool              # mouse and keyboard
  imagemagick          # the colours on the screen
  dbus-daemon          # what a screen reader is told, on a bus of the test's own
  at-spi2-core
  gir1.2-atspi-2.0
  python3-gi
  mutt                 # reads what was exported
  mblaze
  dovecot-imapd        # a mail server
)
to_check=(
  clang-format         # layout of the sources
  clang-tidy           # static checks
)
to_package=(
  dpkg-dev
  fakeroot
  debhelper
  lintian              # looks packages over
  appstream            # and what software centres are told
  desktop-file-utils   # and the menu entry
  help2man             # manual pages from --help
  librsvg2-bin         # the icon in its sizes
)
to_fuzz=(
  clang
  libclang-rt-14-dev   # libFuzzer
)
# Libraries for Windows are built in the versions of this machine's development packages.
for_windows=(
  cmake
  ninja-build
  pkg-config
  g++                  # merges SQLite's sources, with tcl
  tcl
  make
  dpkg-dev             # unpacks source packages
  g++-mingw-w64-x86-64-posix
  wine
  wine64
  fonts-wine           # fonts that Windows has
  nsis                 # the installer
  osslsigncode         # signs it, where there is a key
  openssl              # a key to try that with
  libwxgtk3.2-dev
  libsqlite3-dev
  libzstd-dev
  libutf8proc-dev
  libcli11-dev
  nlohmann-json3-dev
  googletest
  fp-utils             # the help book
  librsvg2-bin         # the icon
  imagemagick          # the icon, screenshots
  python3
  xvfb
  xauth
  xdotool
  fonts-dejavu-core
)

usage() { sed -n '2,12s/^# \{0,1\}//p' "$0"; }

only_list=no
if [[ ${1:-} == --list ]]; then
  only_list=yes
  shift
fi
case ${1:-} in
  run) needed=("${to_build[@]}" "${to_show[@]}") ;;
  test) needed=("${to_build[@]}" "${to_show[@]}" "${to_test[@]}" "${to_package[@]}") ;;
  package) needed=("${to_build[@]}" "${to_package[@]}") ;;
  check) needed=("${to_check[@]}") ;;
  fuzz) needed=("${to_build[@]}" "${to_test[@]}" "${to_fuzz[@]}") ;;
  windows) needed=("${for_windows[@]}") ;;
  -h | --help) usage && exit 0 ;;
  *) usage >&2 && exit 2 ;;
esac

if [[ $only_list == yes ]]; then
  printf '%s\n' "${needed[@]}"
  exit 0
fi

if ! command -v apt-get >/dev/null; then
  echo "This system has no apt-get: nothing was installed. Needed, by their Debian names:" >&2
  echo "  ${needed[*]}" >&2
  exit 0
fi

is_installed() { [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]; }
missing=()
for package in "${needed[@]}"; do
  is_installed "$package" || missing+=("$package")
done
if ((${#missing[@]} == 0)); then exit 0; fi

echo "Installing: ${missing[*]}"
as_root=()
if ((EUID != 0)); then
  if ! command -v sudo >/dev/null; then
    echo "There is no sudo here. Install these as root, then start again:" >&2
    echo "  apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=600 -o Acquire::Retries=3 "$@"
}
update() {
  # One of several sources may fail; the installation shows whether it matters.
  apt update || echo "Not all package lists could be updated; continuing with the others." >&2
}
install() { apt install --yes --no-install-recommends "${missing[@]}"; }

# Missing or outdated lists show up as packages that apt does not know or find.
if apt-get -qq install --simulate --no-install-recommends "${missing[@]}" >/dev/null 2>&1 && install; then exit 0; fi
update
install
