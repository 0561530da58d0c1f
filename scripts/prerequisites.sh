# Sourced by the commands at the root: sees to it that what they need is on this machine.
#
#   need PACKAGE…   installs the Debian packages that are missing, and says which, once; says nothing when all are there

# The base that every command needs: the compiler and its linker, the build tools and the libraries of the stage.
base_packages=(
  clang-19 lld-19 libstdc++-12-dev cmake ninja-build pkg-config
  libplist-dev libexpat1-dev libutf8proc-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev procps
)
# What the whole check adds: the compiler's sanitizers, formatter and static analysis.
check_packages=(libclang-rt-19-dev clang-format-19 clang-tidy-19)
# What the mutations add: what is compiled again and again is kept.
mutation_packages=(ccache)
# What the figures add.
bench_packages=(libbenchmark-dev strace)

is_installed() {
  [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

as_root() {
  if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

need() {
  local package missing=()
  for package in "$@"; do is_installed "$package" || missing+=("$package"); done
  ((${#missing[@]})) || return 0
  echo "Installing with apt-get: ${missing[*]}"
  as_root apt-get update -qq
  DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}
