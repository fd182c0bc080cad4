#pragma once

#include "base/Result.h"
#include "flash/stage/Stage.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <vector>

namespace flash
{

/// What a user does with a movie, frame by frame.
class InputScript
{
public:
    /// Device pixels to a pixel of the stage, in which the events give positions.
    struct Scale {
        double x = 1, y = 1;
    };
    using Step = std::function<void(stage::Stage&, const Scale&)>;

    InputScript() = default;
    /// @param setClipboard receives what the events put on the clipboard
    /// @errors those of reading the file; Malformed when it is no array of events
    static base::Result<InputScript> read(const std::filesystem::path& file,
                                          std::function<void(std::string)> setClipboard);
    void setScale(double x, double y) { m_scale = {x, y}; }

    /// As events name what the keyboard says to a text field.
    [[nodiscard]] static QString nameOf(stage::TextCommand command);

    /// Gives the stage the events up to the next wait.
    void playUpToWait(stage::Stage& stage);

private:
    std::vector<std::vector<Step>> m_frames; // the events between waits
    std::size_t m_next = 0;
    Scale m_scale;
};

} // namespace flash
