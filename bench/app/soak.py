#!/usr/bin/env python3
# Soak run: the real program in a private headless desktop with its popover open for a given
# time, while processes with fresh names are started and ended in a bounded loop (at most
# CHURN_ALIVE at once, each living a few seconds, some of them busy). Every 30 s it samples the
# program's CPU time and resident memory and prints the drift since the end of the warm-up; a
# probe (quelmo_stall_probe) reads the status item over the session bus every 100 ms and reports
# every answer slower than 50 ms, that is every stall of the main thread.
#
#   bench/app/soak.py [--binary build/dev/src/app/quelmo] [--probe build/dev/bench/quelmo_stall_probe]
#                     [--seconds 600]
#
# Goals: resident memory flat (under 1 MiB drift after the warm-up), no stall over 50 ms. The
# baselines grow by one entry per fresh name until they hold STORE_CAP names (about half an hour
# of this churn), so the drift is printed twice: since the warm-up, and since the store filled.

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
from desktop_session import DesktopSession, wait_until  # noqa: E402

SNI = "org.kde.StatusNotifierItem"
SAMPLE_SECONDS = 30
WARM_UP_SECONDS = 60
CHURN_ALIVE = 12
STORE_CAP = 4000  # the most names the program keeps (BaselineEngine::maxEntries)


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat") as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def names_stored(session):
    # The baselines file holds one JSON object per process name, each with a "samples" field.
    path = os.path.join(session.env["XDG_CONFIG_HOME"], "quelmo", "baselines.conf")
    try:
        with open(path, encoding="utf-8", errors="replace") as f:
            return f.read().count('\\"samples\\"')
    except OSError:
        return 0


def rss_kib(pid):
    with open(f"/proc/{pid}/status") as f:
        return next(int(line.split()[1]) for line in f if line.startswith("VmRSS:"))


class Churn:
    # Processes named soak-<n>-<kind>: links to sleep or to a busy loop, so that the kernel's
    # command name (what the process table shows) is new for every one.
    def __init__(self, session):
        self.session, self.folder = session, tempfile.mkdtemp(prefix="quelmo-soak-")
        self.alive, self.started = [], 0

    def step(self):
        now = time.monotonic()
        for proc, path, until in list(self.alive):
            if now >= until:
                proc.kill()
                proc.wait()
                os.remove(path)
                self.alive.remove((proc, path, until))
        while len(self.alive) < CHURN_ALIVE:
            self.started += 1
            busy = self.started % CHURN_ALIVE == 0  # about one busy at a time
            path = os.path.join(self.folder, f"soak-{self.started}-{'busy' if busy else 'idle'}")
            os.symlink(shutil.which("yes") if busy else shutil.which("sleep"), path)
            argv = [path] if busy else [path, "60"]
            proc = self.session.spawn(argv, stdout=subprocess.DEVNULL)
            self.alive.append((proc, path, now + (3 if busy else 6)))

    def stop(self):
        for proc, _, _ in self.alive:
            proc.kill()
            proc.wait()
        shutil.rmtree(self.folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", default=os.path.join(ROOT, "build/dev/src/app/quelmo"))
    parser.add_argument("--probe", default=os.path.join(ROOT, "build/dev/bench/quelmo_stall_probe"))
    parser.add_argument("--seconds", type=int, default=600)
    args = parser.parse_args()

    with DesktopSession() as session:
        program = session.spawn([args.binary])
        found = wait_until(lambda: [i for i in session.registered_items()
                                    if i.startswith(f"{SNI}-{program.pid}-")], 30, "the item")
        service = found[0].split("/")[0]
        session.gdbus("--dest", service, "--object-path", "/StatusNotifierItem", "--method",
                      f"{SNI}.Activate", "640", "300")
        probe = session.spawn([args.probe, service, str(args.seconds)], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True)
        churn = Churn(session)
        start = time.monotonic()
        next_sample, samples, full = start, [], None
        print(f"soak: {args.seconds} s, popover open, {CHURN_ALIVE} fresh-named processes at a "
              f"time", flush=True)
        try:
            while time.monotonic() - start < args.seconds:
                churn.step()
                if time.monotonic() >= next_sample:
                    t = time.monotonic() - start
                    names = names_stored(session)
                    samples.append((t, cpu_seconds(program.pid), rss_kib(program.pid)))
                    if full is None and names >= STORE_CAP:
                        full = samples[-1]
                    line = (f"t={t:6.0f} s  RSS {samples[-1][2] / 1024:7.2f} MiB  names "
                            f"{names:5d}")
                    if len(samples) > 1:
                        (t0, c0, _), (t1, c1, _) = samples[-2], samples[-1]
                        line += f"  CPU {100 * (c1 - c0) / (t1 - t0):5.2f} % of one core"
                    base = next((s for s in samples if s[0] >= WARM_UP_SECONDS), None)
                    if base and base is not samples[-1]:
                        line += f"  drift {(samples[-1][2] - base[2]) / 1024:+.2f} MiB"
                    if full and full is not samples[-1]:
                        line += f"  since full {(samples[-1][2] - full[2]) / 1024:+.2f} MiB"
                    print(line, flush=True)
                    next_sample += SAMPLE_SECONDS
                if program.poll() is not None:
                    print(f"soak: the program ended with {program.returncode}")
                    return 1
                time.sleep(0.5)
        finally:
            churn.stop()
        report, _ = probe.communicate(timeout=60)
        print(report, end="")
        base = next((s for s in samples if s[0] >= WARM_UP_SECONDS), samples[0])
        end = samples[-1]
        cpu = 100 * (end[1] - samples[0][1]) / max(end[0] - samples[0][0], 1)
        drift = (end[2] - base[2]) / 1024
        print(f"soak: {churn.started} processes started; CPU {cpu:.2f} % of one core; RSS "
              f"{end[2] / 1024:.2f} MiB, drift after warm-up {drift:+.2f} MiB "
              f"({'met' if abs(drift) < 1 else 'MISSED'}: under 1 MiB)")
        if full:
            since = (end[2] - full[2]) / 1024
            print(f"soak: the store filled at t={full[0]:.0f} s; drift since then {since:+.2f} MiB "
                  f"over {end[0] - full[0]:.0f} s ({'met' if abs(since) < 1 else 'MISSED'})")
        program.terminate()
        program.wait(20)
    return 0


if __name__ == "__main__":
    sys.exit(main())
