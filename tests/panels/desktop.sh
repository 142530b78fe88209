# A desktop without a screen for the tests in real panels: its display, eyes that read the screen, and a mouse. Sourced;
# runs in a world of its own, so that nothing needs to be put back. Pictures are /tmp/NAME.png.
# shellcheck shell=sh disable=SC2154 # $desktop, $screen and $view are those of the script

fail() {
    echo "FAILED in $desktop: $1. The screen: build/panels/$desktop-failed.png" >&2
    import -window root "build/panels/$desktop-failed.png"
    for log in agent host panel; do
        echo "--- $log:" >&2
        tail -n 30 "/tmp/$log.log" >&2
    done
    exit 1
}

# wait_for WHAT COMMAND...: until the command succeeds; fails with WHAT after a minute.
wait_for() {
    what=$1
    shift
    deadline=$(($(date +%s) + 60))
    until "$@" >/dev/null 2>&1; do
        [ "$(date +%s)" -lt $deadline ] || fail "waited in vain for $what"
        sleep 0.1
    done
}

start_display() {
    mkdir -p /tmp/.X11-unix /tmp/run
    chmod 700 /tmp/run
    export XDG_RUNTIME_DIR=/tmp/run XDG_SESSION_TYPE=x11 GTK_THEME=Adwaita NO_AT_BRIDGE=1 LIBGL_ALWAYS_SOFTWARE=1
    Xvfb -displayfd 3 -screen 0 "${screen}x24" -noreset 3>/tmp/display >/tmp/xvfb.log 2>&1 &
    wait_for "a display" test -s /tmp/display
    DISPLAY=:$(cat /tmp/display)
    export DISPLAY
    dbus-update-activation-environment --all # before a program is started by D-Bus
    xsetroot -solid '#dfe5ea' # light, as letters are read best
}

# A window that is shown before there is a window manager can stay hidden.
start_window_manager() {
    openbox >/tmp/openbox.log 2>&1 &
    wait_for "the window manager" has_window_manager
}
has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"; }

shoot() { import -window root "/tmp/$1.png"; }

# look NAME: a picture of the screen once it no longer changes.
look() {
    shoot "$1"
    wait_for "the screen to be still" is_still "$1"
}
is_still() {
    mv "/tmp/$1.png" /tmp/before.png
    sleep 1
    shoot "$1"
    ! difference before "$1"
}

# difference A B [AREA]: where two pictures differ, as WIDTHxHEIGHT+X+Y; fails when they do not.
difference() {
    found=$(convert "/tmp/$1.png" "/tmp/$2.png" -compose difference -composite -threshold 4% \
        ${3:+-crop "$3"} -format '%[fx:maxima] ' -write info: -trim -format '%wx%h%O' info: 2>/dev/null)
    [ "${found%% *}" = 1 ] && echo "${found#* }"
}

# find_words "WORDS": reads what the screen has shown since the picture "closed" and sets $x and $y to the middle of these words,
# which stand side by side, and $box to their place; fails when they are not there.
find_words() {
    shoot read
    area=$(difference closed read) || return 1
    offset=${area#*+}
    # Small letters are read best when enlarged, pale ones on white when all else is dark.
    for way in "6 300 0" "11 300 70" "6 400 0" "11 200 0"; do
        # shellcheck disable=SC2086 # its words are wanted
        set -- "$1" $way
        convert /tmp/read.png -crop "$area" +repage -colorspace gray -level "$4%,100%" -resize "$3%" /tmp/large.png
        found=$(OMP_THREAD_LIMIT=1 tesseract /tmp/large.png - --psm "$2" tsv 2>/dev/null |
            awk -F '\t' -v words="$1" -v scale="$3" -v dx="${offset%+*}" -v dy="${offset#*+}" -f tests/panels/find_words.awk)
        [ -z "$found" ] || break
    done
    [ -n "$found" ] || return 1
    read -r x y box <<WORDS
$found
WORDS
}

# Whether what find_words has found is written in red.
are_red() {
    [ "$(convert /tmp/read.png -crop "$box" +repage -fx 'r > g + 0.5 ? 1 : 0' -format '%[fx:mean > 0.02]' info:)" = 1 ]
}

# keep: the picture of the screen that was read last, for the README.
keep() { convert /tmp/read.png -crop "$view" -trim +repage -strip +dither -colors 64 "build/panels/$desktop.png"; }

click() { xdotool mousemove "$1" "$2" sleep 0.2 click "${3:-1}"; }

# click_words "WORDS": waits until the screen shows them and clicks on them.
click_words() {
    wait_for "\"$1\" on the screen" find_words "$1"
    click "$x" "$y"
}
