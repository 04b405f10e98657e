#!/usr/bin/env bash
# The array of jobs that docs/batch.md shows, on a cluster of this machine alone: daemons and a key of
# the test's own. Skipped (77) where the programs are not there or the daemons cannot run (packages
# slurmctld, slurmd, slurm-client and munge).
#   slurm_test.sh PROGRAM SOURCES
set -u
program=$(realpath "$1")
sources=$(realpath "$2")
PATH=$PATH:/usr/sbin
for needed in munged slurmctld slurmd sbatch; do
    if ! command -v $needed >/dev/null; then
        echo "skipped: $needed is not installed"
        exit 77
    fi
done
work=$(mktemp -d)
stop() {
    for daemon in slurmd slurmctld munged; do
        kill "$(cat "$work/run/$daemon.pid" 2>/dev/null)" 2>/dev/null
    done
    sleep 1
    rm -rf "$work"
}
trap stop EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8 SLURM_CONF=$work/slurm.conf
chmod 755 "$work"
cd "$work" || exit 1
mkdir -m 755 run spool state

head -c 1024 /dev/urandom >munge.key
chmod 600 munge.key
munged --force --key-file="$work/munge.key" --socket="$work/run/munge" \
    --pid-file="$work/run/munged.pid" --log-file="$work/munged.log" --seed-file="$work/run/seed" \
    >munged.out 2>&1 || { echo "skipped: munged does not run here"; exit 77; }
host=$(hostname -s)
port=$((21000 + RANDOM % 20000))
cat >slurm.conf <<END
ClusterName=test
SlurmctldHost=$host(127.0.0.1)
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$work/run/munge
CredType=cred/munge
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmctldPidFile=$work/run/slurmctld.pid
SlurmdPidFile=$work/run/slurmd.pid
SlurmdSpoolDir=$work/spool
StateSaveLocation=$work/state
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/slurmd.log
SlurmdParameters=config_overrides
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
MpiDefault=none
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
NodeName=$host NodeAddr=127.0.0.1 CPUs=8 State=UNKNOWN
PartitionName=all Nodes=$host Default=YES MaxTime=INFINITE State=UP
END
slurmctld >slurmctld.out 2>&1 && slurmd >slurmd.out 2>&1
for _ in $(seq 100); do
    sinfo -h -o %T 2>/dev/null | grep -q idle && break
    sleep 0.2
done
if ! sinfo -h -o %T 2>/dev/null | grep -q idle; then
    echo "skipped: the daemons of Slurm do not run here"
    exit 77
fi

mkdir models bin
ln -s "$program" bin/vesk
PATH=$work/bin:$PATH
for i in $(seq 40); do
    printf 'v 0 0 0\nv %d 0 0\nv 0 1 0\nf 1 2 3\n' "$i" >"models/part $i.obj"
done
find models -name '*.obj' | sort >names
# The script as the page has it: the block after the line about Slurm.
awk '/^As an array of jobs for Slurm/ { found = 1 }
     found && /^```$/ { exit }
     copy { print }
     found && /^```sh$/ { copy = 1 }' "$sources/docs/batch.md" >convert.sh
failures=0
is() { # WHAT GOT WANTED
    if [ "$2" = "$3" ]; then
        echo "ok   $1"
    else
        echo "FAIL $1: $2, not $3"
        failures=$((failures + 1))
    fi
}
is "the page's script" "$(head -2 convert.sh)" "$(printf '#!/bin/sh\n#SBATCH --cpus-per-task=4')"
timeout 90 sbatch --wait --array=1-4 convert.sh >sbatch.out 2>&1
is "the jobs end well" $? 0
is "all are written" "$(find models -name '*.glb' | wc -l)" 40
is "each once" "$(cat report-*.jsonl | wc -l) $(cat report-*.jsonl | sort -u | wc -l)" "40 40"
is "by four tasks" "$(find . -maxdepth 1 -name 'report-*.jsonl' | wc -l)" 4

# As after a job that was killed: what is missing is made, the rest stays as it is.
rm -f models/*5.glb report-*.jsonl
touch -d '1 minute' models/*.glb
stat -c '%n %Y' models/*.glb >before
timeout 90 sbatch --wait --array=1-4 convert.sh >sbatch.out 2>&1
is "the jobs end well again" $? 0
is "all are written again" "$(find models -name '*.glb' | wc -l)" 40
is "only those that were missing" "$(cat report-*.jsonl | grep -c '"status"')" 4
is "the others stayed" "$(while read -r line; do
    stat -c '%n %Y' "${line% *}"
done <before | cmp - before && echo same)" same
[ $failures = 0 ] || cat sbatch.out slurm-*.out slurmd.log
exit $((failures > 0))
