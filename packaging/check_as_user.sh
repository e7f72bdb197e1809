# Run by check_in_root.sh as an ordinary user of a system that has the package.
set -euo pipefail

examples=/usr/share/doc/tarvelwimaxapp/examples
private=/usr/libexec/tarvelwimaxapp
quick=/usr/share/tarvelwimaxapp/scenarios/quick.toml

fail() {
    echo "failed: $*"
    exit 1
}

# Goes to a new, empty directory.
somewhere() {
    cd "$(mktemp -d)"
}

# The files that lie here are those, and no others.
expect_files() {
    [ "$(ls -A | xargs)" = "$*" ] || fail "these files lie here: $(ls -A | xargs)"
}

# Synchronising to a station, and leaving.
synchronise='1\n2\n2587.5\n0\n10000\n-1\n'

somewhere
printf "$synchronise" | tarvel-bench --scenario "$quick" >output 2>complaints
grep -q 'SYNC STATUS  : PHY_SYNC ACHIEVED' output || fail "no synchronisation"
[ ! -s complaints ] || fail "complaints: $(<complaints)"
expect_files complaints output
echo "checked: the client on the simulated modem, from any directory"

somewhere
printf "$synchronise" | tarvel-bench --scenario "$quick" --record session.pcapng >/dev/null
expect_files session.pcapng
TarvelWiMAXMonitor session.pcapng | grep -q 'PHY_SYNC ACHIEVED' || fail "the monitor shows nothing"
# Wireshark's script is found without being asked for.
tshark -r session.pcapng -Y qor020.sync_status -T fields -e qor020.sync_status.bandwidth \
    2>/dev/null | grep -qx 10000 || fail "tshark does not know the messages"
echo "checked: recorded, shown by the monitor and by tshark"

somewhere
QOR020_REPLAY_SPEED=0 tarvel-bench --replay $examples/simulated-network-entry.pcapng \
    <$examples/simulated-network-entry.input |
    cmp - /given/simulated-network-entry.output || fail "the replay prints something else"
expect_files
echo "checked: replayed, byte by byte"

somewhere
tarvel-session --set times=3 $examples/network-entry.session >output 2>&1 || fail "the session: $(<output)"
expect_files output
echo "checked: a session with a verdict: $(tail -1 output)"

somewhere
mkfifo typed
tarvel-bench --control socket <typed >/dev/null 2>&1 &
client=$!
exec 3>typed
for attempt in {1..50}; do
    [ ! -S socket ] || break
    sleep 0.1
done
simctl socket state | grep -q '"state":"unsynchronised"' || fail "simctl gets no answer"
kill -KILL "$client"
wait "$client" || true
exec 3>&-
# The modem's socket was asked for; nothing else is left.
expect_files socket typed
echo "checked: steered with simctl; killed, it leaves nothing"

somewhere
printf '20\n7\n-1\n-1\n' | tarvel-bench >/dev/null
expect_files OMADMTreeData.bin
echo "checked: what the client writes lands where the user stands"

# As good as a closed library: it needs nothing that ours has, and says other things.
somewhere
cp $private/replay/libqor020.so .
before=$(sha256sum libqor020.so)
QOR020_REPLAY=$examples/simulated-network-entry.pcapng QOR020_REPLAY_SPEED=0 tarvel-bench \
    <$examples/simulated-network-entry.input 2>/dev/null |
    cmp - /given/simulated-network-entry.output || fail "the library that lies here is not used"
status=0
tarvel-bench --scenario "$quick" </dev/null 2>complaints || status=$?
[ $status -eq 2 ] || fail "a scenario for a foreign library is taken"
grep -q './libqor020.so' complaints || fail "nothing says which library"
[ "$(sha256sum libqor020.so)" = "$before" ] || fail "the library was touched"
expect_files complaints libqor020.so
echo "checked: a device library in the working directory wins and is left alone"

somewhere
printf '0\n' | tarvel-bench --extended >output 2>&1 || true
grep -q 'MENU' output || fail "no extended menu"
for page in man1/tarvel-bench.1 man1/TarvelWiMAXApp.1 man5/tarvel-scenario.5; do
    [ -s /usr/share/man/$page.gz ] || fail "no page $page"
done
echo "checked: the extended menu, the manual"
