#pragma once

#include "base/Result.h"

#include <cstdint>
#include <memory>

class QImage;

namespace exporter
{

/// At most 256 colours that stand for all of a film.
class Palette
{
public:
    Palette();
    ~Palette();
    Palette(const Palette&) = delete;
    Palette& operator=(const Palette&) = delete;

    /// Counts the colours of a picture: before choose().
    base::Result<void> look(const QImage& picture);
    /// Settles the colours.
    base::Result<void> choose();

    /// Writes the numbers of the nearest colours, with errors spread over neighbours.
    void map(const QImage& picture, std::uint8_t* indices, int stride) const;
    /// @param colors 256 of them get values, ARGB
    void writeColors(std::uint32_t* colors) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace exporter
