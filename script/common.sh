# SPDX-License-Identifier: MIT

# Shared parts of the scripts beside this file, which source it.

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The same order of names and the same messages everywhere.
export LC_ALL=C.UTF-8

JOBS="$(nproc)"

# Announces a step: step NAME
step() {
    printf '\n==> %s\n' "$*"
}

# Ends the script with one line on standard error.
die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# The library's rooms that have a folder, from the bottom to the top.
ROOMS=()
while read -r room; do
    [ ! -d "$room" ] || ROOMS+=("$room")
done <cmake/rooms.txt

# Prints the C++ files in folders, one a line: cpp_files FOLDER|FILE...
cpp_files() {
    local folder
    for folder in "$@"; do
        if [ -e "$folder" ]; then
            find "$folder" -type f \( -name '*.h' -o -name '*.cpp' \)
        fi
    done | sort
}
