#pragma once

#include "app/tray/StatusItem.h"

#include <QColor>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

namespace quelmo {

// The item in an XEmbed system tray, for desktops without a StatusNotifierItem host. Such trays
// show no text beside the icon, so the title goes into the tooltip. The icon takes the colour
// the tray asks symbolic icons to use; trays that ask none get a colour that stands out from
// the pixels around the icon (the palette's text colour when it does). A click acts on release,
// as on every other host.
class XEmbedTrayIcon : public QObject {
    Q_OBJECT

public:
    explicit XEmbedTrayIcon(QObject* parent = nullptr);
    ~XEmbedTrayIcon() override;

    void setTitle(const QString& title);
    // The icon's place on the screen; empty until it is docked.
    QRect geometry() const { return icon_.geometry(); }

signals:
    void clicked(quelmo::StatusClick click);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void retint();

    QSystemTrayIcon icon_;
    // Trays paint their background after an icon docks, and may move it: the colour is chosen
    // again a few times after the start, and after the icon docked or moved.
    QTimer retintLater_;
    QColor tint_;
    int retintsLeft_ = 0;
};

} // namespace quelmo
