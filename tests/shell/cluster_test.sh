#!/usr/bin/env bash
# Conversion on several machines by GNU parallel over ssh: this one twice, by a daemon and a key of
# the test's own. Skipped (77) where the programs are not there or no daemon can run.
#   cluster_test.sh PROGRAM
set -u
program=$1
for needed in parallel ssh ssh-keygen /usr/sbin/sshd; do
    command -v $needed >/dev/null || exit 77
done
work=$(mktemp -d)
trap 'kill "$(cat "$work/pid" 2>/dev/null)" 2>/dev/null; rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
cd "$work" || exit 1

ssh-keygen -q -t ed25519 -N '' -f host_key
ssh-keygen -q -t ed25519 -N '' -f key
port=$((20000 + RANDOM % 20000))
cat >sshd_config <<END
Port $port
ListenAddress 127.0.0.1
HostKey $work/host_key
PidFile $work/pid
AuthorizedKeysFile $work/key.pub
StrictModes no
UsePAM no
PasswordAuthentication no
END
[ "$(id -u)" = 0 ] && mkdir -p /run/sshd
/usr/sbin/sshd -f sshd_config || exit 77
cat >ssh_config <<END
Host one two
    HostName 127.0.0.1
    Port $port
    User $(id -un)
    IdentityFile $work/key
    StrictHostKeyChecking no
    UserKnownHostsFile $work/known
    LogLevel ERROR
END
ssh="ssh -F $work/ssh_config"
for _ in $(seq 50); do
    $ssh one true 2>/dev/null && break
    sleep 0.1
done
$ssh one true || exit 77

mkdir models
for i in $(seq 40); do
    printf 'v 0 0 0\nv %d 0 0\nv 0 1 0\nf 1 2 3\n' "$i" >"models/part $i.obj"
done
find models -name '*.obj' | sort >names
# The command as docs/batch.md has it.
seq 4 | HOME=$work parallel --will-cite --ssh "$ssh" -S 1/one,1/two --wd "$work" \
    "$program" -convert -to tri -list names -shard {}/4 -jobs 2 -skip-newer \
    -report report.jsonl >out 2>&1
status=$?
failures=0
holds() { # WHAT COMMAND...
    local what=$1
    shift
    if "$@" >/dev/null 2>&1; then
        echo "ok   $what"
    else
        echo "FAIL $what: $*"
        failures=$((failures + 1))
    fi
}
holds "all of them" test "$status $(ls models/*.tri | wc -l)" = "0 40"
holds "each once" test "$(wc -l <report.jsonl) $(sort -u report.jsonl | wc -l)" = "40 40"
[ $failures = 0 ] || cat out
exit $((failures > 0))
