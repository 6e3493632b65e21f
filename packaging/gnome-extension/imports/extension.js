// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tells KESTU which window has the focus. Others are kept from asking the shell itself; on the session bus
// only programs of the same user listen. Locking the screen disables it, as every extension.
//
// For GNOME 43 and 44; modules/ is for newer ones, and differs at the top and at the end only.
'use strict';

const {Gio, GLib, Meta, Shell} = imports.gi;

const NAME = 'jp.kestu.FocusedWindow';
const PATH = '/jp/kestu/FocusedWindow';
const INTERFACE = `
<node>
  <interface name="jp.kestu.FocusedWindow">
    <method name="Get"><arg name="window" type="a{sv}" direction="out"/></method>
    <signal name="Changed"><arg name="window" type="a{sv}"/></signal>
    <property name="Version" type="u" access="read"/>
  </interface>
</node>`;
const CHANGES = ['notify::title', 'notify::wm-class', 'notify::gtk-application-id', 'notify::fullscreen'];

class FocusedWindow {
    constructor() {
        this._window = null;
        this._changeIds = [];
        this._object = Gio.DBusExportedObject.wrapJSObject(INTERFACE, this);
        this._object.export(Gio.DBus.session, PATH);
        this._focusId = global.display.connect('notify::focus-window', () => this._follow());
        this._follow();
        this._nameId = Gio.bus_own_name_on_connection(
            Gio.DBus.session, NAME, Gio.BusNameOwnerFlags.NONE, null, null);
    }

    destroy() {
        Gio.bus_unown_name(this._nameId);
        global.display.disconnect(this._focusId);
        this._leave();
        this._object.unexport();
    }

    get Version() {
        return 1;
    }

    Get() {
        return this._facts();
    }

    _follow() {
        this._leave();
        this._window = global.display.focus_window;
        if (this._window)
            this._changeIds = CHANGES.map(change => this._window.connect(change, () => this._tell()));
        this._tell();
    }

    _leave() {
        this._changeIds.forEach(id => this._window.disconnect(id));
        this._changeIds = [];
        this._window = null;
    }

    _tell() {
        this._object.emit_signal('Changed', new GLib.Variant('(a{sv})', [this._facts()]));
    }

    /** Without a window empty. "at" is when this was so, in microseconds of the monotonic clock. */
    _facts() {
        const window = this._window;
        if (!window)
            return {};
        const text = value => new GLib.Variant('s', value ?? '');
        const app = Shell.WindowTracker.get_default().get_window_app(window);
        return {
            id: new GLib.Variant('t', window.get_id()),
            pid: new GLib.Variant('i', window.get_pid()),
            app: text(app?.get_id()), // the desktop entry's file name, or "window:N"
            sandbox: text(window.get_sandboxed_app_id()),
            gtk: text(window.get_gtk_application_id()),
            class: text(window.get_wm_class()), // of a Wayland window its app_id
            instance: text(window.get_wm_class_instance()),
            isDesktop: new GLib.Variant('b', window.get_window_type() === Meta.WindowType.DESKTOP),
            isFullscreen: new GLib.Variant('b', window.is_fullscreen()),
            title: text(window.get_title()),
            at: new GLib.Variant('x', GLib.get_monotonic_time()),
        };
    }
}

class Extension {
    enable() {
        this._focusedWindow = new FocusedWindow();
    }

    disable() {
        this._focusedWindow.destroy();
        this._focusedWindow = null;
    }
}

function init() {
    return new Extension();
}
