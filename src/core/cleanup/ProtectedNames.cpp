#include "core/cleanup/ProtectedNames.h"

#include <QSet>

namespace quelmo {

namespace {

// Lower-case whole names, separated by spaces, one group per line. Closing any of these would take
// the session, the desktop, sound or input down with it, or fight the system; when in doubt a name
// belongs here.
// clang-format off
constexpr const char* protectedGroups[] = {
    // The core set every platform shares, this program's former name included.
    "kernel_task launchd windowserver loginwindow systemuiserver dock finder controlcenter "
    "notificationcenter spotlight siri coreaudiod bluetoothd mds mds_stores mdworker "
    "mdworker_shared cfprefsd distnoted secd trustd opendirectoryd universalaccessd wifiagent "
    "powerd nuvex",

    // This program.
    "quelmo",

    // Session and service managers.
    "systemd (sd-pam) gnome-session gnome-session-binary gnome-session-ctl gnome-session-service "
    "xfce4-session lxqt-session lxsession ksmserver plasma_session startplasma-x11 "
    "startplasma-wayland mate-session cinnamon-session cinnamon-session-binary budgie-session "
    "gdm-x-session gdm-wayland-session xinit startx",

    // Window managers and compositors.
    "kwin_x11 kwin_wayland kwin_wayland_wrapper mutter gnome-shell xfwm4 openbox marco muffin "
    "cinnamon metacity compiz fluxbox icewm i3 sway awesome bspwm herbstluftwm dwm xmonad "
    "enlightenment weston labwc wayfire hyprland river budgie-wm gala picom compton xcompmgr",

    // Desktop shells, panels, docks, desktop icons, applets and notification daemons.
    "plasmashell xfce4-panel xfdesktop lxqt-panel pcmanfm-qt pcmanfm lxpanel mate-panel caja "
    "nemo-desktop budgie-panel wingpanel plank latte-dock waybar polybar tint2 swaybg nm-applet "
    "xfce4-notifyd dunst mako notification-daemon mate-notification-daemon "
    "gnome-shell-calendar-server",

    // Settings and desktop helper daemons.
    "xfsettingsd xfconfd xsettingsd dconf-service kded5 kded6 kglobalaccel5 kglobalacceld "
    "kactivitymanagerd kwalletd5 kwalletd6 org_kde_powerdevil xfce4-power-manager "
    "mate-settings-daemon csd-power csd-media-keys csd-keyboard csd-xsettings "
    "gsd-a11y-settings gsd-color gsd-datetime gsd-housekeeping gsd-keyboard gsd-media-keys "
    "gsd-power gsd-print-notifications gsd-printer gsd-rfkill gsd-screensaver-proxy gsd-sharing "
    "gsd-smartcard gsd-sound gsd-usb-protection gsd-wacom gsd-xsettings gsd-disk-utility-notify",

    // Screen lockers.
    "xscreensaver light-locker gnome-screensaver xfce4-screensaver swaylock xss-lock "
    "kscreenlocker_greet",

    // Sound.
    "pipewire pipewire-pulse pipewire-media-session wireplumber pulseaudio jackd jackdbus",

    // Desktop portals.
    "xdg-desktop-portal xdg-desktop-portal-gtk xdg-desktop-portal-gnome xdg-desktop-portal-kde "
    "xdg-desktop-portal-wlr xdg-desktop-portal-hyprland xdg-desktop-portal-xapp "
    "xdg-desktop-portal-lxqt xdg-document-portal xdg-permission-store",

    // Input methods, Korean input included.
    "ibus-daemon ibus-x11 ibus-dconf ibus-portal ibus-extension-gtk3 ibus-ui-gtk3 "
    "ibus-engine-simple ibus-engine-hangul fcitx fcitx5 kime nimf uim-xim",

    // Display servers.
    "xorg x xwayland xvfb xephyr xvnc",

    // Message buses, accessibility and credential agents.
    "dbus-daemon dbus-broker dbus-broker-launch dbus-launch at-spi-bus-launcher "
    "at-spi2-registryd gnome-keyring-daemon ssh-agent gpg-agent "
    "polkit-gnome-authentication-agent-1 polkit-kde-authentication-agent-1 "
    "polkit-mate-authentication-agent-1 lxpolkit lxqt-policykit-agent xfce-polkit",

    // Virtual file systems, volume monitors, search indexers and online accounts.
    "gvfsd gvfsd-fuse gvfsd-metadata gvfsd-trash gvfsd-network gvfsd-dnssd gvfsd-recent "
    "gvfsd-burn gvfs-udisks2-volume-monitor gvfs-afc-volume-monitor gvfs-mtp-volume-monitor "
    "gvfs-gphoto2-volume-monitor gvfs-goa-volume-monitor tracker-miner-fs-3 tracker-extract-3 "
    "baloo_file baloo_file_extractor goa-daemon goa-identity-service evolution-source-registry "
    "evolution-calendar-factory evolution-addressbook-factory evolution-alarm-notify",
};
// clang-format on

const QSet<QString>& protectedNames() {
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* group : protectedGroups)
            for (const QString& name : QString::fromLatin1(group).split(QLatin1Char(' ')))
                set.insert(name);
        return set;
    }();
    return names;
}

} // namespace

bool isProtectedProcessName(const QString& name) {
    return protectedNames().contains(name.toLower());
}

} // namespace quelmo
