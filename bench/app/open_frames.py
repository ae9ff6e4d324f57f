#!/usr/bin/env python3
# Two builds of Quelmo with the popover open, in turns on the same headless desktop: how many
# frames a second each draws (Qt Quick's own frame log) and what CPU it takes, and the second's
# figures as a ratio of the first's. For comparing a change against the build before it.
#
#   bench/app/open_frames.py REFERENCE CANDIDATE [--seconds 30] [--rounds 2]
#
# Needs the desktop-test tools (scripts/install-deps.sh test).

import argparse
import os
import re
import statistics
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
import open_cost  # noqa: E402
from open_cost import DesktopSession, Quelmo, conditions, cpu_seconds  # noqa: E402

FRAME = re.compile(r"Frame rendered with")
SETTLE_SECONDS = 4


def measure(binary, seconds):
    with DesktopSession() as session:
        spawn = session.spawn

        def with_frame_log(argv, env=None, **kwargs):
            env = dict(env or {})
            env["QT_LOGGING_RULES"] = env.get("QT_LOGGING_RULES", "") + \
                ";qt.scenegraph.time.renderloop=true"
            return spawn(argv, env=env, **kwargs)

        session.spawn = with_frame_log
        session.run(["xdotool", "mousemove", *open_cost.POINTER_AWAY])
        quelmo = Quelmo(session, binary)
        time.sleep(SETTLE_SECONDS)
        quelmo.open()
        time.sleep(SETTLE_SECONDS)
        with open(quelmo.log_path, "rb") as f:
            start = f.seek(0, 2)
        t0, cpu0 = time.monotonic(), cpu_seconds(quelmo.proc.pid)
        time.sleep(seconds)
        span, cpu = time.monotonic() - t0, cpu_seconds(quelmo.proc.pid) - cpu0
        with open(quelmo.log_path, "rb") as f:
            f.seek(start)
            frames = len(FRAME.findall(f.read().decode("utf-8", "replace")))
        quelmo.close()
        quelmo.proc.terminate()
        quelmo.proc.wait(20)
    return frames / span, 100 * cpu / span


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("reference")
    parser.add_argument("candidate")
    parser.add_argument("--seconds", type=int, default=30)
    parser.add_argument("--rounds", type=int, default=2)
    args = parser.parse_args()
    results = {"reference": [], "candidate": []}
    for round_ in range(1, args.rounds + 1):
        for role in ("reference", "candidate"):
            fps, cpu = measure(os.path.realpath(getattr(args, role)), args.seconds)
            results[role].append((fps, cpu))
            print(f"round {round_}: {role:<9} {fps:5.1f} frames/s, CPU {cpu:.2f} % of one core"
                  f"  ({conditions()})", flush=True)
    mean = {role: (statistics.mean(f for f, _ in r), statistics.mean(c for _, c in r))
            for role, r in results.items()}
    print(f"candidate / reference: frames {mean['candidate'][0] / mean['reference'][0]:.2f}, "
          f"CPU {mean['candidate'][1] / mean['reference'][1]:.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
