# web-server.py FOLDER [CERTIFICATE KEY]: a web server on 127.0.0.1 that answers as FOLDER/routes.json says
# and keeps a log of what it was asked. Prints its port.
import http.server
import json
import pathlib
import ssl
import sys
import threading
import time

folder = pathlib.Path(sys.argv[1])
log_lock = threading.Lock()


def log(line):
    with log_lock, open(folder / "log", "a") as file:
        file.write(line + "\n")


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        names = ("User-Agent", "Cookie", "Authorization", "Accept-Encoding")
        told = [f"{name}: {self.headers[name]}" for name in names if self.headers[name]]
        log(" | ".join([f"GET {self.path}", *told]))
        route = json.loads((folder / "routes.json").read_text()).get(self.path)
        try:
            self.answer(route or {"status": 404, "body": "There is none."})
        except OSError:
            log(f"GONE {self.path}")
            self.close_connection = True

    def do_CONNECT(self):
        log(f"CONNECT {self.path}")
        self.send_error(403)

    def answer(self, route):
        kind = route.get("kind")
        if kind == "silence":
            self.connection.settimeout(30)
            self.rfile.read(1)
            raise OSError
        if kind == "late":
            time.sleep(0.6)
        body = route.get("body", "").encode("latin-1")
        self.send_response(route.get("status", 200))
        for name, value in route.get("headers", {}).items():
            self.send_header(name, value)
        if kind == "headers":
            self.flush_headers()
            while True:
                self.wfile.write(b"X-More: " + b"x" * 1000 + b"\r\n")
        if kind == "endless":
            self.end_headers()
            while True:
                self.wfile.write(b"x" * 1000)
        if kind == "trickle":
            self.send_header("Content-Length", "1000000")
            self.end_headers()
            while True:
                self.wfile.write(b"x")
                time.sleep(0.02)
        length = len(body) + (10 if kind == "truncated" else 0)
        self.send_header("Content-Length", str(length))
        self.end_headers()
        self.wfile.write(body)
        self.close_connection = kind == "truncated"

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
if len(sys.argv) > 2:
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(*sys.argv[2:4])
    server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
server.handle_error = lambda *_: None
print(server.server_port, flush=True)
server.serve_forever()
