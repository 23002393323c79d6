# The checks of scripts/test, one function each: sourced, not run. Each runs in a separate shell in the
# project folder, and ends with a status other than 0 when it fails.
# shellcheck shell=bash
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Files of the project below the given folders whose name has one of the endings.
sources() {
  local folders=$1 endings=$2
  # shellcheck disable=SC2086 # a list of folders
  find $folders \( -path ./build -o -name node_modules \) -prune -o \
    -type f -regextype posix-extended -regex ".*($endings)" -print
}

check_format() { sources . '\.c|\.cpp|\.h' | xargs -P "$(nproc)" -n 50 clang-format --dry-run -Werror; }

check_shellcheck() {
  sources "scripts .ci docs tests packaging" '/[a-z-]+|\.sh' | while read -r file; do
    if head -n 2 "$file" | grep -qE '^#!.*[ /](ba)?sh$|shellcheck shell'; then echo "$file"; fi
  done | xargs shellcheck -x
}

check_javascript() { scripts/javascript; }

check_store() {
  scripts/store install
  npm test --silent --prefix store
}

check_build() { build_preset asan; }

check_gcc() { build_preset release; }

# --- clang-tidy ---------------------------------------------------------------------------------

# SOURCE OBJECT of everything that the preset asan compiles.
objects() {
  sed -nE "s,.* -o ([^ ]+) -c $project_folder/([^ \"]+)\"\,?$,\2 $build_folder/asan/\1,p" \
    "$build_folder/asan/compile_commands.json"
}

# Runs clang-tidy with the arguments on the product's sources. A source that passed is skipped until its
# object is built again, that is, until the source or a header that it includes changes.
tidy() {
  local stamps=$build_folder/tidy/$1 source object
  shift
  sources . '\.cpp' | sed 's,^\./,,' |
    grep -vE '^(tests|bench|footprint|fuzz|examples|platform/(example|fake|empty))/' | sort >"$build_folder/tidy.sources"
  objects | sort -u -k 1,1 | join -a 1 "$build_folder/tidy.sources" - | while read -r source object; do
    [[ -n $object && $stamps/$source -nt $object && $stamps/$source -nt .clang-tidy ]] ||
      printf '%s\n' "$source"
  done >"$build_folder/tidy.changed"
  printf '%s of %s sources to check\n' "$(wc -l <"$build_folder/tidy.changed")" "$(wc -l <"$build_folder/tidy.sources")"
  export build_folder stamps
  # shellcheck disable=SC2016 # for the inner shell
  xargs -r -P "$(nproc)" -I SOURCE bash -c '
    clang-tidy -p "$build_folder/asan" --quiet "${@:2}" "$1" 2> >(grep -v " warnings\? generated" >&2) || exit 1
    mkdir -p "$(dirname "$stamps/$1")" && touch "$stamps/$1"' tidy SOURCE "$@" <"$build_folder/tidy.changed"
}
check_tidy() { tidy quick '--checks=-clang-analyzer-*'; }

check_analyzer() { tidy full; }

# --- Tests --------------------------------------------------------------------------------------

# Runs the tests of a build, the longest first. Many tests mostly wait, so more of them run at once
# than there are processors.
run_tests() {
  local build=$build_folder/$1 costs=$build_folder/$1/Testing/Temporary/CTestCostData.txt
  local prefix=()
  [[ $1 != arm* ]] || prefix=(scripts/emulated "$1")
  shift
  if [[ ! -f $costs ]]; then
    mkdir -p "$(dirname "$costs")"
    grep -v '^#' tests/costs.txt >"$costs"
  fi
  "${prefix[@]}" ctest --test-dir "$build" --parallel $((2 * $(nproc) + 1)) --output-on-failure \
    --no-tests=error "$@"
}

check_tests() {
  scripts/store install
  run_tests asan
}

check_tests_gcc() {
  scripts/store install
  build_preset dev
  run_tests dev
}

check_tsan() {
  local names
  mapfile -t names < <(grep -rlE 'std::(thread|async)' \
    tests/{graphql_api,base,platform/host,bookstore,sample_app} --include='*Test.cpp' |
    xargs -n 1 basename --suffix=.cpp)
  [[ ${names[*]} == *SampleQueueTest* ]] || fail "no test of the library uses threads"
  build_preset tsan "${names[@]}"
  run_tests tsan --tests-regex "^($(IFS='|'; echo "${names[*]}"))\\."
}

check_kills() {
  scripts/store install
  run_tests asan --tests-regex '^(InterruptedSave|KilledRemoval|QueueFault|QueueStress)Test\.' \
    --repeat until-fail:20
}

check_demo() {
  scripts/demo | tee "$build_folder/demo.out"
  tests/checks/check-transcript README.md "$build_folder/demo.out"
}

check_abi() { scripts/abi x86_64; }

check_footprint() { scripts/footprint x86_64; }

check_fuzz() { scripts/fuzz 5; }

check_fuzz_long() { scripts/fuzz 600; }

check_bench() { scripts/bench --quick; }

check_packages() { scripts/test-packages; }

# --- ARM ----------------------------------------------------------------------------------------

# The tests that mean nothing in an emulator have a label; the reason is beside the label.
arm() {
  local architecture=$1 left_out
  scripts/emulated "$architecture" true  # fails before the builds, which take minutes
  scripts/store install
  scripts/sysroot "$architecture"
  build_preset "$architecture"
  run_tests "$architecture" --label-exclude native_only
  left_out=$(ctest --test-dir "$build_folder/$architecture" --show-only --label-regex native_only |
    sed -n 's/^ *Test *#[0-9]*: //p')
  find "$build_folder/$architecture" -name native_only.cmake -exec sed 's/.*\[==\[//; s/]==].*//' {} + |
    while read -r name; do
      grep -qxF "$name" <<<"$left_out" || fail "native_only names $name, which is no test"
    done
  printf 'Left out on %s (native_only): %s\n' "$architecture" "$(wc -l <<<"$left_out")"
  printf '  %s\n' "${left_out//$'\n'/$'\n  '}"
  scripts/abi "$architecture"
  scripts/footprint "$architecture"
}

check_arm_armhf() { arm armhf; }

check_arm_arm64() { arm arm64; }
