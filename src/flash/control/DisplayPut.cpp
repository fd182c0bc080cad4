#include "flash/control/DisplayPut.h"

#ifdef ZORVEX_HAS_XCB
#include <QGuiApplication>

#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/socket.h>
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

/// Memory goes to the server by descriptor since 1.2.
bool takesDescriptors(xcb_connection_t* connection)
{
    const xcb_query_extension_reply_t* found = xcb_get_extension_data(connection, &xcb_shm_id);
    if (found == nullptr || found->present == 0) return false;
    const auto asked = xcb_shm_query_version(connection);
    const Owned<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(connection, asked, nullptr));
    return version && std::pair(version->major_version, version->minor_version) >=
                          std::pair<std::uint16_t, std::uint16_t>(1, 2);
}

using Address = std::pair<sockaddr_storage, socklen_t>;

/// Of the server. @returns nothing unless it is on this machine: memory goes by descriptors, and one that is
/// sent any other way ends the connection
std::optional<Address> localServer(xcb_connection_t* connection)
{
    Address address{{}, sizeof(sockaddr_storage)};
    if (getpeername(xcb_get_file_descriptor(connection), reinterpret_cast<sockaddr*>(&address.first),
                    &address.second) != 0 ||
        address.first.ss_family != AF_UNIX)
        return std::nullopt;
    return address;
}

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::shared_ptr<xcb_connection_t>;

/// One for all movies, as long as there are any. The toolkit's own has a thread that wakes up for whatever
/// comes by it.
/// @returns null unless it leads where the toolkit's does
Connection connectionBeside(xcb_connection_t* toolkits)
{
    static std::weak_ptr<xcb_connection_t> common;
    if (auto connection = common.lock(); connection && xcb_connection_has_error(connection.get()) == 0)
        return connection;
    const auto wanted = localServer(toolkits);
    if (!wanted) return nullptr;
    // Never null, but maybe in error.
    Connection connection(xcb_connect(nullptr, nullptr), Disconnect());
    if (xcb_connection_has_error(connection.get()) != 0) return nullptr;
    const auto there = localServer(connection.get());
    if (!there || there->second != wanted->second ||
        std::memcmp(&there->first, &wanted->first, there->second) != 0 || !takesDescriptors(connection.get()))
        return nullptr;
    common = connection;
    return connection;
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
    Private(Connection connection, xcb_connection_t* toolkits)
        : m_connected(std::move(connection)), m_connection(m_connected.get()), m_toolkits(toolkits)
    {
    }
    ~Private()
    {
        leaveWindow();
        detach();
        if (m_unread) xcb_discard_reply(m_connection, m_unread->sequence);
        xcb_flush(m_connection);
    }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    /// The server may end this connection and leave the toolkit's.
    [[nodiscard]] bool isConnected() const { return xcb_connection_has_error(m_connection) == 0; }

    bool attach(const PictureMemory& pictures)
    {
        if (m_segment != 0) return true;
        const int descriptor = fcntl(pictures.descriptor(), F_DUPFD_CLOEXEC, 0);
        if (descriptor < 0) return false;
        const std::uint32_t segment = xcb_generate_id(m_connection);
        // The library closes the descriptor.
        constexpr std::uint8_t kReadOnly = 1;
        const auto sent = xcb_shm_attach_fd_checked(m_connection, segment, descriptor, kReadOnly);
        if (Owned<xcb_generic_error_t>(xcb_request_check(m_connection, sent))) return false;
        m_segment = segment;
        return true;
    }

    void detach()
    {
        if (m_segment != 0) xcb_shm_detach(m_connection, std::exchange(m_segment, 0));
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

    bool put(const PictureMemory& pictures, int index, QPoint origin, const QRegion& parts)
    {
        const auto width = static_cast<std::uint16_t>(pictures.lineBytes() / sizeof(std::uint32_t));
        const auto height = static_cast<std::uint16_t>(pictures.size().height());
        const auto offsetBytes = static_cast<std::uint32_t>(pictures.offsetBytes(index));
        constexpr std::uint8_t kNoEvent = 0;
        for (const QRect& part : parts)
            xcb_shm_put_image(
                m_connection, m_window, m_context, width, height, static_cast<std::uint16_t>(part.x()),
                static_cast<std::uint16_t>(part.y()), static_cast<std::uint16_t>(part.width()),
                static_cast<std::uint16_t>(part.height()), static_cast<std::int16_t>(origin.x() + part.x()),
                static_cast<std::int16_t>(origin.y() + part.y()), m_depth, XCB_IMAGE_FORMAT_Z_PIXMAP,
                kNoEvent, m_segment, offsetBytes);
        // Any answer to what is asked behind it says that the server has come so far.
        if (m_unread) xcb_discard_reply(m_connection, m_unread->sequence);
        m_unread = xcb_get_input_focus(m_connection);
        return xcb_flush(m_connection) > 0;
    }

    void finish()
    {
        if (!m_unread) return;
        const auto asked = *std::exchange(m_unread, std::nullopt);
        // By the next picture the answer lies there, as a rule.
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(m_connection, asked.sequence, &reply, &error) == 0)
            reply = xcb_get_input_focus_reply(m_connection, asked, &error);
        std::free(reply);
        std::free(error);
        // Windows that are gone meanwhile, and what the server tells everybody.
        while (const auto event = Owned<xcb_generic_event_t>(xcb_poll_for_queued_event(m_connection))) {
        }
    }

    void letToolkitFirst()
    {
        const auto asked = xcb_get_input_focus(m_toolkits);
        Owned<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(m_toolkits, asked, nullptr));
    }

    bool m_cannot = false;

private:
    Connection m_connected;
    xcb_connection_t* m_connection;
    xcb_connection_t* m_toolkits; // lives as long as the application
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
    if (x11 == nullptr || x11->connection() == nullptr) return nullptr;
    auto connection = connectionBeside(x11->connection());
    if (connection == nullptr) return nullptr;
    return std::unique_ptr<DisplayPut>(
        new DisplayPut(std::make_unique<Private>(std::move(connection), x11->connection())));
}

bool DisplayPut::put(const PictureMemory& pictures, int index, WId window, QPoint origin,
                     const QRegion& parts)
{
    if (d->m_cannot) return false;
    d->m_cannot =
        !d->isConnected() || !d->enterWindow(static_cast<xcb_window_t>(window)) || !d->attach(pictures);
    d->m_cannot = d->m_cannot || !d->put(pictures, index, origin, parts);
    return !d->m_cannot;
}

bool DisplayPut::can() const { return !d->m_cannot; }
void DisplayPut::finish() { d->finish(); }
void DisplayPut::letToolkitFirst() { d->letToolkitFirst(); }
void DisplayPut::detach() { d->detach(); }

#else

class DisplayPut::Private
{
};

std::unique_ptr<DisplayPut> DisplayPut::create() { return nullptr; }
bool DisplayPut::put(const PictureMemory&, int, WId, QPoint, const QRegion&) { return false; }
bool DisplayPut::can() const { return false; }
void DisplayPut::finish() {}
void DisplayPut::letToolkitFirst() {}
void DisplayPut::detach() {}

#endif

DisplayPut::DisplayPut(std::unique_ptr<Private> made) : d(std::move(made)) {}
DisplayPut::~DisplayPut() = default;

} // namespace flash::control
