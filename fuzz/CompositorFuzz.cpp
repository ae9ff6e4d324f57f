// What Wayland compositors send over their IPC: sway's window tree, framed messages and window
// events, Hyprland's client and monitor lists and event lines, the KWin script's window reports.
// The first byte picks the parser, so one corpus holds all of them.
#include "FuzzInput.h"
#include "platform/linux/wayland/HyprlandProtocol.h"
#include "platform/linux/wayland/I3IpcProtocol.h"
#include "platform/linux/wayland/KWinScript.h"

using namespace quelmo::linux_platform;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    QByteArray input = quelmo::fuzz::bytes(data + 1, size - 1);
    switch (data[0] % 5) {
    case 0:
        (void)i3ipc::windowsOfTree(input);
        break;
    case 1: {
        bool broken = false;
        while (!broken && i3ipc::takeMessage(input, broken)) {
        }
        (void)i3ipc::parseWindowEvent(input);
        break;
    }
    case 2: {
        // The monitor list follows the client list after the first NUL.
        const qsizetype split = input.indexOf('\0');
        (void)hyprland::windowsOf(input.left(split),
                                  split < 0 ? QByteArray() : input.mid(split + 1));
        break;
    }
    case 3:
        for (const QByteArray& line : input.split('\n'))
            if (const auto event = hyprland::parseEvent(line))
                (void)hyprland::addressOfActiveWindowEvent(*event);
        break;
    default:
        (void)kwin::windowsOfReport(input);
        (void)kwin::windowOfReport(input);
        break;
    }
    return 0;
}
