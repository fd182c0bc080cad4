#pragma once

#include "base/Result.h"
#include "flash/stage/Stage.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace flashrun
{

/// What a user does with a movie, frame by frame.
class InputScript
{
public:
    using Step = std::function<void(flash::stage::Stage&)>;

    InputScript() = default;
    /// @param scale       device pixels to a pixel of the stage, in which positions are given
    /// @param setClipboard receives what the events put on the clipboard
    /// @errors those of reading the file; Malformed when it is no array of events
    static base::Result<InputScript> read(const std::filesystem::path& file, double scale,
                                          std::function<void(std::string)> setClipboard);

    /// Gives the stage the events up to the next wait.
    void playUpToWait(flash::stage::Stage& stage);

private:
    std::vector<std::vector<Step>> m_frames; // the events between waits
    std::size_t m_next = 0;
};

} // namespace flashrun
