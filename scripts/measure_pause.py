#!/usr/bin/env python3
"""Measures how long the window keeps an event waiting while it loads a store.

    scripts/measure_pause.py build/bin/tidyfold-driven STORE

A timer in the window writes its state every 30 ms; a click would have waited for any longer gap. Times in
milliseconds, accurate to about 4 ms.
"""

import sys
import time

from window_session import Session

PERIOD = 30


def main(program, store):
    with Session(program, [store]) as window:
        window.wait("the window", lambda state: state["shown"])
        written, gaps, begin = None, [], time.monotonic()
        while True:
            now = window.state_file.stat().st_mtime_ns
            if now == written:
                time.sleep(0.0005)
                continue
            if written is not None:
                gaps.append((now - written) / 1e6)
            written = now
            state = window.state()
            if state and state["boxes"] and "All Folders Loaded" in state["boxes"][-1]:
                break
    gaps.sort()
    print(f"loaded in {time.monotonic() - begin:.1f} s, {len(gaps)} events; an event waited at most "
          f"{gaps[-1] - PERIOD:.0f} ms, half of them at most {gaps[len(gaps) // 2] - PERIOD:.0f} ms")


if __name__ == "__main__":
    main(*sys.argv[1:3])
