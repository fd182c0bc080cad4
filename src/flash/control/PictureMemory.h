#pragma once

#include "flash/control/SharedMemory.h"

#include <QImage>

namespace flash::control
{

/// Three pictures of one size in shared memory: one on the screen, one ready to follow it, one being drawn.
/// ARGB32 premultiplied. Both ends reckon the layout from the size, so nothing that the movie's end writes
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
    /// A picture over the shared pixels; valid as long as this object. @param index 0 to kPictures - 1
    [[nodiscard]] QImage picture(int index) const;

private:
    static base::Result<std::size_t> sizeBytes(int width, int height);

    SharedMemory m_memory;
    int m_width = 0, m_height = 0;
};

} // namespace flash::control
