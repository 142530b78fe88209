# Faults at system calls of one start and one choice, for the parts that trace soak-settings.
# shellcheck shell=sh
driver=$bin/soak-settings

# calls BYTES [cut]: "NAME N" for each system call from the start of the settings to the end of the program: it
# is the Nth of that name.
calls() {
    "$driver" prepare "$work/traced" "$@"
    strace -o "$work/trace" "$driver" choose "$work/traced" >/dev/null 2>&1
    awk '{ name = $0; sub(/\(.*/, "", name); count[name]++; if (begun) print name, count[name] }
         /^write\(1, "begin/ { begun = 1 }' "$work/trace" | grep -v '^exit_group\|^+'
}

# play FOLDER BYTES [cut]: for each line of its input, which is what strace injects, a choice with that fault;
# prints "FAULT<TAB>STATUS<TAB>VERDICT".
play() {
    folder=$1
    shift
    "$driver" prepare "$folder" "$@"
    bytes=$1
    shift
    while read -r fault; do
        status=0
        timeout 10 strace -qq -o /dev/null -e "trace=${fault%%:*}" -e "inject=$fault" \
            "$driver" choose "$folder" >/dev/null 2>&1 </dev/null || status=$?
        printf '%s\t%s\t%s\n' "$fault" "$status" \
            "$("$driver" verdict "$folder" "$bytes" "$status" "$@" 2>/dev/null | tail -n 1)"
    done
}

# play_all FAULTS BYTES [cut]: the faults of a file, on both cores; appends to $work/played.
play_all() {
    faults=$1
    shift
    awk 'NR % 2 == 0' "$faults" | play "$work/a" "$@" >"$work/played.a" &
    awk 'NR % 2 == 1' "$faults" | play "$work/b" "$@" >"$work/played.b"
    wait $!
    cat "$work/played.a" "$work/played.b" >>"$work/played"
}
