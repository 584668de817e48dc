# What the set-up installs, by use. Sourced by the other scripts.
# shellcheck shell=bash disable=SC2034

# Debian packages: what building and running needs, and what the tests, the demo and the benchmarks need besides.
PACKAGES_RUN=(
    ccache cmake fonts-liberation fonts-wine g++-mingw-w64-x86-64-posix libgnutls30 libwine ninja-build wine wine64
)
PACKAGES_TEST=(g++ googletest librecad-data python3 python3-ezdxf)
PACKAGES_DEMO=(librecad-data)
PACKAGES_BENCH=(dpkg-dev newlisp)

# Source packages of Debian 12, built for the target in build/third_party.
declare -A SOURCE_VERSIONS=(
    [benchmark]=1.7.1-1
)
