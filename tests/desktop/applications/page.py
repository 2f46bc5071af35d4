"""A page with a field in it, and the server to which it tells what stands there."""
import http.server
import json
import os
import threading
import time

from .target import TARGETS

_PAGE = os.path.join(TARGETS, "page.html")


class Page:
    """Serves the page and keeps what it told last."""

    def __init__(self):
        self.told: dict = {}
        self.told_at = 0.0
        page = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                with open(_PAGE, "rb") as file:
                    self._answer(200 if self.path.startswith("/?") else 404, file.read())

            def do_POST(self):
                at = time.monotonic()
                page.take(json.loads(self.rfile.read(int(self.headers["Content-Length"]))), at)
                self._answer(204, b"")

            def _answer(self, code: int, body: bytes):
                self.send_response(code)
                self.send_header("Content-Type", "text/html; charset=utf-8")
                if code != 204:
                    self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                if code != 204:
                    self.wfile.write(body)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def take(self, told: dict, at: float):
        # Messages on several connections may overtake each other.
        if told["number"] == 1 or told["number"] > self.told.get("number", 0):
            self.told, self.told_at = told, at

    def address(self, kind: str) -> str:
        return f"http://127.0.0.1:{self._server.server_port}/?{kind}"

    def close(self):
        self._server.shutdown()
        self._server.server_close()
