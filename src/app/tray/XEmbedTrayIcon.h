#pragma once

#include "app/tray/StatusItem.h"

#include <QObject>
#include <QSystemTrayIcon>

namespace quelmo {

// The item in an XEmbed system tray, for desktops without a StatusNotifierItem host. Such trays
// show no text beside the icon, so the title goes into the tooltip. The icon takes the colour
// the tray asks symbolic icons to use, else the text colour of the palette.
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
};

} // namespace quelmo
