"""The session bus as a panel uses it: a watcher of tray items, a file manager, and a reader of the agent's menu."""

import os

from gi.repository import Gio, GLib

from harness.processes import wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
FILE_MANAGER = "org.freedesktop.FileManager1"
MENU = "com.canonical.dbusmenu"
NODE = Gio.DBusNodeInfo.new_for_xml(f"""<node>
    <interface name="{WATCHER}"><method name="RegisterStatusNotifierItem"><arg type="s"/></method></interface>
    <interface name="{FILE_MANAGER}"><method name="ShowItems"><arg type="as"/><arg type="s"/></method></interface>
</node>""")


class Row:
    """An item of the menu: its id, its properties, its label ("" for none) and its rows."""

    def __init__(self, layout):
        self.id, self.properties, rows = layout
        self.label = self.properties.get("label", "")
        self.rows = [Row(row) for row in rows]

    def at(self, *labels):
        """Returns the row at a path of labels. Fails when there is none."""
        row = self
        for label in labels:
            found = [child for child in row.rows if child.label == label]
            assert found, f"no item {label!r} among {[child.label for child in row.rows]}"
            row = found[0]
        return row


class Panel:
    """A connection to the session bus. Signals and calls of others arrive in `wait` and `settle`."""

    def __init__(self):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        address = os.environ["DBUS_SESSION_BUS_ADDRESS"]
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.items = []  # a pair for each registration: bus name, object path
        self.updates = []  # ItemsPropertiesUpdated: each as {id: properties}
        self.layouts = []  # LayoutUpdated: the menus' ids
        self.shown_folders = []  # the file manager's
        self.owned = 0  # of the last name
        for path, interface in zip(("/StatusNotifierWatcher", "/org/freedesktop/FileManager1"), NODE.interfaces):
            self.bus.register_object(path, interface, self._on_call, None, None)
        self.bus.signal_subscribe(None, MENU, None, None, None, Gio.DBusSignalFlags.NONE, self._on_signal)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.bus.close(None)

    def start(self, name=WATCHER):
        """Takes the name of the watcher, or of the file manager."""
        self.owned = Gio.bus_own_name_on_connection(self.bus, name, Gio.BusNameOwnerFlags.NONE, None, None)

    def restart(self):
        """Gives the watcher's name up and takes it again, as a panel that is started again."""
        Gio.bus_unown_name(self.owned)
        self.start()

    def _on_call(self, _bus, sender, _path, interface, _method, arguments, invocation):
        if interface == WATCHER:
            self.items.append((sender, arguments[0]))
        else:
            self.shown_folders += arguments[0]
        invocation.return_value(None)

    def _on_signal(self, _bus, _sender, _path, _interface, signal, arguments):
        if signal == "LayoutUpdated":
            self.layouts.append(arguments[1])
        elif signal == "ItemsPropertiesUpdated":
            self.updates.append(dict(arguments.unpack()[0]))

    def wait(self, condition):
        """Like wait_until, and receives signals and calls."""
        def receive():
            while GLib.MainContext.default().iteration(False):
                pass
            return condition()
        return wait_until(receive)

    def settle(self):
        """Receives all that the agent has sent by now: the reply to a call comes after it."""
        self.layout()
        self.wait(lambda: True)

    def forget(self):
        """Drops the signals so far."""
        self.settle()
        self.updates, self.layouts = [], []

    def call(self, method, types, *arguments):
        """Calls a method of the menu, with types such as "(is)": its results, as plain values."""
        return self.bus.call_sync(self.items[-1][0], "/MenuBar", MENU, method, GLib.Variant(types, arguments), None,
                                  Gio.DBusCallFlags.NONE, 120_000).unpack()  # milliseconds: sanitizers are slow

    def layout(self, parent=0, depth=-1, properties=()):
        return Row(self.call("GetLayout", "(iias)", parent, depth, properties)[1])

    def at(self, *labels):
        return self.layout().at(*labels)

    def send(self, row, event):
        self.call("Event", "(isvu)", row, event, GLib.Variant("i", 0), 0)

    def click(self, *labels):
        self.send(self.at(*labels).id, "clicked")
