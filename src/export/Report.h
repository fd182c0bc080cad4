#pragma once

#include <QByteArray>
#include <QImage>

#include <cstdint>
#include <optional>
#include <variant>

// What a zorvex-export that works for a window says on its standard output: a line each, so that what a
// damaged one says is only a line that nobody knows.
namespace exporter::report
{

struct Advanced {
    std::int64_t pictures = 0, expected = 0;
};
struct Shown {
    QImage picture;
};
struct Done {
    std::int64_t pictures = 0;
    double ms = 0;
    bool isCutShort = false;
};
using Line = std::variant<Advanced, Shown, Done>;

/// With the end of the line.
[[nodiscard]] QByteArray write(const Line& line);
/// @returns nothing for what is no line of a report
[[nodiscard]] std::optional<Line> read(const QByteArray& line);

/// Longer lines are no report's.
constexpr qsizetype kMaxLineBytes = 1 << 20;
/// Pictures are shown no larger, a side.
constexpr int kShownSide = 320;

} // namespace exporter::report

namespace exporter
{

/// Exit statuses of zorvex-export.
enum class Exit : int { Done = 0, CannotPlay = 1, WrongUsage = 2, CannotWrite = 3, Cancelled = 4 };

} // namespace exporter
