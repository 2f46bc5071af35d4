"""A provider of AI for tests: speaks the OpenAI interface, and misbehaves in the way that its address names.

    with Provider() as provider:
        provider.reply = "Hello."
        … use f"{provider.address('ok')}/v1" as the endpoint …
        provider.requests[0].body

As a program it serves until its standard input ends, and first prints the addresses as one line of JSON:

    {"http": "http://127.0.0.1:4001", "good": "https://localhost:4002", …, "authority": "/…/authority.pem"}

`GET /requests` gives what has been asked so far, `GET /connections` how many connections were made.
"""
import base64
import dataclasses
import json
import pathlib
import socket
import socketserver
import ssl
import struct
import sys
import tempfile
import threading
import zlib

import http2

HTML = b"<html><body>Out of order</body></html>"
_BOMB_BYTES = 32 << 20
_HUGE_BYTES = 100 << 20


@dataclasses.dataclass
class Request:
    method: str
    path: str
    headers: dict[str, str]
    body: bytes

    def json(self):
        return json.loads(self.body)


class _Connection(socketserver.StreamRequestHandler):
    disable_nagle_algorithm = True

    def setup(self):
        if self.server.context:
            self.request = self.server.context.wrap_socket(self.request, server_side=True)
        super().setup()

    def handle(self):
        provider = self.server.provider
        provider.connections += 1
        self.answered = 0
        try:
            if self.server.context and self.connection.selected_alpn_protocol() == "h2":
                http2.serve(self.rfile, self.wfile, provider)
                return
            while request := self._read():
                if request.method == "GET":
                    self._send(json.dumps(self._told(request.path)).encode())
                    continue
                provider.requests.append(request)
                mode = request.path.split("/")[1]
                if not self._answer(provider, mode, request):
                    return
                self.answered += 1
        except (ConnectionError, ssl.SSLError, TimeoutError):
            pass  # The client has gone: that is what many tests make it do.

    def _told(self, path: str):
        provider = self.server.provider
        if path == "/connections":
            return provider.connections
        return [{**dataclasses.asdict(request), "body": base64.b64encode(request.body).decode()}
                for request in provider.requests]

    def _read(self) -> Request | None:
        line = self.rfile.readline().decode()
        if not line.strip():
            return None
        method, path, _ = line.split()
        headers = {}
        while (line := self.rfile.readline().decode().strip()):
            name, _, value = line.partition(":")
            headers[name.lower()] = value.strip()
        return Request(method, path, headers, self.rfile.read(int(headers.get("content-length", 0))))

    def _send(self, body: bytes, status: int = 200, *headers: str, length: int | None = None):
        lines = [f"HTTP/1.1 {status} Told", f"Content-Length: {len(body) if length is None else length}", *headers]
        self.wfile.write("\r\n".join(lines).encode() + b"\r\n\r\n" + body)

    def _reset(self) -> bool:
        self.wfile.flush()
        raw = self.connection
        raw.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        raw.close()
        return False

    def _chunks(self, pieces, pause: float = 0):
        self.wfile.write(b"HTTP/1.1 200 Told\r\nTransfer-Encoding: chunked\r\n\r\n")
        for piece in pieces:
            self.wfile.write(b"%x\r\n%s\r\n" % (len(piece), piece))
            if pause and self.server.provider.ended.wait(pause):
                return False
        self.wfile.write(b"0\r\n\r\n")
        return True

    def _answer(self, provider: "Provider", mode: str, request: Request) -> bool:
        """Whether the connection goes on."""
        good = provider.answer(request)
        kind, _, detail = mode.partition("-")
        if kind == "status":
            number, _, form = detail.partition("-")
            bodies = {"json": b'{"error": {"message": "The server says no."}}', "html": HTML, "empty": b""}
            extra = ['WWW-Authenticate: Basic realm="test"'] if form == "json" and number == "401" else []
            self._send(bodies[form], int(number), *extra)
        elif kind == "redirect":
            provider_address = self.server.address
            targets = {"same": f"{provider_address}/ok/v1/chat/completions", "relative": "/ok/v1/chat/completions",
                       "host": provider.other_host, "http": provider.addresses["http"] + "/ok/v1/chat/completions",
                       "loop": request.path, "found": f"{provider_address}/ok/v1/chat/completions"}
            self._send(b"", 302 if detail == "found" else 307, f"Location: {targets[detail]}")
        elif mode in ("html", "empty", "badutf8"):
            self._send({"html": HTML, "empty": b"",
                        "badutf8": good.replace(b'content": "', b'content": "\xff\xfe')}[mode])
        elif mode == "reset":
            self._send(good[:10], length=len(good))
            return self._reset()
        elif mode == "resetatonce":
            return self._reset()
        elif mode == "onlyfirst" and self.answered:
            return self._reset()
        elif mode == "toolong":
            self._send(good, length=len(good) + 100)
            return False
        elif mode == "tooshort":
            self._send(good, length=len(good) // 2)
            return False
        elif mode == "huge":
            self._send(b"", length=_HUGE_BYTES)
            for _ in range(_HUGE_BYTES >> 20):
                self.wfile.write(b" " * (1 << 20))
        elif mode == "hugechunked":
            return self._chunks(b" " * (1 << 20) for _ in range(_HUGE_BYTES >> 20))
        elif mode == "drip":
            return self._chunks((good[i:i + 1] for i in range(len(good))), pause=provider.drip_seconds)
        elif mode == "bomb":
            packer = zlib.compressobj(9, zlib.DEFLATED, 31)
            self._send(b"".join(packer.compress(b" " * (1 << 20)) for _ in range(_BOMB_BYTES >> 20)) + packer.flush(),
                       200, "Content-Encoding: gzip")
        elif mode == "nothttp":
            self.wfile.write(b"SSH-2.0-Elsewhere\r\n")
            return False
        elif mode == "hang":
            provider.ended.wait()
            return False
        elif mode == "late":
            if not provider.late.wait(60):
                return False
            self._send(good)
        else:
            self._send(good)
        return True


class _Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True
    block_on_close = False

    def handle_error(self, *_):
        pass  # A handshake that a client refuses is no error of the test.


class Provider:
    """Serves while it is entered; `late` lets the answers of the mode "late" go."""

    def __init__(self):
        self.reply = "OK"
        self.transcript = "hello from the provider"
        self.requests: list[Request] = []
        self.connections = 0
        self.late = threading.Event()
        self.ended = threading.Event()
        self.drip_seconds = 0.08
        self.other_host = "http://localhost:9/ok/v1/chat/completions"
        self.addresses: dict[str, str] = {}
        self._servers: list[_Server] = []

    def __enter__(self):
        self.addresses["http"] = self._serve("http", "127.0.0.1", None)
        return self

    def serve_tls(self, folder: pathlib.Path):
        import certificates
        files = certificates.make(folder)
        for kind, file in [*files.items(), ("http2", files["good"])]:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(file)
            if kind == "http2":
                context.set_alpn_protocols(["h2"])
            self.addresses[kind] = self._serve("https", "localhost", context)
        self.addresses["authority"] = str(folder / "authority.pem")

    def __exit__(self, *_):
        self.ended.set()
        self.late.set()
        for server in self._servers:
            server.shutdown()
            server.server_close()

    def _serve(self, scheme: str, host: str, context: ssl.SSLContext | None) -> str:
        server = _Server(("127.0.0.1", 0), _Connection)
        server.provider = self
        server.context = context
        server.address = f"{scheme}://{host}:{server.server_address[1]}"
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self._servers.append(server)
        return server.address

    def address(self, mode: str, kind: str = "http") -> str:
        return f"{self.addresses[kind]}/{mode}"

    def answer_over_http2(self, body: bytes) -> bytes:
        self.requests.append(Request("POST", "HTTP/2", {}, body))
        return self.answer(self.requests[-1])

    def answer(self, request: Request) -> bytes:
        if request.path.endswith("/audio/transcriptions"):
            return json.dumps({"text": self.transcript}).encode()
        return json.dumps({"choices": [{"message": {"role": "assistant", "content": self.reply}}]}).encode()


def _main():
    with Provider() as provider, tempfile.TemporaryDirectory() as folder:
        provider.serve_tls(pathlib.Path(folder))
        print(json.dumps(provider.addresses), flush=True)
        sys.stdin.read()


if __name__ == "__main__":
    _main()
