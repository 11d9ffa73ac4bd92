# What the scripts share. Each includes it before it does anything else: with --help, it prints the comment at
# the top of the script, and what the script's function more_help prints, and ends.

if [[ " $* " == *" --help "* ]]; then
    sed -n '1d; /^#/!q; s/^# \{0,1\}//p' "$0"
    ! declare -F more_help >/dev/null || more_help
    exit 0
fi

# refuse WORDS: ends the script because of its arguments
refuse() {
    echo "$(basename "$0"): $1; see script/$(basename "$0") --help" >&2
    exit 2
}

# Refuses what is no build preset. Runs in the root of the tree.
need_preset() {
    grep -qF "{ \"name\": \"$1\", \"configurePreset\"" CMakePresets.json || refuse "unknown preset '$1'"
}
