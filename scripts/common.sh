# Shared by the scripts of this folder: sourced, not run.
# shellcheck shell=bash

project_folder=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_folder=$project_folder/build

# Prints what runs now, with the minutes and seconds since the start of the script.
step() { printf '\n[%02d:%02d] %s\n' $((SECONDS / 60)) $((SECONDS % 60)) "$*"; }

fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

as_root() {
  if [[ $(id -u) == 0 ]]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "installing packages needs root: run this as root, or install sudo"
  fi
}

# The packages of the given groups.
packages_of() {
  local group
  for group in "$@"; do
    awk -v group="$group" '$1 == group { print $2 }' "$project_folder/scripts/packages.txt"
  done
}

has_package() { dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed; }

# Node.js need not come from Debian: a command of a sufficient version is enough.
has_node() {
  command -v node >/dev/null && command -v npm >/dev/null &&
    node -e 'process.exit(Number(process.versions.node.split(".")[0]) >= 18 ? 0 : 1)'
}

# Installs the missing packages of the given groups in packages.txt.
install_packages() {
  local package missing=()
  while read -r package; do
    case $package in
      nodejs | npm) has_node || missing+=("$package") ;;
      *) has_package "$package" || missing+=("$package") ;;
    esac
  done < <(packages_of "$@")
  if ((${#missing[@]} > 0)); then
    step "Installing: ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
  fi
}

# Installs the node modules of a folder, unless its lock file is the one that they were installed
# from. Several calls at once work one after the other.
install_node_modules() {
  local folder=$1 stamp=$1/node_modules/.installed-lock lock_digest
  mkdir -p "$build_folder"
  (
    flock 8
    lock_digest=$(sha256sum <"$folder/package-lock.json")
    [[ -f $stamp && $(<"$stamp") == "$lock_digest" ]] && exit
    command -v npm >/dev/null || fail "npm is missing; install it: apt-get install npm"
    echo "Installing the node modules of $folder" >&2
    (cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund >&2) ||
      fail "npm ci failed; see its output above"
    printf '%s\n' "$lock_digest" >"$stamp"
  ) 8>"$build_folder/node-modules.lock"
}

# Configures and builds one preset, all of it or the targets named after it.
build_preset() {
  local preset=$1
  shift
  cmake --preset "$preset" -S "$project_folder" >"$build_folder/$preset-configure.log" 2>&1 ||
    { cat "$build_folder/$preset-configure.log" >&2; fail "configuring '$preset' failed"; }
  cmake --build "$build_folder/$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}

# Builds the library as it is packaged, but with symbols, and the programs of footprint/, in
# build/measured-ARCH. ARCH is x86_64, armhf or arm64.
build_measured() {
  local architecture=$1 log=$build_folder/measured-$1-build.log
  if [[ $architecture != x86_64 ]]; then
    "$project_folder/scripts/sysroot" "$architecture"
  fi
  build_preset "measured-$architecture" graphql_api heap_peak load_time >"$log" ||
    { tail -n 40 "$log" >&2; fail "the build for $architecture failed"; }
}

measured_library() { printf '%s\n' "$build_folder/measured-$1/graphql_api/libgraphql_api.so.1"; }
