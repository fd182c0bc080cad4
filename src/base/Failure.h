#pragma once

#include <stdexcept>
#include <string>

namespace base
{

/// The one exception type: a failing operation on its way to the nearest handler that the design names.
/// Never crosses Qt's event loop, a worker's boundary or an engine's.
class Failure : public std::runtime_error
{
public:
    /// @param number      the error number that handlers branch on and the log shows
    /// @param source      the component that reports it
    /// @param description for the user, UTF-8
    Failure(int number, std::string source, const std::string& description)
        : std::runtime_error(description), m_number(number), m_source(std::move(source))
    {
    }
    [[nodiscard]] int number() const { return m_number; }
    [[nodiscard]] const std::string& source() const { return m_source; }
    [[nodiscard]] std::string description() const { return what(); }

private:
    int m_number;
    std::string m_source;
};

} // namespace base
