# What the commands at the front door share: packages, and building a preset once.
# Sourced by qorql, test and .ci/run, with `root` and `me` (the name in messages) set.

say() { printf '%s: %s\n' "$me" "$*" >&2; }
fail() {
  say "$*"
  exit 1
}

# Packages of packages.txt that are not installed, one a line. The tool needs those
# above the heading of the tests.
missing_packages() {
  local wanted last='$'
  [ "$1" != release ] || last='/^# Tests/'
  wanted=$(sed -n "1,${last}p" "$root/packages.txt" | sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d')
  # dpkg-query reports unknown packages as an error and the known ones all the same.
  # shellcheck disable=SC2086
  dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
    sed -n 's/^installed //p' | sort -u | comm -13 - <(sort -u <<<"$wanted")
}

# Installs what a preset lacks: install_packages PRESET
install_packages() {
  command -v dpkg-query >/dev/null || {
    say "this is no Debian system, so packages.txt is taken as installed"
    return
  }
  local missing as_root=()
  missing=$(missing_packages "$1" | tr '\n' ' ')
  [ -n "${missing// /}" ] || return 0
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || fail "these packages are missing, run as root: apt-get install $missing"
    as_root=(sudo)
  fi
  say "installing packages: $missing"
  # shellcheck disable=SC2086
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq update >&2 &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends $missing \
      </dev/null >&2 || fail "apt-get could not install these packages: $missing"
}

# True when nothing that the preset is built from has changed since its stamp.
# Folders count too, because removing a file changes only its folder.
is_fresh() {
  local stamp=$1
  shift
  [ -e "$stamp" ] && [ -z "$(cd "$root" && find "$@" -newer "$stamp" -print -quit 2>/dev/null)" ]
}

# Configures and builds a preset, or of it what $build_target names, unless nothing
# changed: build_preset PRESET SOURCE...
build_preset() {
  local preset=$1 folder="$root/build/$1" log="$root/build/$1.log" launcher=()
  local built="$folder/.built${build_target:+.$build_target}"
  shift
  is_fresh "$built" "$@" && return 0
  mkdir -p "$folder" || fail "the folder $folder cannot be made"
  exec 9>"$folder/.lock"
  flock 9 || fail "the folder $folder cannot be locked"
  is_fresh "$built" "$@" && return 0
  install_packages "$preset"
  if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1
  fi
  say "building the $preset preset, a few minutes at first (log in build/$preset.log)"
  touch "$folder/.started"
  if ! (cd "$root" && cmake --preset "$preset" "${launcher[@]}" && cmake --build "build/$preset" -j "$(nproc)" ${build_target:+--target "$build_target"}) \
    >"$log" 2>&1 9>&-; then
    tail -n 40 "$log" >&2
    fail "the $preset build failed, see the lines above and build/$preset.log"
  fi
  mv "$folder/.started" "$built"
  exec 9>&-
}

# What the tool and its libraries are built from.
tool_sources=(CMakeLists.txt CMakePresets.json cmake include Cimom tools packages.txt)

# Builds the tool, and sets `tool` to its path. The tests build it too, compiled alike: theirs will do.
build_tool() {
  local preset=release
  if ! is_fresh "$root/build/release/.built" "${tool_sources[@]}" && is_fresh "$root/build/test/.built" "${tool_sources[@]}"; then
    preset=test
  else
    build_preset release "${tool_sources[@]}"
  fi
  tool=$root/build/$preset/tools/qorql/qorql
}
