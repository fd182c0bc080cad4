#pragma once

#include "flash/control/Messages.h"

#include <QRegion>
#include <qwindowdefs.h>

#include <memory>
#include <optional>

class QPainter;

namespace flash::control
{

/// Where a window may show parts of a picture as they are, past its store.
struct ShownPlace {
    WId window = 0; ///< exposed
    QPoint origin;  ///< of the picture in it, device pixels
    QRegion parts;  ///< of the picture, device pixels; nothing else is shown over them
};

/// Hears a movie, wherever it runs.
class MovieListener
{
public:
    virtual ~MovieListener() = default;
    /// Something that concerns the host. Comes while the movie is driven or at any time from the event loop;
    /// nothing may be done to the movie from within.
    virtual void heard(FromMovie message) = 0;
    /// When a change of the picture may be painted.
    enum class Painting : std::uint8_t {
        Now,   ///< from the event loop: before the call returns, which saves a round through the loop
        Later, ///< somebody is in the middle of something
    };
    /// Parts of the picture have changed, device pixels.
    virtual void pictureChanged(const QRegion& parts, Painting painting) = 0;
    virtual Answer asked(Ask::What what) = 0;
    virtual bool endsScripts() = 0;
    /// After heard() from the event loop: there is something to act on.
    virtual void settle() = 0;
    /// Why a movie is no more, without having been told to end.
    enum class Loss : std::uint8_t {
        OutOfMemory,
        Crashed,
        Refused,    ///< could not be loaded, which was seen late
        NeverBegan, ///< its process ended before it came so far as to look at the movie
        Frozen,     ///< may come back
        Answers,    ///< came back
    };
    virtual void lost(Loss loss) = 0;
};

/// A movie as its window sees it: in this process or in one of its own.
class MoviePort
{
public:
    virtual ~MoviePort() = default;

    struct Loading {
        enum class State : std::uint8_t {
            Done,
            Failed,
            GoesOn,
            NoProcess, ///< it ended before it came so far as to look at the movie
        } state = State::Failed;
        std::string error;
    };
    /// @returns GoesOn when the movie takes long over its first frame; Loaded is heard later then, or of its
    ///          end.
    /// @param patienceMs how long to wait for it
    virtual Loading load(const Load& load, int patienceMs) = 0;
    /// Does what the message says. When the call returns, state() shows what came of it, unless the movie is
    /// busy for too long.
    virtual void command(const ToMovie& message) = 0;
    /// As command(), and nobody waits for the outcome: input.
    virtual void pass(const ToMovie& message) = 0;
    /// @returns nothing when the movie is busy.
    virtual std::optional<std::string> variable(const std::string& name) = 0;
    /// Opens the menu of the right button. @returns what the movie adds; nothing when it is busy
    virtual std::vector<MenuEntry> menu(const OpenMenu& open) = 0;
    virtual void advance(double ms) = 0;

    [[nodiscard]] virtual const State& state() const = 0;
    /// Whether scripts run and nothing that is said now is listened to.
    [[nodiscard]] virtual bool isBusy() const = 0;
    /// For how long they have been running; 0 while none do.
    [[nodiscard]] virtual qint64 busyForMs() const = 0;

    /// Whether the calls above wait for a busy movie; they do. Otherwise what comes of them is seen later.
    virtual void setWaits(bool /*waits*/) {}
    /// Whether something that was said is not done yet.
    [[nodiscard]] virtual bool isBehind() const { return false; }

    /// The area that the movie is shown in, device pixels.
    virtual void setView(int width, int height, double deviceScale) = 0;
    /// Draws what is to be seen now. @param region of the widget
    virtual void paint(QPainter& painter, const QRegion& region, double deviceScale) = 0;
    /// Shows parts of the picture past the window's store, where the display can take it from where it is.
    /// @returns whether they are shown; paint() does so in any case
    virtual bool put(const ShownPlace& /*place*/) { return false; }
    /// The thread of the window is about to sleep, and need not be woken up for pictures that can be shown
    /// there.
    /// @param place nothing: it is to be woken up for all
    virtual void letShow(const std::optional<ShownPlace>& /*place*/) {}
    /// It is awake. @returns which parts of the picture were shown meanwhile
    virtual QRegion stopShowing() { return {}; }
    virtual void releaseSound() = 0;
    /// Ends what the movie does in this process, for good. One in a process of its own ends with the port.
    virtual void interrupt() {}
    /// 0 when it runs in this process.
    [[nodiscard]] virtual qint64 processId() const { return 0; }
};

} // namespace flash::control
