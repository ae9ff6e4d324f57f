#!/usr/bin/env bash
# Idle cost of the running program: starts it in a headless desktop (Xvfb, a private session bus,
# openbox and an xfce4-panel tray), leaves the popover closed, and samples the process for a
# while: CPU time from /proc/PID/stat (utime + stime) and resident memory (VmRSS).
#
#   bench/app/idle.sh [--after-open] [BINARY] [SECONDS]
#
# BINARY defaults to build/release/src/app/quelmo, SECONDS to 60. With --after-open the popover
# is opened and closed once before measuring, which shows what the first open leaves behind.
# Goals: under 0.1 % of one core, under 60 MiB.
set -euo pipefail
cd "$(dirname "$0")/../.."

if [ "${1:-}" = "--inside" ]; then
  shift
  after_open=$1 binary=$2 seconds=$3
  "$binary" & pid=$!
  trap 'kill "$pid" 2>/dev/null || true' EXIT
  # Until the item is on the panel: the start-up work is not idle work.
  for _ in $(seq 100); do
    gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher \
      --method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher \
      RegisteredStatusNotifierItems 2>/dev/null | grep -q "StatusNotifierItem-$pid-" && break
    sleep 0.2
  done
  if [ "$after_open" = yes ]; then
    item=org.kde.StatusNotifierItem-$pid-1
    gdbus call --session --dest "$item" --object-path /StatusNotifierItem \
      --method org.kde.StatusNotifierItem.Activate -- 640 300 >/dev/null
    sleep 2
    gdbus call --session --dest "$item" --object-path /StatusNotifierItem \
      --method org.kde.StatusNotifierItem.Activate -- 640 300 >/dev/null
  fi
  sleep 5

  ticks() { awk '{ sub(/^.*\) /, ""); print $12 + $13 }' "/proc/$pid/stat"; }
  rss_kib() { awk '/^VmRSS:/ { print $2 }' "/proc/$pid/status"; }
  hz=$(getconf CLK_TCK)
  start_ticks=$(ticks) start_ns=$(date +%s%N) peak=0 sum=0 samples=0
  for _ in $(seq "$seconds"); do
    sleep 1
    kib=$(rss_kib)
    sum=$((sum + kib)) samples=$((samples + 1))
    [ "$kib" -gt "$peak" ] && peak=$kib
  done
  end_ticks=$(ticks) end_ns=$(date +%s%N)
  awk -v t="$((end_ticks - start_ticks))" -v hz="$hz" -v ns="$((end_ns - start_ns))" \
      -v mean="$((sum / samples))" -v peak="$peak" -v s="$seconds" 'BEGIN {
    cpu = 100 * (t / hz) / (ns / 1e9)
    printf "idle over %d s: CPU %.3f %% of one core (%d ticks), RSS mean %.1f MiB, peak %.1f MiB\n",
           s, cpu, t, mean / 1024, peak / 1024
    printf "goals: CPU < 0.1 %% -> %s, RSS < 60 MiB -> %s\n",
           (cpu < 0.1 ? "met" : "MISSED"), (peak / 1024 < 60 ? "met" : "MISSED")
  }'
  exit 0
fi

after_open=no
if [ "${1:-}" = "--after-open" ]; then
  after_open=yes
  shift
fi
binary=$(realpath "${1:-build/release/src/app/quelmo}")
seconds=${2:-60}
[ -x "$binary" ] || { echo "idle.sh: no program at $binary (build it first)" >&2; exit 1; }
exec python3 tests/desktop/desktop_session.py -- \
  bash "$PWD/bench/app/idle.sh" --inside "$after_open" "$binary" "$seconds"
