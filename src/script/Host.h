#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace script
{

/// The button that a message box offers first, and that answers where nobody can.
/// @param buttons the sum of vbYesNo, vbDefaultButton2... as a script gave it
/// @returns its code: vbOK (1) to vbNo (7)
constexpr int defaultButton(int buttons)
{
    // By vbOKOnly (0) to vbRetryCancel (5); a fourth button would be Help, which answers nothing.
    constexpr int kSets[6][4] = {{1, 1, 1, 1}, {1, 2, 1, 1}, {3, 4, 5, 3},
                                 {6, 7, 2, 6}, {6, 7, 6, 6}, {4, 2, 4, 4}};
    const int set = buttons & 15;
    return kSets[set > 5 ? 0 : set][buttons >> 8 & 3];
}

/// What scripts ask of the program around them. The implementation here shows nothing and answers neutrally.
class Host
{
public:
    virtual ~Host() = default;

    /// MsgBox. @param buttons the sum of vbYesNo, vbCritical... as the script gave it
    /// @returns the code of the button: vbOK (1) to vbNo (7)
    virtual int messageBox(const std::u16string& text, int buttons, const std::u16string& title)
    {
        static_cast<void>(text);
        static_cast<void>(title);
        return defaultButton(buttons);
    }
    /// InputBox. @returns nothing when the user cancels
    virtual std::optional<std::u16string> inputBox(const std::u16string& text, const std::u16string& title,
                                                   const std::u16string& preset)
    {
        static_cast<void>(text);
        static_cast<void>(title);
        static_cast<void>(preset);
        return std::nullopt;
    }
    /// A call has run for as long as the time-out allows. @returns whether it may run that long again
    virtual bool continueAfterTimeout() { return false; }
    /// Seeds Randomize without a number; Timer of the system by default.
    virtual std::optional<double> now() { return std::nullopt; }
};

} // namespace script
