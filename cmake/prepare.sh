# What ./run and ./test share: packages and the build. Sourced with the source directory as working directory.
set -o pipefail
preset=${preset:-release}
build_dir=$PWD/build/$preset

# install_packages GROUP...: the Debian packages of these lines of data/packages that aren't there yet.
install_packages() {
  local group p words wanted=() missing=()
  for group; do
    read -ra words < <(sed -n "s/^$group: *//p" data/packages)
    wanted+=("${words[@]}")
  done
  for p in "${wanted[@]}"; do
    dpkg-query -W -f '${Status}' "$p" 2>/dev/null | grep -q 'ok installed' || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "installing ${missing[*]}"
  local sudo=
  [ "$(id -u)" -eq 0 ] || sudo=sudo
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# configure ON|OFF: the build directory, with the tests or without. One that has them keeps them.
configure() {
  grep -qs 'ZG_TESTS:BOOL=ON' "$build_dir/CMakeCache.txt" && return
  [ "$1" = OFF ] && [ -e "$build_dir/build.ninja" ] && return
  cmake --preset "$preset" -DZG_TESTS="$1" >/dev/null
}

# build [TARGET...]: everything without targets.
build() {
  echo "building in build/$preset"
  # what ninja and cmake say when all is well is left out
  ninja -C "$build_dir" -j "${JOBS:-2}" --quiet "$@" | sed -u '/^ninja: no work to do/d; /^-- /d'
}
