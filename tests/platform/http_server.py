"""A web server on loopback that answers well and badly. It prints its port, then serves until it is killed."""

import http.server
import socketserver
import time


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def reply(self, status, body=b"", headers=()):
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def any(self):
        length = int(self.headers.get("Content-Length") or 0)
        sent = self.rfile.read(length)
        path = self.path.rstrip("/")  # a check of the clock asks for a folder
        if path == "/echo":
            words = f"{self.command} {self.headers.get('X-Word')} {self.headers.get('User-Agent')} "
            self.reply(200, words.encode() + sent, [("X-Answer", "Yes")])
        elif path.startswith("/status/"):
            self.reply(int(path.removeprefix("/status/")), b"said")
        elif path.startswith("/date/"):  # a Date of one's own, or none
            kind = path.split("/")[2]
            if kind == "slow":
                time.sleep(1.5)
            if kind == "moved":
                self.reply(302, b"", [("Location", "/date/right/")])
                return
            ahead = {"right": 0, "hour": 3600, "absurd": 0}.get(kind, 0)
            date = "Sat, 99 Foo 20x6 99:99:99 GMT" if kind == "absurd" else self.date_time_string(time.time() + ahead)
            self.send_response_only(200)
            if kind != "absent":
                self.send_header("Date", date)
            self.send_header("Content-Length", "0")
            self.end_headers()
        elif path == "/moved":
            self.reply(302, b"elsewhere", [("Location", "/echo")])
        elif path == "/circle":
            self.reply(302, b"", [("Location", "/circle")])
        elif path == "/to-a-file":
            self.reply(302, b"", [("Location", "file:///etc/hostname")])
        elif path == "/silent":
            time.sleep(60)
        elif path == "/drip":  # a byte now and then, so that it is never quiet for long
            self.send_response(200)
            self.send_header("Content-Length", "1000")
            self.end_headers()
            for _ in range(600):
                self.wfile.write(b"x")
                self.wfile.flush()
                time.sleep(0.1)
        elif path == "/endless":
            self.send_response(200)
            self.end_headers()
            while True:
                self.wfile.write(b"x" * 65536)
        elif path == "/cut":
            self.send_response(200)
            self.send_header("Content-Length", "1000")
            self.end_headers()
            self.wfile.write(b"half")
            self.close_connection = True
        elif path == "/junk":
            self.wfile.write(b"\x00\xff no web server at all\r\n\r\n")
            self.close_connection = True
        else:
            self.reply(404)

    do_GET = do_POST = do_HEAD = do_PUT = any


class Server(socketserver.ThreadingMixIn, http.server.HTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # a client that goes away is what some tests are about


server = Server(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever()
