#!/usr/bin/env python3
"""Plays a USB satellite receiver on a pseudo-terminal, for a show by hand.

    puck.py FOLDER/ttyACM0 --ahead 5 --lat 42.5 --lon -3.7 --no-fix 20

LINK becomes a symbolic link to the terminal; the program under show has that folder for /dev. Each second the
receiver sends RMC, GGA and GSV. It ends, and the link goes, with Ctrl-C or SIGTERM: the receiver is unplugged.
"""

import argparse
import datetime
import functools
import operator
import os
import pty
import signal
import sys
import time
import tty


def sentence(body):
    total = functools.reduce(operator.xor, body.encode("ascii"), 0)
    return f"${body}*{total:02X}\r\n"


def angle(degrees, width, hemispheres):
    minutes = round(abs(degrees) * 60, 4)
    whole = int(minutes // 60)
    return f"{whole:0{width}d}{minutes - whole * 60:07.4f},{hemispheres[degrees < 0]}"


def second(instant, options, locked):
    utc = datetime.datetime.fromtimestamp(instant, datetime.timezone.utc)
    at = utc.strftime("%H%M%S.") + f"{utc.microsecond // 1000:03d}"
    place = angle(options.lat, 2, "NS") + "," + angle(options.lon, 3, "EW") if locked else ",,,"
    used = options.sats if locked else 0
    solution = f"1,{used:02d},0.9,{options.alt:.1f},M,46.9,M,," if locked else "0,00,99.99,,,,,,"
    return (
        sentence(f"GPRMC,{at},{'A' if locked else 'V'},{place},0.0,0.0,{utc:%d%m%y},,,{'A' if locked else 'N'}")
        + sentence(f"GPGGA,{at},{place},{solution}")
        + sentence(f"GPGSV,1,1,{options.sats + 3 if locked else 2:02d},01,40,083,46")
    )


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("link")
    parser.add_argument("--ahead", type=float, default=0, help="seconds of satellite time before the system's")
    parser.add_argument("--lat", type=float, default=42.5)
    parser.add_argument("--lon", type=float, default=-3.7)
    parser.add_argument("--alt", type=float, default=850)
    parser.add_argument("--sats", type=int, default=8)
    parser.add_argument("--no-fix", type=float, default=0, metavar="SECONDS", help="until the first lock")
    parser.add_argument("--period", type=float, default=1, help="seconds from one fix to the next")
    options = parser.parse_args()

    controller, device = pty.openpty()
    tty.setraw(device)
    path = os.ttyname(device)
    os.close(device)  # or the program would see that another one has it open
    os.set_blocking(controller, False)
    if os.path.lexists(options.link):
        os.remove(options.link)
    os.symlink(path, options.link)
    print(path, flush=True)

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    start = time.monotonic()
    try:
        while True:
            # on the second of satellite time, as real ones are
            ahead = time.time() + options.ahead
            time.sleep(options.period - ahead % options.period)
            instant = round((time.time() + options.ahead) / options.period) * options.period
            locked = time.monotonic() - start >= options.no_fix
            try:
                os.write(controller, second(instant, options, locked).encode("ascii"))
            except BlockingIOError:
                pass  # nobody reads
    except KeyboardInterrupt:
        pass
    finally:
        os.remove(options.link)


if __name__ == "__main__":
    main()
