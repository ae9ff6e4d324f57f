#pragma once

// Stand-ins for the desktop-facing parts of the shell.

#include "PopoverSurface.h"
#include "StatusItem.h"

#include <functional>

namespace quelmo::test {

struct FakeStatusItem : StatusItem {
    QStringList titles;
    QList<StatusMenuEntry> menu;
    QPoint hint{1200, 10};

    void setTitle(const QString& title) override { titles << title; }
    void setMenu(const QList<StatusMenuEntry>& entries) override { menu = entries; }
    QPoint anchorHint() const override { return hint; }

    void click(StatusClick::Button button, QPoint at = {600, 12}) { emit clicked({button, at}); }
};

struct FakeSurface : PopoverSurface {
    QList<QPoint> shownAt;
    int hides = 0;
    std::function<void()> onShow; // runs just before the window would appear

    void showAt(QPoint anchor) override {
        if (onShow)
            onShow();
        shownAt << anchor;
    }
    void hide() override { ++hides; }
    void closeBy(CloseReason reason) { emit closedByUser(reason); }
};

} // namespace quelmo::test
