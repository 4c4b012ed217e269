# What ./run and ./test share: where the build goes, packages, the build. Sourced by bash with the source directory as
# working directory and with `preset` set. What goes wrong is told in words, and ends with status 1.
set -o pipefail
source_dir=$(pwd -P)

stop() {
  printf '%s\n' "$@" >&2
  exit 1
}

# from_caller PATH: as the caller meant it, who may stand elsewhere.
from_caller() {
  case $1 in /*) printf %s "$1" ;; *) printf %s "$caller_dir/$1" ;; esac
}

# writable DIR: whether files can be made in it, or it can be made itself.
writable() {
  if [ -e "$1" ]; then [ -d "$1" ] && [ -w "$1" ]; else writable "$(dirname "$1")"; fi
}

# choose_build_dir: sets build_root and build_dir: under $BUILD, else ./build, and where the checkout may only be read
# a directory of its own under the user's cache.
choose_build_dir() {
  build_root=$source_dir/build
  if [ -n "${BUILD:-}" ]; then
    build_root=$(from_caller "$BUILD")
  elif ! writable "$build_root" || ! writable "$build_root/$preset"; then
    build_root=${XDG_CACHE_HOME:-${HOME:-/nonexistent}/.cache}/zgbestel/$(printf %s "$source_dir" | cksum | cut -d' ' -f1)
    writable "$build_root" || stop "This checkout can't be written, nor $build_root." \
      "Name a directory for the build: BUILD=directory $command"
    echo "this checkout can't be written: the build goes to $build_root"
  fi
  build_dir=$build_root/$preset
  # The terminal library takes a directory of descriptions for a list, parted by colons.
  case $build_dir in
    *:*) stop "A path with a colon can't be used: $build_dir" "Name another place for the build: BUILD=directory $command" ;;
  esac
}

# lacking GROUP...: the packages of these lines of data/packages that aren't there, on one line.
lacking() {
  local group p words wanted=() there
  for group; do
    read -ra words < <(sed -n "s/^$group: *//p" data/packages)
    wanted+=("${words[@]}")
  done
  there=" $(dpkg-query -W -f '${db:Status-Status}=${Package} ' "${wanted[@]}" 2>/dev/null || true)"
  for p in "${wanted[@]}"; do
    [[ $there == *" installed=$p "* ]] || printf '%s ' "$p"
  done
  echo
}

# install_packages GROUP...: what is lacking, as root or through sudo; else the one line to ask for, for both commands.
install_packages() {
  local missing said as=()
  command -v dpkg-query >/dev/null || return 0 # another system: the build tells what it doesn't find
  read -ra missing < <(lacking "$@")
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    # sudo may ask for a password where somebody can answer
    if command -v sudo >/dev/null && { [ -t 0 ] && [ -t 2 ] || sudo -n true 2>/dev/null; }; then
      as=(sudo)
    else
      ask_for_packages "Packages are missing, and you may not install any."
    fi
  fi
  echo "installing ${missing[*]}"
  "${as[@]}" apt-get update -qq >/dev/null 2>&1 || true # an old list may do
  said=$("${as[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" 2>&1 >/dev/null) || {
    tail -n 3 <<<"$said" >&2
    ask_for_packages "Packages are missing, and could not be installed."
  }
}

ask_for_packages() {
  local all
  read -ra all < <(lacking build tools test)
  stop "$1 Ask who looks after this machine for" "" \
    "    apt-get install --no-install-recommends ${all[*]}" "" "and start $command again."
}

# cached NAME: what the present build directory remembers under it.
cached() {
  sed -n "s/^$1:INTERNAL=//p" "$build_dir/CMakeCache.txt"
}

# configure ON|OFF: the build directory, with the tests or without; one that has them keeps them. What was built
# elsewhere, before the checkout was moved or copied, knows only the old place and goes. Nobody else builds here
# until built.
configure() {
  local cache=$build_dir/CMakeCache.txt
  mkdir -p "$build_dir" || stop "Can't make $build_dir."
  exec {build_lock}>"$build_root/.lock"
  if ! flock -n "$build_lock"; then
    echo "waiting for another build in $build_root"
    flock "$build_lock"
  fi
  if [ -e "$cache" ]; then
    grep -qs '^CMAKE_PROJECT_NAME:STATIC=zgbestel$' "$cache" || stop "$build_dir holds something else's build."
    if [ "$(cached CMAKE_HOME_DIRECTORY)" != "$source_dir" ] ||
      [ "$(cd -P -- "$(cached CMAKE_CACHEFILE_DIR)" 2>/dev/null && pwd)" != "$(cd -P -- "$build_dir" && pwd)" ]; then
      echo "what is built here was built for another place: building anew"
      rm -rf "$build_dir"
    fi
  fi
  if [ -e "$build_dir/build.ninja" ]; then
    [ "$1" = OFF ] && return
    grep -qs 'ZG_TESTS:BOOL=ON' "$cache" && return
  fi
  cmake --preset "$preset" -B "$build_dir" -DZG_TESTS="$1" >/dev/null
}

# build [TARGET...]: everything without targets.
build() {
  echo "building in $build_dir"
  # what ninja and cmake say when all is well is left out
  ninja -C "$build_dir" -j "${JOBS:-$(nproc)}" --quiet "$@" | sed -u '/^ninja: no work to do/d; /^-- /d'
}

# built: others may build here again.
built() {
  exec {build_lock}>&-
}
