"""A server of terrain tiles and buildings on loopback. It prints its port, then serves until it is killed.

The first folder of an address says how it answers: "ridge" has a wall of 1300 m from 10 to 12 km to the east of
41.65 north, 0.88 west, on a plain of 300 m; "open" is the same in the other encoding; "sea" lies at 0 m; "holes"
lacks every tile but that of the site; "junk" sends broken PNGs, "html" pages, "large" tiles of another size,
"silent" nothing at all.
"""

import functools
import http.server
import json
import math
import re
import socketserver
import struct
import time
import zlib

LAT, LON = 41.65, -0.88
WORLD = 524288


def png(width, height, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    head = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    raw = b"".join(b"\0" + row for row in rows)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(raw, 1)) + chunk(b"IEND", b"")


def color(metres, open_tiles):
    if open_tiles:
        code = round((metres + 32768) * 256)
    else:
        code = round((metres + 10000) * 10)
    return bytes((code >> 16, code >> 8 & 255, code & 255))


@functools.lru_cache(maxsize=None)
def tile(kind, x, y):
    ground = color(0 if kind == "sea" else 300, kind == "open")
    wall = color(1300, kind == "open")
    rows = []
    for row in range(256):
        lat = math.degrees(math.atan(math.sinh(math.pi * (1 - 2 * (y * 256 + row + 0.5) / WORLD))))
        line = []
        for column in range(256):
            lon = (x * 256 + column + 0.5) / WORLD * 360 - 180
            east = (lon - LON) * 111195 * math.cos(math.radians(LAT))
            north = (lat - LAT) * 111195
            line.append(wall if kind != "sea" and 10000 < east < 12000 and abs(north) < 2000 else ground)
        rows.append(b"".join(line))
    return png(256, 256, rows)


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def reply(self, status, body=b"", kind="image/png"):
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        kind = self.path.split("/")[1]
        place = re.search(r"/11/(\d+)/(\d+)\.png", self.path)
        if kind == "silent":
            time.sleep(120)
        elif "tilequery" in self.path:
            tower = {"properties": {"height": 100, "tilequery": {"distance": 200}},
                     "geometry": {"type": "Point", "coordinates": [LON - 0.0024, LAT]}}
            self.reply(200, json.dumps({"features": [tower]}).encode(), "application/json")
        elif not place or (kind != "open" and "access_token=pk.test" not in self.path):
            self.reply(401)
        elif kind == "holes" and (int(place[1]), int(place[2])) != (1018, 762):
            self.reply(404)
        elif kind == "html":
            self.reply(200, b"<html><body>Log in to this network</body></html>", "text/html")
        elif kind == "junk":
            self.reply(200, tile("sea", 0, 0)[:200] + b"\xff" * 300)
        elif kind == "large":
            self.reply(200, png(512, 512, [b"\1\2\3" * 512] * 512))
        else:
            self.reply(200, tile("ridge" if kind == "holes" else kind, int(place[1]), int(place[2])))


class Server(socketserver.ThreadingMixIn, http.server.HTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # a client that goes away


server = Server(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever()
