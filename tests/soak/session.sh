#!/bin/sh
# session.sh BIN [faults|clock]: a short life of the real agent, within a private world. While it works, every second
# call of many kinds is interrupted, or the clock jumps by a day. Prints what came of it, which must always be the
# same, and last "cpu TICKS", what a second of idleness cost the agent in hundredths of a second.
set -u
bin=$1
mode=${2-}
fifo=/tmp/kest_settings_enc_progress_fifo
settings="$HOME/Library/Application Support/Kestronics/Kest-Settings.xml"

fail() {
    echo "failed: $1"
    tail -n 3 /tmp/host.log /tmp/agent.log
    kill "$agent" "$host" 2>/dev/null
    exit 1
}
# Waits until a command succeeds.
await() {
    for _ in $(seq 1 500); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.01
    done
    fail "$*"
}
all_traced() { ! grep -L 'TracerPid:.*[1-9]' /proc/"$agent"/task/*/status | grep -q .; }
choose() { echo "choose $1" >&9; }
ticks() { awk '{ print $14 + $15 }' "/proc/$agent/stat"; }

mkdir -p "$HOME" && mkfifo /tmp/host.in /tmp/agent.in
"$bin/k3dhost-simulator" --scenario - </tmp/host.in >/tmp/host.log 2>&1 &
host=$!
exec 8>/tmp/host.in
echo start >&8
await grep -q 'host started' /tmp/host.log

if [ "$mode" = clock ]; then
    echo '+0' >/tmp/clock
    preload=$(find /usr/lib -name libfaketimeMT.so.1 | head -n 1)
    [ -n "$preload" ] || fail "faketime is not installed"
    env LD_PRELOAD="$preload" FAKETIME_TIMESTAMP_FILE=/tmp/clock FAKETIME_NO_CACHE=1 \
        FAKETIME_DONT_FAKE_MONOTONIC=1 "$bin/kest-settings-terminal" </tmp/agent.in >/tmp/agent.log 2>&1 8>&- &
else
    "$bin/kest-settings-terminal" </tmp/agent.in >/tmp/agent.log 2>&1 8>&- &
fi
agent=$!
exec 9>/tmp/agent.in
await grep -q 'Quit Kest Settings' /tmp/agent.log

case $mode in
faults)
    calls=write,poll,ppoll,fsync,wait4,clock_nanosleep
    strace -f -qq -o /tmp/interrupted -p "$agent" -e trace=$calls -e "inject=$calls:error=EINTR:when=1+2" 8>&- 9>&- &
    await all_traced
    ;;
clock) echo '+1d' >/tmp/clock ;;
esac

choose 'Solo Mode > Exclusive (XOR)'
await grep -q 'SoloMode 1' /tmp/host.log
echo 'bus add bus-1 Dialog' >&8
await grep -q 'Dialog added' /tmp/host.log
[ "$mode" != clock ] || echo '-1d' >/tmp/clock
sleep 1.2 # the monitor's period
choose 'Default Bus > Dialog'
await grep -q '(id bus-1)' /tmp/host.log
"$bin/encoder-simulator" --output /tmp/out/Film/Film.wav --seconds 60 --steps 600 >/dev/null 2>&1 8>&- 9>&- &
encoder=$!
await test -s /tmp/out/Film/Film.wav
before=$(ticks)
sleep 1
idle=$(($(ticks) - before))
# Of two messages at one moment only the newer one is shown: the path may not be in the title.
for title in Film "Process $encoder"; do
    choose "Encoding History > $title > Abort and Delete Output Folder"
done
await test ! -e /tmp/out/Film
kill -TERM "$agent"
(sleep 3 && kill -KILL "$agent") >/dev/null 2>&1 &
wait "$agent"
echo "exit status $?"
[ ! -e $fifo ] || fail "the pipe is still there"
grep -o 'name="SoloMode" val="."' "$settings"
grep -c 'SoloMode\|bus-1' /tmp/host.log
[ "$mode" != faults ] || echo "interrupted $(grep -c INJECTED /tmp/interrupted)" >&2
kill "$host"
echo "cpu $idle"
