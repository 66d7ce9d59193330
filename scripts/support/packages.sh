# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Builds the Debian packages in a folder of their own. Sourced after common.sh.

: "${project_root:?common.sh comes first}" "${jobs:?}"

# Copies the tree without what was built and without its history: copy_tree FOLDER
copy_tree() {
    mkdir -p "$1"
    tar -C "$project_root" --exclude=./build --exclude=./.git -cf - . | tar -C "$1" -xf -
}

# Builds the packages without running the tests: build_packages FOLDER
# What was in the folder is removed first. The packages lie in it, the tree in its "source".
build_packages() {
    local folder=$1
    rm -rf "$folder"
    copy_tree "$folder/source"
    if ! (cd "$folder/source" &&
        DEB_BUILD_OPTIONS="parallel=$jobs nocheck noautodbgsym" DEB_BUILD_PROFILES=nocheck \
            dpkg-buildpackage -us -uc -b >"$folder/build.log" 2>&1); then
        tail -n 60 "$folder/build.log" >&2
        die "the build failed; the whole output is in $folder/build.log"
    fi
}
