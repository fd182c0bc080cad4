#pragma once

#include "flash/control/Channel.h"
#include "flash/control/Confinement.h"
#include "flash/control/MovieRunner.h"
#include "flash/control/PictureMemory.h"
#include "flash/control/SoundRing.h"

#include <QRegion>

#include <array>
#include <deque>
#include <optional>

namespace flash::control
{

/// Where a movie's process finds its ends of what connects it: descriptors. The second only where the system
/// does not confine files.
inline constexpr int kMovieSocket = 3, kBrokerSocket = 4;

/// What the process of a movie may open.
ReachableFiles reachableFiles(const Load& load);

/// Exit statuses of a movie's process, besides 0 for a window that has gone.
enum class FarExit : int {
    BadMessage = 70,  ///< what came was no message of this build
    OutOfMemory = 71, ///< the memory budget is used up
};

/// A movie in a process of its own: takes what the window says from a socket, plays in real time, draws into
/// shared pictures and mixes into a shared ring.
class FarEnd : private MovieOutput
{
public:
    /// @param socket one end of Channel::pair(); taken over
    /// @param broker to open files by, see confine(); or -1
    /// @param restraints what was tried to confine the process so far, for the window's journal
    FarEnd(int socket, int broker, const std::vector<Restraint>& restraints);

    /// Plays until the window's end goes away.
    /// @returns the exit status of the process
    int run();

private:
    void say(FromMovie message) override;
    bool showsFrame(int frame) override;
    Answer ask(Ask::What what) override;
    bool endsScripts() override { return false; } // the window ends the whole process

    void tell(const std::vector<Restraint>& restraints);
    void handle(const ToMovie& message);
    void prepare(const Load& load);
    std::optional<std::vector<std::uint8_t>> attachedFile();
    void prepare(const View& view);
    void takeSound(const SoundDevice& device);
    void publishPicture();
    void fillRing();
    [[nodiscard]] SoundClock soundClock() const;
    [[nodiscard]] int msToWait();
    /// Waits for the socket, sends and receives. @param ms -1: for as long as it takes
    /// @returns false when the window's end has gone.
    bool exchange(int ms);
    bool takeReleases();
    /// The next message that has come and was not handled. Ends the process for what is none.
    std::optional<ToMovie> nextMessage();

    Channel m_channel;
    std::optional<Channel> m_pictureChannel; // pictures go there, and Release comes
    int m_broker;
    MovieRunner m_runner;
    std::deque<ToMovie> m_waiting; // came while the movie waited for an answer
    PictureMemory m_pictures;
    std::array<QImage, PictureMemory::kPictures> m_picture;
    std::array<QRegion, PictureMemory::kPictures> m_stale; // what each has not followed
    int m_last = -1;                                       // the one that was drawn last
    std::uint32_t m_view = 0;
    SoundRing m_ring;
    bool m_deviceOpen = false, m_confined = false, m_gone = false;
    bool m_unseen = false;           // the window shows no pictures
    std::uint64_t m_takenBefore = 0; // frames that the device had taken when it was opened
    std::uint32_t m_lastAsked = 0;
};

} // namespace flash::control
