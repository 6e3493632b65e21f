// SPDX-License-Identifier: GPL-3.0-or-later
//
// How long a program takes from its start to its first painted window: starts it and looks at one pixel of
// the display until that changes.
//
// usage: first_paint X Y PROGRAM [ARGUMENT...]
//
// Prints the milliseconds and the program's process id; the program goes on.
#include <xcb/xcb.h>

#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

std::optional<std::uint32_t> pixelAt(xcb_connection_t* connection, std::int16_t x, std::int16_t y) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto request = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, x, y, 1, 1, ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(connection, request, nullptr), std::free);
    if (!reply || xcb_get_image_data_length(reply.get()) < 4) {
        return std::nullopt;
    }
    const std::uint8_t* bytes = xcb_get_image_data(reply.get());
    return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 | static_cast<std::uint32_t>(bytes[2]) << 16;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 4) {
        std::fputs("usage: first_paint X Y PROGRAM [ARGUMENT...]\n", stderr);
        return 2;
    }
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const auto x = static_cast<std::int16_t>(std::atoi(argv[1]));
    const auto y = static_cast<std::int16_t>(std::atoi(argv[2]));
    const auto before = pixelAt(connection, x, y);
    if (!before) {
        std::fputs("the display cannot be read\n", stderr);
        return EXIT_FAILURE;
    }
    const auto began = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(STDERR_FILENO, STDOUT_FILENO); // whoever reads our figures must not wait for the program
        execv(argv[3], argv + 3);
        std::perror(argv[3]);
        _exit(127);
    }
    Milliseconds passed{0};
    while (pixelAt(connection, x, y) == before) {
        passed = std::chrono::steady_clock::now() - began;
        if (passed > Milliseconds{20000}) {
            std::fputs("nothing was painted\n", stderr);
            return EXIT_FAILURE;
        }
        usleep(500);
    }
    passed = std::chrono::steady_clock::now() - began;
    std::printf("%.0f %d\n", passed.count(), pid);
    return EXIT_SUCCESS;
}
