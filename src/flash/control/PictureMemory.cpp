#include "flash/control/PictureMemory.h"

namespace flash::control
{

namespace
{

constexpr std::size_t kBytesPerPixel = 4, kLineAlignment = 64, kNotesBytes = 64;

std::size_t paddedLineBytes(int width)
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
    return paddedLineBytes(width) * static_cast<std::size_t>(height) * kPictures + kNotesBytes;
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

QImage PictureMemory::picture(int index, QImage::Format format) const
{
    return {m_memory.bytes().data() + offsetBytes(index), m_width, m_height,
            static_cast<qsizetype>(lineBytes()), format};
}

std::size_t PictureMemory::offsetBytes(int index) const
{
    return pictureBytes() * static_cast<std::size_t>(index);
}

std::size_t PictureMemory::lineBytes() const { return paddedLineBytes(m_width); }

std::size_t PictureMemory::pictureBytes() const { return lineBytes() * static_cast<std::size_t>(m_height); }

// Behind the pixels. The memory begins zeroed, which is valid: nothing is held.
PictureMemory::Notes& PictureMemory::notes() const
{
    static_assert(sizeof(Notes) <= kNotesBytes);
    return *reinterpret_cast<Notes*>(m_memory.bytes().data() + pictureBytes() * kPictures);
}

int PictureMemory::takeFree()
{
    const auto find = [this] {
        for (int i = 0; i < kPictures; ++i) {
            if (notes().held[i].load() == 0) return i;
        }
        return -1;
    };
    notes().waits.store(0);
    const int found = find();
    if (found >= 0) return found;
    // Looked at again behind the word, so that one of the two ends sees what the other has done.
    notes().waits.store(1);
    return find();
}

std::optional<int> PictureMemory::frame() const
{
    if (m_width == 0) return std::nullopt;
    const std::int32_t frameAndTwo = notes().frameAndTwo.load();
    if (frameAndTwo <= 0) return std::nullopt;
    return frameAndTwo - 2;
}

bool PictureMemory::giveBack(int index)
{
    notes().held[index].store(0);
    return notes().waits.load() != 0;
}

} // namespace flash::control
