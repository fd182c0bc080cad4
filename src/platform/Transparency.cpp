#include "platform/Transparency.h"

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

/// A compositing manager owns a selection by the name that the window manager hints give it.
bool hasCompositor(xcb_connection_t* connection)
{
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(screenNumber());
    const auto asked =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
        xcb_intern_atom_reply(connection, asked, nullptr));
    if (!atom) return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
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

} // namespace platform
