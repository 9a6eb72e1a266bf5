# shellcheck shell=bash
# Installs from Debian what is missing, and nothing when nothing is. Asks for sudo only then, and only when not root.
# Usage: source this file, then: need_packages NAME...

BUILD_PACKAGES=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-svg-dev libgl1-mesa-dev
  libsqlitecpp-dev libsqlite3-dev libbotan-2-dev zlib1g-dev libicu-dev libzxcvbn-dev libcli11-dev nlohmann-json3-dev
  libxcb1-dev libxcb-xtest0-dev libxcb-xinput-dev
)
TEST_PACKAGES=(
  clang libclang-rt-14-dev ccache mold python3
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb openbox dbus at-spi2-core libxcb-record0-dev fonts-inter
  desktop-file-utils binutils
)
BENCH_PACKAGES=(libical-dev)  # the base of calendar_bench, and of nothing else

need_packages() {
  local missing=() name
  for name in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if ! command -v apt-get >/dev/null; then
    echo "Missing: ${missing[*]}. Install them by your system's own means and start again." >&2
    return 1
  fi
  local sudo=()
  [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  echo "Installing from Debian: ${missing[*]}" >&2
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq &&
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
      </dev/null >/dev/null
}
