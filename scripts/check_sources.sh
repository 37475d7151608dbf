#!/usr/bin/env bash
# Checks the sources with clang-format and clang-tidy; any finding is a failure.
#
#   scripts/check_sources.sh format               the layout of every file in src, tests and bench
#   scripts/check_sources.sh tidy [FILE...]       the checks of .clang-tidy on src and bench, except:
#   scripts/check_sources.sh analyze [FILE...]    clang's static analyzer on src, which takes three times as long
#
# The last two take every file that the release preset compiles, or only those that are named.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

check_format() {
  git ls-files -z src tests bench | grep -zE '\.(h|cpp|inc)$' | xargs -0 clang-format --dry-run -Werror
}

# Of every file that the release build compiles here, or only of those given: sources for Windows alone are not.
check_tidy() {
  local checks=$1 folders=$2
  shift 2
  # Without compiled headers: clang cannot read those of g++, and every file must include what it uses.
  local database=build/check/compile_commands.json
  cmake --preset release -B build/check -DTIDYFOLD_TESTS=OFF -DTIDYFOLD_BENCH=ON -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
  local files=("$@")
  if ((${#files[@]} == 0)); then
    mapfile -t files < <(sed -nE 's,^ *"file": "'"$PWD"'/(('"$folders"')/.*\.cpp)".*,\1,p' "$database" | sort -u)
  fi
  if ((${#files[@]} == 0)); then
    echo "$database names no files in $folders" >&2
    exit 2
  fi
  echo "clang-tidy: ${#files[@]} files"
  printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/check --quiet --checks="$checks" --warnings-as-errors='*' 2> \
      >(grep -v 'warnings generated' >&2)
}

mode=${1:-}
if (($#)); then shift; fi
case $mode in
  format) check_format ;;
  tidy) check_tidy '-clang-analyzer-*' 'src|bench' "$@" ;;
  analyze) check_tidy '-*,clang-analyzer-*' 'src' "$@" ;;
  -h | --help) sed -n '2,9s/^# \{0,1\}//p' "$0" ;;
  *) sed -n '2,9s/^# \{0,1\}//p' "$0" >&2 && exit 2 ;;
esac
