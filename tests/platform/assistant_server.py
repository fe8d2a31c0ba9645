"""Stands for the server of the script assistant, on loopback. It checks what it is sent, answers the first message
with a script that has an error, and one that brings the findings with a good one. It prints its port, then serves
until it is killed."""

import http.server
import json

BAD = "Here it is:\n\n```zenka\nENDFOR\n```\n"
GOOD = "Mended:\n\n```zenka\n# α to ω\nTAKEPIC,C1,+,10,CAM1,1/500,8.0,200,0,RAW,None,N,frame\n```\n"


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length") or 0))
        status, answer = self.answer(body)
        text = json.dumps(answer).encode()
        self.send_response(status)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(text)))
        self.end_headers()
        self.wfile.write(text)

    def answer(self, body):
        if self.path != "/api/script-assistant" or self.headers.get("Content-Type") != "application/json":
            return 404, {"error": "not found"}
        sent = json.loads(body)
        if sorted(sent) != ["context", "currentScript", "guided", "messages"] or "ECLIPSE: " not in sent["context"]:
            return 400, {"error": "this is no request of the assistant"}
        last = sent["messages"][-1]["content"]
        if last == "long":
            return 200, {"reply": "x" * (2 << 20)}
        if "line 1, error: ENDFOR without FOR" in last and sent["currentScript"] == "ENDFOR\n":
            return 200, {"reply": GOOD}
        return (200, {"reply": BAD}) if last == "Schöne Größe" else (418, {"error": "what is this?"})


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
print(server.server_address[1], flush=True)
server.serve_forever()
