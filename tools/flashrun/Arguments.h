#pragma once

#include "base/Result.h"
#include "flash/stage/Stage.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace flashrun
{

enum class Command { Help, Trace, Render, Record, Info, Actions, Thumbnail };

struct Arguments {
    Command command = Command::Help;
    std::string movie; ///< with its query
    std::optional<int> frames;
    std::optional<double> ms;
    int firstFrame = 0, lastFrame = 0; ///< of render, from 1; the same for one picture
    bool series = false;               ///< `out` is a folder
    bool showCommands = false;
    bool collectAlways = false;
    bool twoThreads = false;
    std::filesystem::path out, baseFolder, input, storageFolder;
    /// The same on every machine, so that a run is: the code that most of the old movies were made in.
    std::string textCode = "iso-8859-1";
    double scale = 1;
    int size = 256;     ///< of a thumbnail: the longer side, pixels
    double seconds = 5; ///< that a thumbnail may take
    flash::stage::Quality quality = flash::stage::Quality::High;
    std::optional<double> dateMs; ///< milliseconds since 1970-01-01 UTC
};

/// @param words what follows the program's name
/// @errors Malformed with what the user should change
base::Result<Arguments> parseArguments(std::span<char*> words);

extern const char* const kHelp;

} // namespace flashrun
