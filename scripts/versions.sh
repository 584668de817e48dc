# What the set-up installs, by use. Sourced by the other scripts.
# shellcheck shell=bash disable=SC2034

# Debian packages: what building and running needs, and what the tests, the demo and the benchmarks need besides.
PACKAGES_RUN=(
    ccache cmake dpkg-dev fonts-liberation fonts-wine g++ g++-mingw-w64-x86-64-posix libboost-dev libcgal-dev libgnutls30
    libwine libwine-dev m4 make mingw-w64-tools ninja-build tcl wine wine64
)
# What run and repl need besides with --screen: the parts of X that Wine loads where it finds them.
PACKAGES_SCREEN=(
    libxcomposite1 libxcursor1 libxfixes3 libxi6 libxinerama1 libxrandr2 libxrender1
)
PACKAGES_TEST=(
    admesh googletest librecad-data python3 python3-ezdxf python3-pil xdotool xvfb "${PACKAGES_SCREEN[@]}"
)
PACKAGES_DEMO=(librecad-data)
PACKAGES_BENCH=(newlisp)

# Source packages of Debian 12, built for the target in build/third_party.
declare -A SOURCE_VERSIONS=(
    [benchmark]=1.7.1-1
    [gmp]=2:6.2.1+dfsg1-1.1
    [librecad]=2.2.0-1
    [mpfr4]=4.2.0-1
    [sqlite3]=3.40.1-2+deb12u2
)
