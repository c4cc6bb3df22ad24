# What the commands at the front door share: no failure is silent, packages, and building a preset once.
# Sourced by every script of the tree, with `root` and `me` (the name in messages) set.
# SPDX-License-Identifier: Apache-2.0
set -E

say() { printf '%s: %s\n' "$me" "$*" >&2; }
fail() {
  say "$*"
  exit 1
}

# A command that fails where nobody expects it ends the script, often without a word of its own.
trap 'say "${BASH_SOURCE[0]##"$root"/} line $LINENO: status $? of: $BASH_COMMAND"' ERR

# The packages that a preset wants, one a line: the tool needs those above the heading of the tests.
wanted_packages() {
  local last='$'
  [ "$1" != release ] || last='/^# Tests/'
  sed -n "1,${last}p" "$root/packages.txt" | sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' | sort -u
}

# Those of them that are not installed. dpkg-query prints the packages that it knows, and its status is 1
# when there are others.
missing_packages() {
  local wanted known
  wanted=$(wanted_packages "$1")
  # shellcheck disable=SC2086
  known=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null) || [ $? = 1 ] ||
    fail "dpkg-query cannot tell what is installed: run it to see why"
  sed -n 's/^installed //p' <<<"$known" | sort -u | comm -13 - <(printf '%s\n' "$wanted")
}

# Installs what a preset lacks: install_packages PRESET
install_packages() {
  command -v dpkg-query >/dev/null || {
    say "this is no Debian system, so packages.txt is taken as installed"
    return
  }
  local missing apt=(env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=600)
  missing=$(missing_packages "$1") || exit 1
  missing=${missing//$'\n'/ }
  [ -n "$missing" ] || return 0
  command -v apt-get >/dev/null || fail "these packages are missing, and so is apt-get to install them: $missing"
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || fail "these packages are missing, run as root: apt-get install $missing"
    apt=(sudo "${apt[@]}")
  fi
  say "installing packages: $missing"
  "${apt[@]}" update >&2 || say "apt-get could not renew its lists of packages, those that are there must do"
  # shellcheck disable=SC2086
  "${apt[@]}" install -y --no-install-recommends $missing </dev/null >&2 ||
    fail "apt-get could not install these packages: $missing"
}

# True when nothing that the preset is built from has changed since its stamp.
# Folders count too, because removing a file changes only its folder.
is_fresh() {
  local stamp=$1
  shift
  [ -e "$stamp" ] && [ -z "$(cd "$root" && find "$@" -newer "$stamp" -print -quit 2>/dev/null)" ]
}

# Lets one build at a time into a folder: lock_folder FOLDER
lock_folder() {
  mkdir -p "$1" 2>/dev/null && [ -w "$1" ] && : 2>/dev/null >>"$1/.lock" ||
    fail "the folder $1 cannot be written: take a copy of the tree that is yours"
  exec 9>>"$1/.lock"
  command -v flock >/dev/null || {
    say "there is no flock, so nothing keeps a second build out of $1"
    return
  }
  flock 9 || fail "the folder $1 cannot be locked"
}

# Configures and builds a preset, or of it the targets in $build_targets, unless nothing changed. It is called
# $build_name, and is said to take $build_time, where they are set: build_preset PRESET SOURCE...
build_preset() {
  local preset=$1 folder="$root/build/$1" log="$root/build/$1.log" launcher=() targets=()
  # shellcheck disable=SC2206
  [ -z "${build_targets:-}" ] || targets=(--target $build_targets)
  local built="$folder/.built${build_targets:+.${build_targets// /.}}"
  shift
  is_fresh "$built" "$@" && return 0
  lock_folder "$folder"
  is_fresh "$built" "$@" && return 0
  install_packages "$preset"
  if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    # What the sources get from precompiled headers is not compared word by word: the headers' own contents are.
    export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  say "building ${build_name:-the $preset preset}, ${build_time:-a few minutes} at first (log in build/$preset.log)"
  touch "$folder/.started"
  if ! (cd "$root" && cmake --preset "$preset" "${launcher[@]}" && cmake --build "build/$preset" -j "$(nproc)" "${targets[@]}") \
    >"$log" 2>&1 9>&-; then
    tail -n 40 "$log" >&2
    fail "the $preset build failed, see the lines above and build/$preset.log"
  fi
  mv "$folder/.started" "$built"
  exec 9>&-
}

# Runs a preset's tests, and tells what was skipped and why, which ctest keeps to itself. What ctest says in sum comes
# behind all that, so that the closing lines tell how the tests went: run_tests PRESET [CTEST OPTION]...
run_tests() {
  local folder="$root/build/$1" status=0 sum
  sum=$folder/sum.txt
  shift
  rm -f "$folder/Testing/Temporary/LastTest.log"
  ctest --test-dir "$folder" --output-on-failure "$@" |
    sed -u -e '/^[0-9]*% tests passed, /b sum' -e '/^Total Test time/b sum' -e b -e ':sum' -e "w $sum" -e d || status=$?
  [ ! -e "$folder/Testing/Temporary/LastTest.log" ] ||
    sed -n -e 's/^[0-9]*\/[0-9]* Test: //;t name' -e '/^skipped: /{G;s/^\(.*\)\n\(.*\)$/'"$me"': \2 \1/p};d;:name;h' \
      "$folder/Testing/Temporary/LastTest.log" >&2
  cat "$sum"
  return "$status"
}

# What the tool and its libraries are built from.
tool_sources=(CMakeLists.txt CMakePresets.json cmake include Cimom tools packages.txt)

# What the tool needs for these arguments, as targets of the build: a library that it loads is built when a word asks
# for it. Nothing stands for all of it. needed_targets [ARGUMENT]...
needed_targets() {
  local word targets=qorql_tool
  for word; do
    case $word in
      serve | listen | passwd) return ;;
      --server | --server=* | --servers | --servers=*) targets='qorql_tool qorql_remote' ;;
    esac
  done
  printf '%s\n' "$targets"
}

# True when these targets of a release build are there, by themselves or with others. is_built [TARGET]...
is_built() {
  local stamp="$root/build/release/.built"
  is_fresh "$stamp" "${tool_sources[@]}" && return 0
  case "$*" in
    qorql_tool) is_fresh "$stamp.qorql_tool" "${tool_sources[@]}" || is_built qorql_tool qorql_remote ;;
    'qorql_tool qorql_remote') is_fresh "$stamp.qorql_tool.qorql_remote" "${tool_sources[@]}" ;;
    *) false ;;
  esac
}

# Builds what the tool needs for these arguments, and sets `tool` to its path. The tests build all of it, compiled alike:
# theirs will do. build_tool [ARGUMENT]...
build_tool() {
  local preset=release targets name='' time=''
  targets=$(needed_targets "$@")
  # shellcheck disable=SC2086
  if ! is_built $targets; then
    if is_fresh "$root/build/test/.built" "${tool_sources[@]}"; then
      preset=test
    else
      if is_built qorql_tool; then
        name='what serves' time='a minute or two'
        [ -z "$targets" ] || name='what asks servers' time='half a minute'
      fi
      build_name=$name build_time=$time build_targets=$targets build_preset release "${tool_sources[@]}"
    fi
  fi
  tool=$root/build/$preset/tools/qorql/qorql
}
