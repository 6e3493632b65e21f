# SPDX-License-Identifier: GPL-3.0-or-later
"""As much of the Wayland protocol as our small clients need: requests out, events in, objects by number."""
import os
import pathlib
import socket
import struct


class Text(str):
    """An argument that is a string."""


class Connection:
    DISPLAY, REGISTRY = 1, 2

    def __init__(self):
        path = pathlib.Path(os.environ["XDG_RUNTIME_DIR"], os.environ["WAYLAND_DISPLAY"])
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(str(path))
        self.pending = b""
        self.last = self.REGISTRY
        self.globals = {}  # interface: (name, version)
        self.handlers = {(self.DISPLAY, 0): self.fail, (self.REGISTRY, 0): self.add_global}
        self.request(self.DISPLAY, 1, self.REGISTRY)  # get_registry
        self.round_trip()

    def new(self):
        self.last += 1
        return self.last

    def request(self, target, opcode, *arguments, descriptor=None):
        body = b""
        for argument in arguments:
            if isinstance(argument, Text):
                data = argument.encode() + b"\0"
                body += struct.pack("=I", len(data)) + data.ljust((len(data) + 3) // 4 * 4, b"\0")
            else:
                body += struct.pack("=I", argument & 0xffffffff)
        message = struct.pack("=II", target, (len(body) + 8) << 16 | opcode) + body
        socket.send_fds(self.socket, [message], [] if descriptor is None else [descriptor])

    def bind(self, interface, version=1):
        number, offered = self.globals[interface]
        new = self.new()
        self.request(self.REGISTRY, 0, number, Text(interface), min(version, offered), new)
        return new

    def create(self, target, opcode, *arguments, **options):
        """A request whose first argument is the new object, which is returned."""
        new = self.new()
        self.request(target, opcode, new, *arguments, **options)
        return new

    def round_trip(self):
        done = []
        callback = self.create(self.DISPLAY, 0)  # sync
        self.handlers[callback, 0] = done.append
        while not done:
            self.dispatch()

    def dispatch(self):
        data = self.socket.recv(65536)
        if not data:
            raise ConnectionError("the compositor has gone")
        self.pending += data
        while len(self.pending) >= 8:
            target, word = struct.unpack_from("=II", self.pending)
            size = word >> 16
            if len(self.pending) < size:
                return
            body, self.pending = self.pending[8:size], self.pending[size:]
            self.handlers.get((target, word & 0xffff), lambda _: None)(body)

    def add_global(self, body):
        number, length = struct.unpack_from("=II", body)
        interface = body[8:8 + length - 1].decode()
        version, = struct.unpack_from("=I", body, 8 + (length + 3) // 4 * 4)
        self.globals[interface] = number, version

    def fail(self, body):
        raise ConnectionError(f"the compositor refuses: {body[12:].decode(errors='replace')}")
