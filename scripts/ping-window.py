#!/usr/bin/python3
"""Measures how long a window takes to answer the window manager's _NET_WM_PING.

usage: ping-window.py WINDOW-ID SECONDS [INTERVAL-MS]

Sends a ping every INTERVAL-MS (default 20) for SECONDS and waits for each answer on the
root window, as a window manager does. Prints the pings sent, the longest time without an
answer, the median, and the stretches longer than 100 ms ("freezes"). Needs python3-xlib.
"""
import select
import statistics
import sys
import time

from Xlib import X, display, protocol


def main():
    window_id = int(sys.argv[1], 0)
    seconds = float(sys.argv[2])
    interval = (float(sys.argv[3]) if len(sys.argv) > 3 else 20.0) / 1000.0
    d = display.Display()
    root = d.screen().root
    # Qt answers with StructureNotify, others with SubstructureNotify: listen to both.
    root.change_attributes(event_mask=X.StructureNotifyMask | X.SubstructureNotifyMask)
    window = d.create_resource_object("window", window_id)
    protocols, ping = d.intern_atom("WM_PROTOCOLS"), d.intern_atom("_NET_WM_PING")

    sent = {}  # stamp -> time sent
    latencies = []
    stamp = 1
    end = time.monotonic() + seconds
    next_ping = time.monotonic()
    while time.monotonic() < end or sent:
        now = time.monotonic()
        if now >= next_ping and now < end and not sent:
            event = protocol.event.ClientMessage(
                window=window, client_type=protocols, data=(32, [ping, stamp, window_id, 0, 0]))
            window.send_event(event, event_mask=0)
            d.flush()
            sent[stamp] = now
            stamp += 1
            next_ping = now + interval
        if now > end + 10:  # an answer that never comes ends the run
            latencies.extend(now - t for t in sent.values())
            break
        select.select([d.fileno()], [], [], 0.002)
        while d.pending_events():
            e = d.next_event()
            if e.type == X.ClientMessage and e.client_type == protocols:
                answered = e.data[1][1]
                if answered in sent:
                    latencies.append(time.monotonic() - sent.pop(answered))
    if not latencies:
        print("no answer at all")
        return 1
    freezes = sum(1 for l in latencies if l > 0.1)
    print(f"pings {len(latencies)}, longest without an answer {max(latencies) * 1000:.0f} ms, "
          f"median {statistics.median(latencies) * 1000:.1f} ms, "
          f"freezes over 100 ms {freezes}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
