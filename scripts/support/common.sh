# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Functions for the scripts: the project's folder, messages, setting up, building and processes.
# Sourced, never run. Relies on bash and on being called from a script inside the project.

project_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

# How many things are done at once while building and testing.
jobs=${TARNWAVE_JOBS:-$(nproc)}

# Says what is being done, apart from what the tools print.
say() {
    if [ -t 1 ]; then
        printf '\033[1m» %s\033[0m\n' "$*"
    else
        printf '» %s\n' "$*"
    fi
}

# Says why the script stops, and stops it.
die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Prints the comment at the head of the calling script, as its help.
print_help() {
    sed -n '/^# Usage:/,/^[^#]/ { s/^# \{0,1\}//p }' "$0"
}

# Configures (when needed) and builds one preset: build_preset PRESET [TARGET…]
# A second call has next to nothing to do.
build_preset() {
    local preset=$1
    shift
    local folder=$project_root/build/$preset
    cd "$project_root" || return
    # Ninja runs CMake again by itself when a CMakeLists.txt changed, but does not watch presets.
    if [ ! -f "$folder/build.ninja" ] || [ CMakePresets.json -nt "$folder/build.ninja" ]; then
        say "Configuring build/$preset"
        cmake --preset "$preset" >"$folder.log" 2>&1 || {
            cat "$folder.log" >&2
            die "CMake could not configure the preset $preset (see above)."
        }
    fi
    say "Building build/$preset"
    cmake --build "$folder" -j "$jobs" ${1:+--target "$@"}
}

# Starts a program that ends with this script, whatever ends the script. Its process id: $!
start_with_us() {
    setpriv --pdeathsig TERM -- "$@" &
}

# Ends the programs with these process ids and waits for them. Ids that are gone are no error.
end_processes() {
    local pid
    for pid in "$@"; do
        kill "$pid" 2>/dev/null || true
    done
    for pid in "$@"; do
        wait "$pid" 2>/dev/null || true
    done
}

# Waits until a command succeeds: wait_until SECONDS COMMAND…
wait_until() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$deadline" ] || return 1
        sleep 0.05
    done
}
