"""The desktops that tests/panels/run knows: how each is started without a screen, and what is different in it."""

import dataclasses


@dataclasses.dataclass
class Desktop:
    panel: str  # the shell command that is killed and restarted
    start: str = ""  # shell commands before the panel, which end at once
    is_ready: str = "true"  # a shell command that succeeds once the panel can be clicked
    packages: str = ""  # of a layer of its own over Debian 12; none for a desktop of this machine
    environment: dict = dataclasses.field(default_factory=dict)
    size: tuple = (1024, 768)  # of the display, in pixels
    view: tuple | None = None  # left, top, right, bottom: the part that the README shows; None for all
    bar: tuple | None = None  # the part that contains the icon and no clock; None for all
    button: int = 1  # the mouse button that opens the menu
    draws_red: bool = False  # whether an unavailable choice is red
    sessions: int = 1  # how often tests/panels/run starts it


# A window that is shown before there is a window manager can stay hidden.
OPENBOX = "openbox >/tmp/openbox.log 2>&1 & until xprop -root _NET_SUPPORTING_WM_CHECK | grep 'window id'; do sleep 0.1; done\n"

XFCE_SETTINGS = "".join(f"xfconf-query --channel xfce4-panel --create --property {line}\n" for line in (
    "/configver --type int --set 2",
    "/panels --force-array --type int --set 1",
    "/panels/panel-1/position --type string --set 'p=6;x=0;y=0'",
    "/panels/panel-1/position-locked --type bool --set true",
    "/panels/panel-1/length --type uint --set 100",
    "/panels/panel-1/size --type uint --set 28",
    "/panels/panel-1/plugin-ids --type int --set 1 --type int --set 2",
    "/plugins/plugin-1 --type string --set separator",
    "/plugins/plugin-1/expand --type bool --set true",
    "/plugins/plugin-1/style --type uint --set 0",
    "/plugins/plugin-2 --type string --set systray"))
LXQT_SETTINGS = """mkdir -p ~/.config/lxqt
printf '%s\n' panels=panel1 [panel1] plugins=spacer,statusnotifier position=Top panelSize=30 iconSize=22 width=100 \
    width-percent=true [spacer] type=spacer expandable=true [statusnotifier] type=statusnotifier >~/.config/lxqt/panel.conf
"""
GNOME_OVERVIEW = "-property org.gnome.Shell /org/gnome/Shell org.gnome.Shell OverviewActive"
KDE_WALLPAPER = """busctl --user call org.kde.plasmashell /PlasmaShell org.kde.PlasmaShell evaluateScript s 'for (const d of desktops()) {
    d.wallpaperPlugin = "org.kde.color";
    d.currentConfigGroup = ["Wallpaper", "org.kde.color", "General"];
    d.writeConfig("Color", "#dfe5ea");
}'"""
SWAY = """mkdir -p ~/.config/sway ~/.config/waybar
printf 'output * resolution 1024x768 bg #dfe5ea solid_color\nexec env >/tmp/sway.env\n' >~/.config/sway/config
echo '{"layer": "top", "height": 30, "modules-right": ["tray"], "tray": {"icon-size": 21}}' >~/.config/waybar/config
WLR_BACKENDS=x11 WLR_X11_OUTPUTS=1 WLR_RENDERER=pixman LIBSEAT_BACKEND=noop sway >/tmp/sway.log 2>&1 &
until grep '^WAYLAND_DISPLAY=' /tmp/sway.env; do sleep 0.1; done"""


def gsettings(schema, **values):
    return "".join(f'gsettings set {schema} {key.replace("_", "-")} "{value}"\n' for key, value in values.items())


DESKTOPS = {
    # Without a clock or a task list: what changes on the screen is then the agent's.
    "xfce4": Desktop("xfce4-panel", OPENBOX + XFCE_SETTINGS, "xdotool search --onlyvisible --class xfce4-panel",
                     size=(800, 560), view=(200, 0, 800, 400), draws_red=True),
    # A left click asks the agent for a window, here and in MATE.
    "lxqt": Desktop("lxqt-panel", OPENBOX + LXQT_SETTINGS, "xdotool search --onlyvisible --class lxqt-panel",
                    size=(800, 560), view=(200, 0, 800, 400), button=3),
    # The tray belongs to kded, and stays when the panel is killed.
    "kde": Desktop(
        "plasmashell --no-respawn", """mkdir -p ~/.config
        printf '[Compositing]\nEnabled=false\n' >~/.config/kwinrc
        kwin_x11 --no-kactivities >/tmp/kwin.log 2>&1 &
        kded5 >/tmp/kded.log 2>&1 &
        /usr/lib/x86_64-linux-gnu/libexec/kactivitymanagerd >/tmp/kactivities.log 2>&1 &""", KDE_WALLPAPER,
        "plasma-workspace plasma-desktop kwin-x11 breeze breeze-icon-theme kde-cli-tools plasma-integration"
        " qml-module-org-kde-draganddrop libkf5kiogui5 plasma-framework kded5",
        {"XDG_CURRENT_DESKTOP": "KDE", "DESKTOP_SESSION": "plasma", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5",
         "QT_QUICK_BACKEND": "software"}, view=(384, 368, 1024, 768), bar=(0, 724, 816, 768)),
    # The extension draws submenus inside the menu. The shell starts in its overview. The bar excludes the power button.
    "gnome": Desktop(
        "gnome-shell --x11",
        gsettings("org.gnome.shell", enabled_extensions="['ubuntu-appindicators@ubuntu.com']",
                  welcome_dialog_last_shown_version=99)
        + gsettings("org.gnome.desktop.interface", enable_animations="false")
        + gsettings("org.gnome.desktop.background", picture_options="none", primary_color="#dfe5ea"),
        f"grep -q 'GNOME Shell started' /tmp/panel.log && busctl --user set{GNOME_OVERVIEW} b false &&"
        f" busctl --user get{GNOME_OVERVIEW} | grep false",
        "gnome-shell gnome-shell-extension-appindicator gsettings-desktop-schemas gnome-themes-extra dconf-cli"
        " libglib2.0-bin gnome-settings-daemon-common at-spi2-core",
        {"XDG_CURRENT_DESKTOP": "GNOME", "GNOME_SHELL_SESSION_MODE": "user"}, size=(1280, 1024), view=(980, 0, 1280, 970),
        bar=(880, 0, 1225, 27), sessions=10),
    # The tray belongs to a program that Debian only recommends.
    "cinnamon": Desktop(
        "cinnamon --replace",
        gsettings("org.cinnamon", desktop_effects="false", enabled_applets="['panel1:right:0:xapp-status@cinnamon.org:0']")
        + gsettings("org.cinnamon.desktop.interface", icon_theme="Adwaita", gtk_theme="Adwaita")
        + "/usr/libexec/xapps/sn-watcher/xapp-sn-watcher >/tmp/watcher.log 2>&1 &",
        "grep 'Loaded applet xapp-status' /tmp/panel.log",
        "cinnamon muffin nemo cinnamon-session cinnamon-settings-daemon xapps-common xapp-sn-watcher dconf-cli"
        " libglib2.0-bin gnome-themes-extra", {"XDG_CURRENT_DESKTOP": "X-Cinnamon"}, draws_red=True),
    "mate": Desktop(
        "mate-panel",
        gsettings("org.mate.panel", enable_sni_support="true")
        + gsettings("org.mate.interface", gtk_theme="Menta", icon_theme="mate")
        + "marco >/tmp/marco.log 2>&1 &\nmate-settings-daemon >/tmp/settings.log 2>&1 &", "true",
        "mate-panel marco mate-settings-daemon mate-themes mate-icon-theme dconf-cli libglib2.0-bin",
        {"XDG_CURRENT_DESKTOP": "MATE"}, bar=(600, 0, 886, 25), button=3),
    # sway draws into a window of the display, so it has a pointer and keys.
    "waybar": Desktop("env $(grep '^WAYLAND_DISPLAY=' /tmp/sway.env) waybar", SWAY, packages="waybar sway xwayland",
                      environment={"XDG_CURRENT_DESKTOP": "sway"}, draws_red=True),
    # The agent in a terminal window, for the README's picture of it.
    "terminal": Desktop("", OPENBOX, size=(800, 560)),
}
