#!/usr/bin/env bash
# Installs the Debian packages of the given uses (build, run, test) that are missing; says once what
# it installs. Needs root or sudo only when something is missing.
set -euo pipefail
list=$(dirname "${BASH_SOURCE[0]}")/packages.txt

wanted=()
for use in "$@"; do
    while read -r kind package; do
        [ "$kind" = "$use" ] && wanted+=("$package")
    done < <(grep -v '^#' "$list")
done

installed=$(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' | awk '$1 == "ii" { print $2 }')
missing=()
for package in "${wanted[@]}"; do
    grep -qx "$package" <<<"$installed" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "VESK needs these Debian packages; install them as root, then try again:" >&2
        echo "  apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "VESK: installing missing Debian packages: ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
install=("${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}")
if ! "${install[@]}" >&2; then
    "${as_root[@]}" apt-get update -qq >&2
    "${install[@]}" >&2
fi
