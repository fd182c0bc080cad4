#pragma once

#include <functional>
#include <memory>
#include <string>

namespace platform
{

/// Whether the system has asked the process to end, be the event loop there to be told or not. What runs long
/// without it looks here.
bool isTerminationRequested();

/// What is left to do for a process that was asked to end and does not come to it, because something in it
/// runs that nobody can interrupt.
struct LastWord {
    std::string file;    ///< gets `content`, by way of a temporary file beside it
    std::string content; ///< as it would have been saved
    std::string journal; ///< gets `line` at its end; may be empty
    std::string line;
};
/// Kept for that case, in the place of what was given before: the process ends kLastWordAfterMs after the
/// request, come what may. Without a TerminationSignal it has no effect.
void setLastWord(LastWord word);
constexpr int kLastWordAfterMs = 800;

/// Turns the system's request to end the process (terminate, hang up, interrupt) into a call in the event
/// loop, so that the program ends the way its menu ends it. A second request while the first is under way is
/// the system's own. One object at a time; it needs the application object.
class TerminationSignal
{
public:
    /// @param atOnce called in the signal's handler, wherever the program is, and so does no more than that
    ///               allows: stops what keeps the event loop from its turn
    explicit TerminationSignal(std::function<void()> requested, void (*atOnce)() noexcept = nullptr);
    ~TerminationSignal();
    TerminationSignal(const TerminationSignal&) = delete;
    TerminationSignal& operator=(const TerminationSignal&) = delete;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace platform
