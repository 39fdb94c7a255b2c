# SPDX-License-Identifier: MIT

# What the scripts beside this file share; sourced by them, not run.

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The same order of names and the same messages everywhere.
export LC_ALL=C.UTF-8

JOBS="$(nproc)"

# Says what comes next: step "What it is".
step() {
    printf '\n==> %s\n' "$*"
}

# Ends the script with one line on standard error.
die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# The library's rooms, from the bottom to the top, as far as there are files in them.
ROOMS=()
while read -r room; do
    [ ! -d "$room" ] || ROOMS+=("$room")
done <cmake/rooms.txt

# C++ files of the repository, one a line: cpp_files FOLDER|FILE...
cpp_files() {
    local folder
    for folder in "$@"; do
        if [ -e "$folder" ]; then
            find "$folder" -type f \( -name '*.h' -o -name '*.cpp' \)
        fi
    done | sort
}
