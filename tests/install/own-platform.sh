# The project that README.md shows for a platform of one's own, over the empty platform, which answers
# each request with a list of stores. Sourced by the checks of this folder, which set `project` and `work`.
# shellcheck shell=bash disable=SC2154

fail() {
  echo "$*" >&2
  exit 1
}

# Writes the project into a folder. Takes a sed script that changes its CMakeLists.txt.
make_own_platform() {
  local folder=$1
  mkdir -p "$folder"
  # shellcheck disable=SC2016 # the backquotes are Markdown's
  sed -n '/^```cmake$/,/^```$/p' "$project/README.md" |
    sed -n '/^cmake_minimum_required/,/^```$/p' | sed '/^```$/,$d' | sed "${2-}" >"$folder/CMakeLists.txt"
  [[ -s $folder/CMakeLists.txt ]] || fail "README.md shows no project with a platform of its own"
  cp "$project"/platform/empty/*.cpp "$folder"
  cp "$project/examples/stores.cpp" "$folder/main.cpp"
}

# Configures and builds a project in its folder "build", without a warning of CMake.
build_project() {
  local folder=$1
  cmake -G Ninja -S "$folder" -B "$folder/build" "${@:2}" >"$folder/log" 2>&1 || fail "$(<"$folder/log")"
  ! grep -q 'CMake .*Warning' "$folder/log" || fail "$(<"$folder/log")"
  cmake --build "$folder/build" >>"$folder/log" 2>&1 || fail "$(<"$folder/log")"
}

# The program loads the two libraries in its own folder, and its RUNPATH has no other platform's folder.
expect_own_platform() {
  local program=$1 folder library found
  folder=$(realpath "$(dirname "$program")")
  readelf -d "$program" >"$work/dynamic"
  ! grep -E 'R(UN)?PATH' "$work/dynamic" | grep -F -e graphql-api-host -e /empty -e /host ||
    fail "$program: its RUNPATH leads to a platform that is not its own"
  for library in libov_sdk.so liborvane_utilities.so; do
    grep -qF "[$library]" "$work/dynamic" || fail "$program does not load $library itself"
    found=$(ldd "$program" | awk -v name="$library" '$1 == name { print $3 }')
    [[ $(realpath "$found") == "$folder/$library" ]] || fail "$program takes $library from '$found'"
  done
  FOOTPRINT_ANSWER=$(<"$project/bench/answers/discovery.json") "$program" >"$work/stores" ||
    fail "$program fails over its own platform"
  grep -q '^de_de ' "$work/stores" || fail "$program prints no stores: $(<"$work/stores")"
}
