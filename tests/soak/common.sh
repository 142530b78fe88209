# For the parts of the soak test: ". tests/soak/common.sh" with the part's own arguments. Sets $quick (empty or
# not), $build, $bin and $work, a folder that goes with the script.
# shellcheck shell=sh
# shellcheck disable=SC2034
quick=
if [ "${1-}" = --quick ]; then
    quick=yes
    shift
fi
if [ ! -d "${1-}/bin" ]; then
    echo "usage: $0 [--quick] BUILD_DIR" >&2
    exit 2
fi
build=$(cd "$1" && pwd)
bin=$build/bin
world=$(pwd)/tools/private_world
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM HUP
missed=0

# row FAULT GOAL REACHED HOLDS: one line of the table. HOLDS is a status: 0 when the goal is reached.
row() {
    if [ "$4" -eq 0 ]; then
        word=holds
    else
        word=misses
        missed=1
    fi
    printf 'row\t%s\t%s\t%s\t%s\n' "$1" "$2" "$3" "$word"
}

# Keeps every Nth line of a quick run's input, all of a full one's.
every() {
    if [ -n "$quick" ]; then awk -v n="$1" 'NR % n == 1'; else cat; fi
}

# count_lines FILE PATTERN: how many lines match, 0 without complaint.
count_lines() { grep -c -E -- "$2" "$1" || true; }
