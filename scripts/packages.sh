# shellcheck shell=bash disable=SC2034
# The Debian 12 packages that the project needs, by purpose.

# Headers and libraries of the machine that the programs run on.
target_packages=(
    libc++-dev libc++abi-dev
    android-libutils-dev android-libcutils-dev android-liblog-dev
    libboost-context-dev libcereal-dev libcli11-dev libfmt-dev libprotozero-dev libutfcpp-dev
    libzip-dev nlohmann-json3-dev zlib1g-dev
)
build_packages=(
    clang cmake ninja-build
    binutils # nm, for the test of the exported symbols
    git # scripts/mutate, scripts/count-lines
    googletest
    help2man # manual pages
    jq parallel # examples of docs/fleet.md, tables of docs/effect.md, tests
    python3 # scripts/mutate
)
sanitizer_packages=(
    libclang-rt-dev
    llvm # llvm-symbolizer, for the reports
)
arm64_packages=(lld qemu-user)
# The parts of the sysroot that come with clang on the build machine.
arm64_sysroot_packages=(libc6-dev libgcc-12-dev)
# Format checks and the test of the plots.
ci_packages=(clang-format blueprint-tools gnuplot-nox)
