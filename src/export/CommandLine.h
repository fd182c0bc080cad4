#pragma once

#include "base/Result.h"
#include "export/Settings.h"

#include <span>
#include <string>
#include <vector>

namespace exporter
{

/// What zorvex-export was asked to do.
struct CommandLine {
    enum class What : std::uint8_t { Help, Formats, Export };
    What what = What::Export;
    Settings settings;
    /// For a program that shows how the work goes on: lines on the standard output, see Report.h.
    bool reports = false;
};

extern const char* const kHelp;

/// @errors Malformed, with a word for the user
base::Result<CommandLine> parse(std::span<const std::string> words);
/// The words that parse() makes these settings of.
std::vector<std::string> wordsOf(const Settings& settings);

} // namespace exporter
