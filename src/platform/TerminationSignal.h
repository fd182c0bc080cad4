#pragma once

#include <functional>
#include <memory>

namespace platform
{

/// Turns the system's request to end the process (terminate, hang up, interrupt) into a call in the event
/// loop, so that the program ends the way its menu ends it. A second request while the first is under way is
/// the system's own. One object at a time; it needs the application object.
class TerminationSignal
{
public:
    explicit TerminationSignal(std::function<void()> requested);
    ~TerminationSignal();
    TerminationSignal(const TerminationSignal&) = delete;
    TerminationSignal& operator=(const TerminationSignal&) = delete;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace platform
