"""As much of HTTP/2 as it takes to answer well-behaved requests, whatever their headers say."""
_PREFACE = b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"
_DATA, _HEADERS, _SETTINGS, _PING, _GOAWAY = 0, 1, 4, 6, 7
_ACKNOWLEDGED = _END_OF_STREAM = 1
_END_OF_HEADERS = 4
_STATUS_200 = b"\x88"


def _frame(kind: int, flags: int, stream: int, payload: bytes = b"") -> bytes:
    return len(payload).to_bytes(3, "big") + bytes([kind, flags]) + stream.to_bytes(4, "big") + payload


def serve(reader, writer, provider):
    """Until the client says goodbye; each whole request is answered, and kept with the path "HTTP/2"."""
    if reader.read(len(_PREFACE)) != _PREFACE:
        return
    writer.write(_frame(_SETTINGS, 0, 0))
    bodies: dict[int, bytes] = {}
    while len(head := reader.read(9)) == 9:
        kind, flags, stream = head[3], head[4], int.from_bytes(head[5:], "big")
        payload = reader.read(int.from_bytes(head[:3], "big"))
        if kind in (_SETTINGS, _PING) and not flags & _ACKNOWLEDGED:
            writer.write(_frame(kind, _ACKNOWLEDGED, 0, payload if kind == _PING else b""))
        elif kind == _GOAWAY:
            return
        elif kind in (_DATA, _HEADERS):
            bodies[stream] = bodies.get(stream, b"") + (payload if kind == _DATA else b"")
            if flags & _END_OF_STREAM:
                answer = provider.answer_over_http2(bodies.pop(stream))
                writer.write(_frame(_HEADERS, _END_OF_HEADERS, stream, _STATUS_200)
                             + _frame(_DATA, _END_OF_STREAM, stream, answer))
