#include "flash/control/DisplayPut.h"

#ifdef ZORVEX_HAS_XCB
#include <QGuiApplication>

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/socket.h>
#include <sys/uio.h>
#include <utility>
#endif

namespace flash::control
{

#ifdef ZORVEX_HAS_XCB

namespace
{

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

/// The few requests of the MIT-SHM extension that are needed, as they go over the wire.
namespace shm
{

xcb_extension_t extension{"MIT-SHM", 0};
enum Opcode : std::uint8_t { kQueryVersion = 0, kDetach = 2, kPutImage = 3, kAttachFd = 6 };

struct Header { // the library fills it in
    std::uint8_t major, minor;
    std::uint16_t length;
};
struct QueryVersion {
    Header header;
};
struct Version {
    std::uint8_t responseType, sharedPixmaps;
    std::uint16_t sequence;
    std::uint32_t length;
    std::uint16_t major, minor;
};
struct AttachFd {
    Header header;
    std::uint32_t segment;
    std::uint8_t readOnly;
    std::uint8_t unused[3];
};
struct Detach {
    Header header;
    std::uint32_t segment;
};
struct PutImage {
    Header header;
    std::uint32_t drawable, context;
    std::uint16_t totalWidth, totalHeight, sourceX, sourceY, width, height;
    std::int16_t x, y;
    std::uint8_t depth, format, sendEvent, unused;
    std::uint32_t segment, offsetBytes;
};
static_assert(sizeof(AttachFd) == 12 && sizeof(Detach) == 8 && sizeof(PutImage) == 40);

/// @param attached a descriptor that the library closes, or -1
template <class Request>
unsigned send(xcb_connection_t* connection, Opcode opcode, Request request, int flags = 0, int attached = -1)
{
    // The library writes the length in front of what it is given.
    iovec parts[3]{};
    parts[2] = {&request, sizeof request};
    const xcb_protocol_request_t form{1, &extension, opcode,
                                      static_cast<std::uint8_t>(opcode == kQueryVersion ? 0 : 1)};
    return attached < 0 ? xcb_send_request(connection, flags, parts + 2, &form)
                        : xcb_send_request_with_fds(connection, flags, parts + 2, &form, 1, &attached);
}

/// Memory goes to the server by descriptor since 1.2.
bool takesDescriptors(xcb_connection_t* connection)
{
    const xcb_query_extension_reply_t* found = xcb_get_extension_data(connection, &extension);
    if (found == nullptr || found->present == 0) return false;
    const unsigned asked = send(connection, kQueryVersion, QueryVersion{}, XCB_REQUEST_CHECKED);
    const Owned<Version> version(static_cast<Version*>(xcb_wait_for_reply(connection, asked, nullptr)));
    return version && (version->major > 1 || (version->major == 1 && version->minor >= 2));
}

} // namespace shm

/// A descriptor that is sent any other way ends the connection.
bool isLocalSocket(xcb_connection_t* connection)
{
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    return getsockname(xcb_get_file_descriptor(connection), reinterpret_cast<sockaddr*>(&address), &length) ==
               0 &&
           address.ss_family == AF_UNIX;
}

bool isLittleEndian()
{
    constexpr std::uint16_t kOne = 1;
    return *reinterpret_cast<const std::uint8_t*>(&kOne) == 1;
}

/// Whether pixels of a window lie as those of pictures do: 0xAARRGGBB in the machine's order.
bool hasPictureFormat(const xcb_setup_t* setup, std::uint8_t depth, xcb_visualid_t visual)
{
    constexpr int kBitsPerPixel = 32;
    if ((setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) != isLittleEndian()) return false;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0; xcb_format_next(&format))
        if (format.data->depth == depth && format.data->bits_per_pixel != kBitsPerPixel) return false;
    for (auto screen = xcb_setup_roots_iterator(setup); screen.rem > 0; xcb_screen_next(&screen))
        for (auto at = xcb_screen_allowed_depths_iterator(screen.data); at.rem > 0; xcb_depth_next(&at))
            for (auto one = xcb_depth_visuals_iterator(at.data); one.rem > 0; xcb_visualtype_next(&one))
                if (one.data->visual_id == visual)
                    return one.data->red_mask == 0xFF0000 && one.data->green_mask == 0xFF00 &&
                           one.data->blue_mask == 0xFF;
    return false;
}

} // namespace

class DisplayPut::Private
{
public:
    explicit Private(xcb_connection_t* connection) : m_connection(connection) {}
    ~Private()
    {
        // After the application, there is no connection any more.
        if (qGuiApp == nullptr) return;
        leaveWindow();
        detach();
        if (m_unread) xcb_discard_reply(m_connection, m_unread->sequence);
        xcb_flush(m_connection);
    }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    bool attach(const PictureMemory& pictures)
    {
        if (m_segment != 0) return true;
        const int descriptor = fcntl(pictures.descriptor(), F_DUPFD_CLOEXEC, 0);
        if (descriptor < 0) return false;
        const std::uint32_t segment = xcb_generate_id(m_connection);
        const unsigned sent = shm::send(m_connection, shm::kAttachFd, shm::AttachFd{{}, segment, 1, {}},
                                        XCB_REQUEST_CHECKED, descriptor);
        if (Owned<xcb_generic_error_t>(xcb_request_check(m_connection, {sent}))) return false;
        m_segment = segment;
        return true;
    }

    void detach()
    {
        if (m_segment != 0)
            shm::send(m_connection, shm::kDetach, shm::Detach{{}, std::exchange(m_segment, 0)});
    }

    bool enterWindow(xcb_window_t window)
    {
        if (window == m_window) return true;
        leaveWindow();
        const auto shape = xcb_get_geometry(m_connection, window);
        const auto looks = xcb_get_window_attributes(m_connection, window);
        const Owned<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(m_connection, shape, nullptr));
        const Owned<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(m_connection, looks, nullptr));
        if (!geometry || !attributes) return false;
        if (!hasPictureFormat(xcb_get_setup(m_connection), geometry->depth, attributes->visual)) return false;
        m_window = window;
        m_depth = geometry->depth;
        m_context = xcb_generate_id(m_connection);
        constexpr std::uint32_t kNone = 0;
        xcb_create_gc(m_connection, m_context, window, XCB_GC_GRAPHICS_EXPOSURES, &kNone);
        return true;
    }

    void leaveWindow()
    {
        if (m_window != 0) xcb_free_gc(m_connection, m_context);
        m_window = 0;
    }

    void put(const PictureMemory& pictures, int index, QPoint origin, const QRegion& parts)
    {
        shm::PutImage request{};
        request.drawable = m_window;
        request.context = m_context;
        request.totalWidth = static_cast<std::uint16_t>(pictures.lineBytes() / sizeof(std::uint32_t));
        request.totalHeight = static_cast<std::uint16_t>(pictures.size().height());
        request.depth = m_depth;
        request.format = XCB_IMAGE_FORMAT_Z_PIXMAP;
        request.segment = m_segment;
        request.offsetBytes = static_cast<std::uint32_t>(pictures.offsetBytes(index));
        for (const QRect& part : parts) {
            request.sourceX = static_cast<std::uint16_t>(part.x());
            request.sourceY = static_cast<std::uint16_t>(part.y());
            request.width = static_cast<std::uint16_t>(part.width());
            request.height = static_cast<std::uint16_t>(part.height());
            request.x = static_cast<std::int16_t>(origin.x() + part.x());
            request.y = static_cast<std::int16_t>(origin.y() + part.y());
            shm::send(m_connection, shm::kPutImage, request);
        }
        // Any answer to what is asked behind it says that the server has come so far.
        if (m_unread) xcb_discard_reply(m_connection, m_unread->sequence);
        m_unread = xcb_get_input_focus(m_connection);
        xcb_flush(m_connection);
    }

    void finish()
    {
        if (!m_unread) return;
        const auto asked = *std::exchange(m_unread, std::nullopt);
        Owned<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(m_connection, asked, nullptr));
    }

    bool m_cannot = false;

private:
    xcb_connection_t* m_connection; // the toolkit's
    std::uint32_t m_segment = 0;
    xcb_window_t m_window = 0;
    xcb_gcontext_t m_context = 0;
    std::uint8_t m_depth = 0;
    std::optional<xcb_get_input_focus_cookie_t> m_unread; // asked for behind what was put last
};

std::unique_ptr<DisplayPut> DisplayPut::create()
{
    if (qGuiApp == nullptr || QGuiApplication::platformName() != "xcb") return nullptr;
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
    if (connection == nullptr || !isLocalSocket(connection) || !shm::takesDescriptors(connection))
        return nullptr;
    return std::unique_ptr<DisplayPut>(new DisplayPut(std::make_unique<Private>(connection)));
}

bool DisplayPut::put(const PictureMemory& pictures, int index, WId window, QPoint origin,
                     const QRegion& parts)
{
    if (d->m_cannot) return false;
    d->m_cannot = !d->enterWindow(static_cast<xcb_window_t>(window)) || !d->attach(pictures);
    if (d->m_cannot) return false;
    d->put(pictures, index, origin, parts);
    return true;
}

void DisplayPut::finish() { d->finish(); }
void DisplayPut::detach() { d->detach(); }

#else

class DisplayPut::Private
{
};

std::unique_ptr<DisplayPut> DisplayPut::create() { return nullptr; }
bool DisplayPut::put(const PictureMemory&, int, WId, QPoint, const QRegion&) { return false; }
void DisplayPut::finish() {}
void DisplayPut::detach() {}

#endif

DisplayPut::DisplayPut(std::unique_ptr<Private> made) : d(std::move(made)) {}
DisplayPut::~DisplayPut() = default;

} // namespace flash::control
