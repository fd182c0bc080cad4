#include "flash/control/PictureMemory.h"

namespace flash::control
{

namespace
{

constexpr std::size_t kBytesPerPixel = 4, kLineAlignment = 64;

std::size_t lineBytes(int width)
{
    const std::size_t bytes = static_cast<std::size_t>(width) * kBytesPerPixel;
    return (bytes + kLineAlignment - 1) / kLineAlignment * kLineAlignment;
}

} // namespace

base::Result<std::size_t> PictureMemory::sizeBytes(int width, int height)
{
    if (width <= 0 || height <= 0 || width > kMaxEdge || height > kMaxEdge)
        return base::fail(base::ErrorCode::LimitReached,
                          "pictures of " + std::to_string(width) + " x " + std::to_string(height));
    return lineBytes(width) * static_cast<std::size_t>(height) * kPictures;
}

base::Result<PictureMemory> PictureMemory::create(int width, int height)
{
    PictureMemory pictures;
    pictures.m_memory = TRY_RESULT(SharedMemory::create(TRY_RESULT(sizeBytes(width, height))));
    pictures.m_width = width;
    pictures.m_height = height;
    return pictures;
}

base::Result<PictureMemory> PictureMemory::attach(int descriptor, int width, int height)
{
    PictureMemory pictures;
    const auto size = sizeBytes(width, height);
    // Attaching with a size that cannot be closes the descriptor as well.
    pictures.m_memory = TRY_RESULT(SharedMemory::attach(descriptor, size.value_or(0)));
    pictures.m_width = width;
    pictures.m_height = height;
    return pictures;
}

QImage PictureMemory::picture(int index) const
{
    const std::size_t line = lineBytes(m_width);
    const std::size_t offset = line * static_cast<std::size_t>(m_height) * static_cast<std::size_t>(index);
    return {m_memory.bytes().data() + offset, m_width, m_height, static_cast<qsizetype>(line),
            QImage::Format_ARGB32_Premultiplied};
}

} // namespace flash::control
