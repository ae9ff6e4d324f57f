// The least an open popover can cost: a bare Qt Quick window of the popover's width, drawn by the
// same software renderer, whose only motion is a pair of blades opening and closing as the
// popover's scissors do, in the same visible steps: 3 each way in 0.3 s, 10 frames a second.
// There is nothing else in it: no readings, no process table, no other loop. bench/app/open_cost.py
// measures it in turns with the real program, as the floor under the open popover's cost.
//
//   quelmo_quick_floor [FRAMES_PER_SECOND]

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QQuickWindow>

namespace {

constexpr char scene[] = R"(
import QtQuick
Rectangle {
    id: root
    property int framesPerSecond: 10
    property int step: 0
    width: 320; height: 600
    color: "#fdf6f9"
    Timer {
        interval: Math.round(1000 / root.framesPerSecond); running: true; repeat: true
        onTriggered: root.step = (root.step + 1) % 6
    }
    Item {
        x: 140; y: 40; width: 40; height: 40
        readonly property real opening: [0, 1, 2, 3, 2, 1][root.step] / 3
        Rectangle { anchors.centerIn: parent; width: 36; height: 5; radius: 2.5; color: "#f49ac1"
                    rotation: 8 * parent.opening }
        Rectangle { anchors.centerIn: parent; width: 36; height: 5; radius: 2.5; color: "#8fb8f0"
                    rotation: -8 * parent.opening }
    }
}
)";

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication app(argc, argv);
    QQuickView view;
    QQmlComponent component(view.engine());
    component.setData(scene, QUrl());
    auto* root = qobject_cast<QQuickItem*>(component.create());
    if (!root) {
        qWarning("%s", qPrintable(component.errorString()));
        return 2;
    }
    if (argc > 1)
        root->setProperty("framesPerSecond", QString::fromLocal8Bit(argv[1]).toInt());
    view.setContent(QUrl(), &component, root);
    view.setTitle(QStringLiteral("quelmo_quick_floor"));
    view.show();
    return QGuiApplication::exec();
}
