#!/usr/bin/env bash
# Tries the recipes of this folder on a Slurm of its own, on this machine: renders 24 frames as an array, with one task
# killed and requeued, and a list of scenes, one of them broken; compares the pictures with those of a plain run. Wants
# root, and Debian's slurm-wlm and munge. Everything is in a temporary folder, and ends with the script.
set -euo pipefail
cd "$(dirname "$0")/../.."

fail() { echo "Error: $*" >&2; exit 1; }

program=${ORVOSKY:-$PWD/build/release/bin/orvosky}
[ -x "$program" ] || fail "there is no program $program; build it, or name one in ORVOSKY."
[ "$(id -u)" -eq 0 ] || fail "the daemons want root."
for tool in munged slurmctld slurmd sbatch; do
  command -v "$tool" >/dev/null || fail "$tool is missing: install slurm-wlm and munge."
done

work=$(mktemp -d)
started=()
finish() {
  for file in "${started[@]}"; do [ ! -s "$file" ] || kill "$(cat "$file")" 2>/dev/null || true; done
  sleep 1
  rm -rf "$work"
}
trap finish EXIT
chmod 755 "$work"

start_munge() {
  local folder
  for folder in /run/munge /var/log/munge /var/lib/munge /etc/munge; do
    mkdir -p "$folder" && chown munge: "$folder" && chmod 755 "$folder"
  done
  if [ ! -s /etc/munge/munge.key ]; then
    head -c 1024 /dev/urandom >/etc/munge/munge.key
    chown munge: /etc/munge/munge.key && chmod 400 /etc/munge/munge.key
  fi
  if ! munge -n >/dev/null 2>&1; then
    runuser -u munge -- munged
    started+=(/run/munge/munged.pid)
  fi
}

start_slurm() {
  mkdir -p "$work/state" "$work/spool"
  cat >"$work/slurm.conf" <<CONF
ClusterName=skies
SlurmctldHost=$(hostname -s)
SlurmctldPort=16817
SlurmdPort=16818
AuthType=auth/munge
SlurmUser=root
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/slurmd.log
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
ReturnToService=2
KillWait=5
NodeName=$(hostname -s) CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES State=UP
CONF
  export SLURM_CONF=$work/slurm.conf
  slurmctld -f "$SLURM_CONF"
  started+=("$work/slurmctld.pid")
  slurmd -f "$SLURM_CONF"
  started+=("$work/slurmd.pid")
  local tries
  for tries in $(seq 30); do
    [ "$(sinfo -h -o %t 2>/dev/null)" = idle ] && return 0
    sleep 1
  done
  tail -n 20 "$work"/slurm*.log >&2
  fail "Slurm does not get ready."
}

wait_for() { while squeue -h -j "$1" 2>/dev/null | grep -q .; do sleep 1; done; }

start_munge
start_slurm
export ORVOSKY=$program
scene=$PWD/examples/project/scenes/dusk.ma
options=(--size 320x180)
mkdir "$work/plain" "$work/farm" "$work/scenes" "$work/logs"

echo "== 24 frames by a plain run"
"$program" --quiet render "$scene" "$work/plain/dusk.##.png" --frames 1-24 "${options[@]}"

echo "== the same as an array, task 5 killed and requeued"
job=$(sbatch --parsable --array=1-24 --chdir="$work/logs" scripts/farm/frames.sbatch \
  "$scene" "$work/farm/dusk.##.png" "${options[@]}")
until [ "$(squeue -h -j "${job}_5" -o %t 2>/dev/null)" = R ]; do
  [ ! -f "$work/farm/dusk.05.png" ] || break
  sleep 0.1
done
scontrol requeue "${job}_5" && echo "task 5 requeued" || echo "task 5 was done already"
wait_for "$job"
for frame in $(seq -f %02g 24); do
  cmp "$work/plain/dusk.$frame.png" "$work/farm/dusk.$frame.png" || fail "frame $frame differs."
done
[ -z "$(find "$work/farm" -name '.part-*')" ] || fail "a task left something behind."
echo "24 pictures, all alike"

echo "== three scenes, one of them broken, as an array"
printf '%s\n' "$PWD/examples/project/scenes/evening.ma" "$work/broken.ma" "$scene" >"$work/tonight.txt"
echo 'createNode transform -n "' >"$work/broken.ma"
job=$(sbatch --parsable --array=1-3 --chdir="$work/logs" scripts/farm/scenes.sbatch \
  "$work/tonight.txt" "$work/scenes" "${options[@]}")
wait_for "$job"
for name in evening dusk; do
  for ending in atmos png; do [ -s "$work/scenes/$name.$ending" ] || fail "$name.$ending is missing."; done
done
[ ! -e "$work/scenes/broken.png" ] || fail "there is a picture of the broken scene."
grep -q "scenes failed" "$work/logs/sky-${job}_2.log" || fail "the log of the broken scene says nothing."
echo "two scenes done, the broken one told of"
