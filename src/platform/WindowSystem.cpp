#include "platform/WindowSystem.h"

#include <QGuiApplication>

#ifdef ZORVEX_HAS_XCB
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#endif

namespace platform
{

#ifdef ZORVEX_HAS_XCB
namespace
{

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

/// The number behind the display's dot; programs of several X screens are rare, and 0 is where they start.
int screenNumber()
{
    const QByteArray display = qgetenv("DISPLAY");
    return display.mid(display.lastIndexOf(':')).contains('.')
               ? display.mid(display.lastIndexOf('.') + 1).toInt()
               : 0;
}

xcb_atom_t atomOf(xcb_connection_t* connection, const QByteArray& name)
{
    const auto asked =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
        xcb_intern_atom_reply(connection, asked, nullptr));
    return atom ? atom->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// A compositing manager owns a selection by the name that the window manager hints give it.
bool hasCompositor(xcb_connection_t* connection)
{
    const xcb_atom_t atom = atomOf(connection, "_NET_WM_CM_S" + QByteArray::number(screenNumber()));
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

/// A window manager that follows the hints leaves its own window's number at the root window.
bool hasManager(xcb_connection_t* connection)
{
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = screenNumber(); i > 0 && screen.rem > 1; --i) xcb_screen_next(&screen);
    const auto asked =
        xcb_get_property(connection, 0, screen.data->root, atomOf(connection, "_NET_SUPPORTING_WM_CHECK"),
                         XCB_ATOM_WINDOW, 0, 1);
    const std::unique_ptr<xcb_get_property_reply_t, Free> window(
        xcb_get_property_reply(connection, asked, nullptr));
    return window && xcb_get_property_value_length(window.get()) > 0;
}

} // namespace
#endif

bool hasPerPixelTransparency()
{
    const QString system = QGuiApplication::platformName();
    if (system == "offscreen" || system == "minimal") return false; // nothing lies under a window there
    if (system != "xcb") return true;
#ifdef ZORVEX_HAS_XCB
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        return hasCompositor(x11->connection());
#endif
    return false;
}

bool hasWindowManager()
{
    const QString system = QGuiApplication::platformName();
    if (system == "offscreen" || system == "minimal") return false;
#ifdef ZORVEX_HAS_XCB
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        return hasManager(x11->connection());
#endif
    return true;
}

bool isAloneWithDisplay() { return QGuiApplication::platformName() == "xcb" && !hasWindowManager(); }

bool letsWindowsPlaceThemselves() { return QGuiApplication::platformName() == "xcb"; }

void pokeScreen()
{
    if (QGuiApplication::platformName() != "xcb") return;
#ifdef ZORVEX_HAS_XCB
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        xcb_force_screen_saver(x11->connection(), XCB_SCREEN_SAVER_RESET);
        xcb_flush(x11->connection());
    }
#endif
}

} // namespace platform
