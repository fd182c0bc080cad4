#pragma once

#include "flash/control/PictureMemory.h"

#include <QRegion>
#include <qwindowdefs.h>

#include <memory>

namespace flash::control
{

/// Has the display server take pictures out of the memory that they were drawn into (X11, MIT-SHM), past the
/// toolkit's store of the window: nothing is copied here, and nothing waits for the display. It has a
/// connection of its own; one thread at a time.
class DisplayPut
{
public:
    /// @returns null where windows are not shown by an X11 server of this machine
    static std::unique_ptr<DisplayPut> create();
    ~DisplayPut();
    DisplayPut(const DisplayPut&) = delete;
    DisplayPut& operator=(const DisplayPut&) = delete;

    /// Shows parts of a picture. The server reads them later: see finish().
    /// @param pictures the same object until detach()
    /// @param index    of the picture
    /// @param window   exposed
    /// @param origin   of the picture in the window, device pixels
    /// @param parts    of the picture, device pixels
    /// @returns false when the server cannot, which is for good; what was put before may not be shown then
    bool put(const PictureMemory& pictures, int index, WId window, QPoint origin, const QRegion& parts);
    /// Whether it was not refused so far.
    [[nodiscard]] bool can() const;
    /// Returns when the server has read all that was put: the pictures may be drawn into.
    void finish();
    /// Returns when the server has drawn all that the toolkit has asked it to. The thread of the windows.
    void letToolkitFirst();
    /// Other pictures are put from now on.
    void detach();

private:
    class Private;
    explicit DisplayPut(std::unique_ptr<Private> made);
    std::unique_ptr<Private> d;
};

} // namespace flash::control
