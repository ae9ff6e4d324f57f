#include "platform/linux/wayland/I3IpcProtocol.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <cstring>

namespace quelmo::linux_platform::i3ipc {
namespace {

constexpr QByteArrayView magic = "i3-ipc";
constexpr qsizetype headerSize = 6 + 4 + 4;
constexpr qsizetype payloadLimit = 64 * 1024 * 1024; // a tree of thousands of windows fits
const QString scratchpad = QStringLiteral("__i3_scratch");

// A window ("view") node: it has a process, or an application id, or X11 properties.
bool isWindow(const QJsonObject& node) {
    return node.contains(QLatin1String("pid")) || node.contains(QLatin1String("app_id")) ||
           node.contains(QLatin1String("window_properties"));
}

CompositorWindow windowOf(const QJsonObject& node, bool inScratchpad) {
    CompositorWindow window;
    window.handle = QString::number(node.value(QLatin1String("id")).toInteger(-1));
    if (const qint64 pid = node.value(QLatin1String("pid")).toInteger(0); pid > 0)
        window.pid = pid;
    window.appId = node.value(QLatin1String("app_id")).toString();
    const QJsonObject x11 = node.value(QLatin1String("window_properties")).toObject();
    window.xwayland = node.value(QLatin1String("shell")).toString() == QLatin1String("xwayland") ||
                      !x11.isEmpty();
    if (window.appId.isEmpty())
        window.appId = x11.value(QLatin1String("class")).toString();
    window.focused = node.value(QLatin1String("focused")).toBool();
    window.minimised = inScratchpad;
    window.onScreen = !inScratchpad && node.value(QLatin1String("visible")).toBool();
    // XWayland windows say what they are; anything but an application window or dialog is a
    // panel, a menu or a splash screen.
    const QString type = node.value(QLatin1String("window_type")).toString();
    window.ordinary = type.isEmpty() || type == QLatin1String("normal") ||
                      type == QLatin1String("dialog") || type == QLatin1String("utility") ||
                      type == QLatin1String("unknown");
    const QJsonValue height =
        node.value(QLatin1String("rect")).toObject().value(QLatin1String("height"));
    if (height.isDouble())
        window.height = height.toDouble();
    return window;
}

void collect(const QJsonObject& node, bool inScratchpad, std::vector<CompositorWindow>& out) {
    const bool scratch =
        inScratchpad ||
        (node.value(QLatin1String("type")).toString() == QLatin1String("workspace") &&
         node.value(QLatin1String("name")).toString() == scratchpad);
    if (isWindow(node) &&
        node.value(QLatin1String("type")).toString() != QLatin1String("workspace"))
        out.push_back(windowOf(node, scratch));
    for (const char* children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(QLatin1String(children)).toArray())
            collect(child.toObject(), scratch, out);
    }
}

QRect rectOf(const QJsonObject& node) {
    const QJsonObject rect = node.value(QLatin1String("rect")).toObject();
    return {rect.value(QLatin1String("x")).toInt(), rect.value(QLatin1String("y")).toInt(),
            rect.value(QLatin1String("width")).toInt(),
            rect.value(QLatin1String("height")).toInt()};
}

bool findWindow(const QJsonObject& node, quint32 window, X11WindowPlace& place) {
    const QString type = node.value(QLatin1String("type")).toString();
    if (type == QLatin1String("output"))
        place.output = rectOf(node);
    else if (type == QLatin1String("workspace"))
        place.workspace = rectOf(node);
    if (type != QLatin1String("workspace") && type != QLatin1String("output") &&
        node.value(QLatin1String("window")).toInteger(-1) == qint64(window)) {
        place.container = node.value(QLatin1String("id")).toInteger(-1);
        place.rect = rectOf(node);
        return place.container >= 0;
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(QLatin1String(children)).toArray()) {
            if (findWindow(child.toObject(), window, place))
                return true;
        }
    }
    return false;
}

} // namespace

QByteArray encode(std::uint32_t type, const QByteArray& payload) {
    QByteArray message;
    message.reserve(headerSize + payload.size());
    message.append(magic.data(), magic.size());
    const auto length = static_cast<std::uint32_t>(payload.size());
    message.append(reinterpret_cast<const char*>(&length), sizeof length);
    message.append(reinterpret_cast<const char*>(&type), sizeof type);
    message.append(payload);
    return message;
}

std::optional<Message> takeMessage(QByteArray& buffer, bool& broken) {
    if (buffer.size() < headerSize) {
        broken = broken || !magic.startsWith(
                               QByteArrayView(buffer).first(std::min(buffer.size(), magic.size())));
        return std::nullopt;
    }
    if (!buffer.startsWith(magic)) {
        broken = true;
        return std::nullopt;
    }
    std::uint32_t length = 0;
    Message message;
    std::memcpy(&length, buffer.constData() + magic.size(), sizeof length);
    std::memcpy(&message.type, buffer.constData() + magic.size() + 4, sizeof message.type);
    if (length > payloadLimit) {
        broken = true;
        return std::nullopt;
    }
    if (buffer.size() < headerSize + qsizetype(length))
        return std::nullopt;
    message.payload = buffer.mid(headerSize, length);
    buffer.remove(0, headerSize + length);
    return message;
}

std::vector<CompositorWindow> windowsOfTree(const QByteArray& tree) {
    std::vector<CompositorWindow> windows;
    const QJsonDocument document = QJsonDocument::fromJson(tree);
    if (document.isObject())
        collect(document.object(), false, windows);
    return windows;
}

std::optional<WindowEvent> parseWindowEvent(const QByteArray& payload) {
    const QJsonDocument document = QJsonDocument::fromJson(payload);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject event = document.object();
    const QJsonObject container = event.value(QLatin1String("container")).toObject();
    if (container.isEmpty())
        return std::nullopt;
    WindowEvent parsed;
    parsed.change = event.value(QLatin1String("change")).toString();
    parsed.window = windowOf(container, false);
    return parsed;
}

QByteArray closeCommand(const CompositorWindow& window) {
    bool numeric = false;
    const qint64 id = window.handle.toLongLong(&numeric);
    if (!numeric || id < 0)
        return {};
    return "[con_id=" + QByteArray::number(id) + "] kill";
}

std::optional<X11WindowPlace> findX11Window(const QByteArray& tree, quint32 window) {
    const QJsonDocument document = QJsonDocument::fromJson(tree);
    X11WindowPlace place;
    if (window == 0 || !document.isObject() || !findWindow(document.object(), window, place))
        return std::nullopt;
    return place;
}

QPoint pointerFromCentredWindow(const QRect& window, const QRect& output) {
    const auto axis = [](int low, int high, int outputLow, int outputHigh) {
        if (low <= outputLow && high < outputHigh)
            return outputLow; // stopped by the low edge: the pointer lies towards it
        if (high >= outputHigh && low > outputLow)
            return outputHigh;
        return low + (high - low + 1) / 2; // sway puts the window's left half before it
    };
    return {axis(window.left(), window.right(), output.left(), output.right()),
            axis(window.top(), window.bottom(), output.top(), output.bottom())};
}

QByteArray moveToPointerCommand(qint64 container) {
    return "[con_id=" + QByteArray::number(container) + "] move position cursor";
}

QByteArray moveCommand(qint64 container, QPoint topLeft) {
    return "[con_id=" + QByteArray::number(container) + "] move absolute position " +
           QByteArray::number(topLeft.x()) + ' ' + QByteArray::number(topLeft.y());
}

} // namespace quelmo::linux_platform::i3ipc
