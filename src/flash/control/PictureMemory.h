#pragma once

#include "flash/control/SharedMemory.h"

#include <QImage>

#include <atomic>
#include <optional>

namespace flash::control
{

/// Three pictures of one size in shared memory: one on the screen, one ready to follow it, one being drawn.
/// Opaque. Both ends reckon the layout from the size, so nothing that the movie's end writes
/// can lead the window's end outside.
class PictureMemory
{
public:
    static constexpr int kPictures = 3;
    static constexpr int kMaxEdge = 16384; ///< pixels

    PictureMemory() = default;
    /// @errors LimitReached for an empty or too large size; those of SharedMemory.
    static base::Result<PictureMemory> create(int width, int height);
    static base::Result<PictureMemory> attach(int descriptor, int width, int height);

    [[nodiscard]] int descriptor() const { return m_memory.descriptor(); }
    [[nodiscard]] QSize size() const { return {m_width, m_height}; }
    /// A picture over the shared pixels; valid as long as this object.
    /// @param index 0 to kPictures - 1
    /// @param format ARGB32_Premultiplied to draw into; RGB32 to show, which is copied without a look at
    ///               each pixel's alpha
    [[nodiscard]] QImage picture(int index, QImage::Format format) const;

    /// Where a picture begins in the memory, and how far apart its lines are: for those who map it
    /// themselves.
    [[nodiscard]] std::size_t offsetBytes(int index) const;
    [[nodiscard]] std::size_t lineBytes() const;

    // Who has a picture and which frame it is of stand beside the pixels, so that neither wakes anybody up.
    // The window's end reads nothing from there but whether to send a word, and that number.

    /// The movie's end: a free picture, or -1; then the window's end sends Release with the next one that it
    /// gives back.
    [[nodiscard]] int takeFree();
    /// The movie's end: the picture goes to the window.
    void hold(int index) { notes().held[index].store(1); }
    /// The window's end: it is no longer shown. @returns whether the movie's end waits for one
    [[nodiscard]] bool giveBack(int index);

    /// The movie's end: its timeline has come so far. @param frame -1 or more
    void setFrame(int frame) { notes().frameAndTwo.store(frame + 2); }
    /// The window's end. @returns nothing as long as the movie's has set none; else any number
    [[nodiscard]] std::optional<int> frame() const;

private:
    struct Notes {
        std::atomic<std::uint32_t> held[kPictures], waits;
        std::atomic<std::int32_t> frameAndTwo; ///< so that 0, as which the memory begins, is none
    };
    static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
    [[nodiscard]] std::size_t pictureBytes() const;
    [[nodiscard]] Notes& notes() const;
    static base::Result<std::size_t> sizeBytes(int width, int height);

    SharedMemory m_memory;
    int m_width = 0, m_height = 0;
};

} // namespace flash::control
