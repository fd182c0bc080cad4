#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tl/expected.hpp>

namespace base
{

/// What callers branch on. One list for both engines and the player, so that a log line can name any of them.
enum class ErrorCode {
    Truncated,    ///< the input ends before what it announces
    Malformed,    ///< the input contradicts its own format
    Unsupported,  ///< well-formed, but of a kind that is not handled
    LimitReached, ///< a budget (memory, depth, time) is used up
    NotFound,     ///< a file, name or item is missing
    Denied,       ///< the sandbox or the file system refuses
    IoFailure,    ///< reading or writing failed part-way
    SyntaxError,  ///< source text that does not compile
};

/// Why an input could not be used. An ordinary answer, not an exceptional state.
struct Error {
    ErrorCode code = ErrorCode::Malformed;
    std::string what;                  ///< for the log: what was being read and what was found
    std::optional<std::size_t> offset; ///< bytes from the start of the input
};

template <class T>
using Result = tl::expected<T, Error>;

inline tl::unexpected<Error> fail(ErrorCode code, std::string what, std::optional<std::size_t> offset = {})
{
    return tl::make_unexpected(Error{code, std::move(what), offset});
}

} // namespace base

// Yields the value, or returns the error from the enclosing function. Not to be nested.
#define TRY_RESULT(expression)                                                                               \
    __extension__({                                                                                          \
        auto result_ = (expression);                                                                         \
        if (!result_) return tl::make_unexpected(std::move(result_).error());                                \
        std::move(result_).value();                                                                          \
    })

// The twin of TRY_RESULT for Result<void>, which has no value() in this library version.
#define CHECK_RESULT(expression)                                                                             \
    do {                                                                                                     \
        auto result_ = (expression);                                                                         \
        if (!result_) return tl::make_unexpected(std::move(result_).error());                                \
    } while (false)
