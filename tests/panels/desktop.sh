# A desktop without a screen for the tests in real panels: its display, a panel with nothing but a tray, eyes that
# read the screen, and a mouse. Sourced; runs in a world of its own, so that nothing needs to be put back.

fail() {
    echo "FAILED in $panel: $1" >&2
    for log in agent host panel; do
        echo "--- $log:" >&2
        tail -n 15 "/tmp/$log.log" >&2
    done
    import -window root "$pictures/failed-$panel.png"
    echo "The screen at that moment: $pictures/failed-$panel.png" >&2
    exit 1
}

# wait_for WHAT COMMAND...: until the command succeeds; fails with WHAT after some 20 seconds.
wait_for() {
    what=$1
    shift
    for _ in $(seq 100); do
        if "$@" >/dev/null 2>&1; then return; fi
        sleep 0.2
    done
    fail "waited in vain for $what"
}

start_display() {
    mkdir -p /tmp/.X11-unix /tmp/run
    chmod 700 /tmp/run
    export XDG_RUNTIME_DIR=/tmp/run GTK_THEME=Adwaita NO_AT_BRIDGE=1
    Xvfb -displayfd 3 -screen 0 800x560x24 3>/tmp/display >/tmp/xvfb.log 2>&1 &
    wait_for "a display" test -s /tmp/display
    DISPLAY=:$(cat /tmp/display)
    export DISPLAY
    openbox >/tmp/openbox.log 2>&1 &
    wait_for "the window manager" xprop -root _NET_SUPPORTING_WM_CHECK
    xsetroot -solid '#dfe5ea' # light, as letters are read best
}

# Without a clock or a task list: what changes on the screen is then the agent's.
configure_panel() {
    case $panel in
    xfce4-panel)
        mkdir -p ~/.config/xfce4/xfconf/xfce-perchannel-xml
        cat >~/.config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml <<XML
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/><value type="int" value="2"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
XML
        ;;
    lxqt-panel)
        mkdir -p ~/.config/lxqt
        cat >~/.config/lxqt/panel.conf <<INI
panels=panel1
[panel1]
plugins=spacer,statusnotifier
position=Top
panelSize=30
iconSize=22
width=100
width-percent=true
[spacer]
type=spacer
expandable=true
[statusnotifier]
type=statusnotifier
INI
        ;;
    esac
}

has_tray() {
    busctl --user call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus NameHasOwner s \
        org.kde.StatusNotifierWatcher | grep -q true
}
has_no_tray() { ! has_tray; }

start_panel() {
    "$panel" >/tmp/panel.log 2>&1 &
    panel_pid=$!
    wait_for "the panel's tray" has_tray
}

kill_panel() {
    kill -KILL "$panel_pid"
    wait_for "the panel's end" has_no_tray
}

is_registered() {
    busctl --user get-property org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
        org.kde.StatusNotifierWatcher RegisteredStatusNotifierItems | grep -q "NotificationItem/kest_settings"
}

# look NAME: a picture of the screen once it stands still.
look() {
    import -window root "/tmp/$1.png"
    for _ in $(seq 50); do
        mv "/tmp/$1.png" "/tmp/before.png"
        import -window root "/tmp/$1.png"
        if [ "$(compare -metric AE /tmp/before.png "/tmp/$1.png" null: 2>&1)" = 0 ]; then return; fi
    done
    fail "the screen does not stand still"
}

# difference A B: where two pictures differ, as WIDTHxHEIGHT+X+Y; fails when they are the same.
difference() {
    [ "$(compare -metric AE "/tmp/$1.png" "/tmp/$2.png" null: 2>&1)" != 0 ] &&
        convert "/tmp/$1.png" "/tmp/$2.png" -compose difference -composite -threshold 4% \
            -trim -format '%wx%h%O' info:
}

# find_words "WORDS": reads the screen and sets $x and $y to the middle of these words, which stand side by side, and
# $box to their place; fails when they are not there.
find_words() {
    import -window root /tmp/read.png
    # Small letters are read best when enlarged; what one way of reading overlooks another one sees.
    for way in "6 300" "11 300" "6 400" "11 200"; do
        convert /tmp/read.png -colorspace gray -resize "${way#* }%" /tmp/large.png
        found=$(OMP_THREAD_LIMIT=1 tesseract /tmp/large.png - --psm "${way% *}" tsv 2>/dev/null |
            awk -F '\t' -v words="$1" -v scale="${way#* }" -f tests/panels/find_words.awk)
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
are_gone() { ! find_words "$1"; }

# keep NAME: the picture of the screen that was read last goes among those of the README.
keep() { convert /tmp/read.png -crop 600x400+200+0 +repage -strip "$pictures/$1.png"; }

click() { xdotool mousemove "$1" "$2" sleep 0.2 click "${3:-1}"; }

# click_words "WORDS": waits until the screen shows them and clicks on them.
click_words() {
    wait_for "\"$1\" on the screen" find_words "$1"
    click "$x" "$y"
}
