# Shared by scripts/run and scripts/test: say what is done, install what is
# missing, build a preset.

say() { printf '\n==> %s\n' "$*"; }

# Debian packages the build and the tests need. Installed only when one of
# them is missing, so a prepared machine pays nothing.
TAVURO_PACKAGES=(
  cmake ninja-build g++ clang libclang-rt-14-dev pkg-config python3
  clang-format-14 clang-tidy-14 help2man
  googletest libgtest-dev libbenchmark-dev
  rapidjson-dev libsimdjson-dev nlohmann-json3-dev libicu-dev
  openjdk-17-jdk-headless junit5 libgoogle-gson-java libjackson2-databind-java
)

ensure_packages() {
  local missing=()
  local p
  for p in "${TAVURO_PACKAGES[@]}" "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" ||
      missing+=("$p")
  done
  if [ ${#missing[@]} -eq 0 ]; then
    say "All build packages are present"
    return
  fi
  say "Installing Debian packages: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# run_ctest PRESET: runs a test preset and adds its counts to the totals
# that the closing line of scripts/test reports.
TAVURO_PASSED=0
TAVURO_FAILED=0
run_ctest() {
  local log
  log=$(mktemp)
  local status=0
  ctest --preset "$1" 2>&1 | tee "$log" || status=$?
  local summary total failed
  summary=$(grep -E "tests passed, [0-9]+ tests? failed out of [0-9]+" "$log" | tail -n 1)
  rm -f "$log"
  total=$(sed -E 's/.*out of ([0-9]+).*/\1/' <<<"$summary")
  failed=$(sed -E 's/.*tests passed, ([0-9]+) tests? failed.*/\1/' <<<"$summary")
  TAVURO_PASSED=$((TAVURO_PASSED + ${total:-0} - ${failed:-0}))
  TAVURO_FAILED=$((TAVURO_FAILED + ${failed:-0}))
  return "$status"
}

# build_preset NAME [extra cmake arguments...]
build_preset() {
  local preset=$1
  shift
  say "Configuring preset '$preset'"
  cmake --preset "$preset" "$@" >/dev/null
  say "Building preset '$preset'"
  cmake --build --preset "$preset"
}
