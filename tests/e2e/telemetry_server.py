"""A service for usage reports on loopback. It prints its port, then of each event that it took the number, or where it
has none its name.

Argument: a file. As long as that is not there, now and then it answers with status 500, or takes a report and
goes away without a word.
"""

import http.server
import json
import os
import random
import socketserver
import sys

random.seed(20260812)


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def do_POST(self):
        body = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
        chance = 1 if os.path.exists(sys.argv[1]) else random.random()
        good = self.path == "/api/telemetry" and len(body["events"]) == 1
        if chance < 0.005 or not good:
            self.answer(500)
            return
        event = body["events"][0]
        sys.stdout.write(f"{event['props'].get('number', event['event'])}\n")  # in one piece
        sys.stdout.flush()
        if chance < 0.01:
            self.close_connection = True
            return
        self.answer(200)

    def answer(self, status):
        self.send_response(status)
        self.send_header("Content-Length", "0")
        self.end_headers()


class Server(socketserver.ThreadingMixIn, http.server.HTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # a client that is killed


server = Server(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever()
