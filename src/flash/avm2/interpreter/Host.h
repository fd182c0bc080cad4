#pragma once

#include <cstdint>
#include <string_view>

namespace flash::avm2
{

/// What the machine asks of its surroundings. The default bodies make a machine on its own.
class Host
{
public:
    virtual ~Host() = default;
    virtual void trace(std::u16string_view /*text*/) {}
    virtual void log(std::string_view /*text*/) {}
    /// An error that no script caught.
    virtual void uncaught(std::u16string_view /*text*/) {}
    virtual double timeMs() { return 0; }      ///< since the movie began, simulated
    virtual double wallClockMs() { return 0; } ///< since 1970-01-01 UTC
    virtual double realTimeMs() { return 0; }  ///< of any origin
    virtual std::uint32_t random() { return 4; }
    /// Scripts have run for `seconds`. @returns whether they are to be ended
    virtual bool askToStopScript(double /*seconds*/) { return true; }
};

} // namespace flash::avm2
