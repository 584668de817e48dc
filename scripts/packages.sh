# Debian packages: finding out which are missing, and installing them. Sourced after common.sh and versions.sh.
# shellcheck shell=bash

# missing_packages PACKAGE...: prints those that are not installed.
missing_packages() {
    local package status
    declare -A installed=()
    while read -r package status; do
        [ "$status" != installed ] || installed[$package]=yes
    done < <(dpkg-query -W -f '${Package} ${db:Status-Status}\n' "$@" 2>/dev/null)
    for package; do
        [ -n "${installed[$package]-}" ] || printf '%s\n' "$package"
    done
}

# install_packages PACKAGE...: ends the script when that fails.
install_packages() {
    local advice="install by hand, then try again: apt-get install $*"
    command -v apt-get >/dev/null || fail "$STATUS_SETUP" "this system has no apt-get; Debian 12 is supported" "$advice"
    logged apt-update as_root apt-get update ||
        say "tessary: the package lists could not be refreshed; going on with those that are there"
    logged apt-install as_root apt-get install -y --no-install-recommends "$@" ||
        fail "$STATUS_SETUP" "the packages could not be installed: $*" "$advice"
}
