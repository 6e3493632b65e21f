# SPDX-License-Identifier: GPL-3.0-or-later
"""film.py APP_ID TITLE: a player's window, which keeps the display awake as long as it is there."""
import os
import struct
import sys

from wire import Connection, Text

WIDTH, HEIGHT = 400, 300
XRGB = 1


def main():
    app_id, title = map(Text, sys.argv[1:])
    wayland = Connection()
    compositor = wayland.bind("wl_compositor", 4)
    memory = wayland.bind("wl_shm")
    shell = wayland.bind("xdg_wm_base")
    inhibitors = wayland.bind("zwp_idle_inhibit_manager_v1")
    wayland.handlers[shell, 0] = lambda body: wayland.request(shell, 3, *struct.unpack("=I", body))  # pong

    surface = wayland.create(compositor, 0)
    role = wayland.create(shell, 2, surface)
    toplevel = wayland.create(role, 1)
    wayland.request(toplevel, 2, title)
    wayland.request(toplevel, 3, app_id)

    file = os.memfd_create("film")
    os.truncate(file, WIDTH * HEIGHT * 4)
    pool = wayland.create(memory, 0, WIDTH * HEIGHT * 4, descriptor=file)
    picture = wayland.create(pool, 0, 0, WIDTH, HEIGHT, WIDTH * 4, XRGB)

    def configure(body):
        wayland.request(role, 4, *struct.unpack("=I", body))
        wayland.request(surface, 1, picture, 0, 0)
        wayland.request(surface, 2, 0, 0, WIDTH, HEIGHT)
        wayland.request(surface, 6)
    wayland.handlers[role, 0] = configure
    wayland.request(surface, 6)
    wayland.round_trip()
    wayland.create(inhibitors, 1, surface)
    wayland.request(surface, 6)
    while True:
        wayland.dispatch()


main()
