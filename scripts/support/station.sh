# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# A simulated station on a socket in a private folder, and pictures of the window that shows it.
# Sourced after common.sh. Relies on the preset "demo" having been built.

: "${project_root:?common.sh comes first}"

pages=(overview station receivers listeners internet)
program=$project_root/build/demo/src/tarnwave-settings
simulator=$project_root/build/demo/simulator/tarnwave-station-simulator

# Starts the simulator in FOLDER: start_station FOLDER [SIMULATOR-ARGUMENT…]
# Sets station_pid; its socket is FOLDER/settings.sock, what it says goes to FOLDER/station.log.
# A program that is started afterwards finds the socket, and stand-ins for the system's commands.
start_station() {
    local folder=$1
    shift
    export TARNWAVE_SETTINGS_SOCKET=$folder/settings.sock
    export TARNWAVE_STAND_IN_FOLDER=$folder
    PATH=$project_root/scripts/support/stand-ins:$PATH
    start_with_us "$simulator" --socket "$TARNWAVE_SETTINGS_SOCKET" --owner-file "$folder/owner" "$@" \
        >"$folder/station.log" 2>&1 </dev/null
    station_pid=$!
    if ! wait_until 20 station_is_up_or_gone "$folder" || [ ! -S "$folder/settings.sock" ]; then
        cat "$folder/station.log" >&2
        die "the simulated station did not start (see above)."
    fi
}
station_is_up_or_gone() {
    [ -S "$1/settings.sock" ] || ! kill -0 "$station_pid" 2>/dev/null
}

# How many state documents the station in FOLDER has sent so far.
documents_sent() {
    grep -c '/api/state' "$1/station.log" || true
}

# Saves a picture of each page: take_pictures FOLDER TARGET-FOLDER
# Runs the program once per page, on the display at hand, against the station in FOLDER.
take_pictures() {
    local folder=$1 target=$2 page
    mkdir -p "$target"
    export NO_AT_BRIDGE=1
    for page in "${pages[@]}"; do
        take_picture "$folder" "$page" "$target/$page.png"
        say "Picture: $target/$page.png"
    done
}
take_picture() {
    local folder=$1 page=$2 file=$3 before deadline window_pid window
    before=$(documents_sent "$folder")
    start_with_us "$program" "$page"
    window_pid=$!
    window=$(timeout 20 xdotool search --sync --onlyvisible --name '^Tarnwave settings$' | head -n 1)
    if [ -z "$window" ]; then
        end_processes "$window_pid"
        die "the window did not appear."
    fi
    # Start-up asks for the state twice before its page is complete. A station that refuses this
    # user is asked once only, and a dialog is what there is to see.
    wait_until 5 has_sent "$folder" $((before + 2)) || true
    # Complete when two pictures in a row, a moment apart, are the same.
    deadline=$((SECONDS + 10))
    import -window "$window" -depth 8 "$file"
    while [ "$SECONDS" -lt "$deadline" ]; do
        sleep 0.3
        import -window "$window" -depth 8 "$folder/next.png"
        if compare -metric AE "$file" "$folder/next.png" null: >/dev/null 2>&1; then
            break
        fi
        mv "$folder/next.png" "$file"
    done
    # Same pixels, same file: no time stamps, no text chunks.
    convert "$file" -strip -define png:exclude-chunks=date,time -colors 256 PNG8:"$folder/small.png"
    mv "$folder/small.png" "$file"
    end_processes "$window_pid"
}
has_sent() {
    [ "$(documents_sent "$1")" -ge "$2" ]
}
