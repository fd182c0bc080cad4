#include "export/encode/Palette.h"

#include <QImage>

#include <libimagequant.h>

#include <algorithm>
#include <vector>

namespace exporter
{

namespace
{

template <auto Destroy>
struct Destroyer {
    template <class T>
    void operator()(T* object) const
    {
        Destroy(object);
    }
};
using Attributes = std::unique_ptr<liq_attr, Destroyer<liq_attr_destroy>>;
using Histogram = std::unique_ptr<liq_histogram, Destroyer<liq_histogram_destroy>>;
using Quantised = std::unique_ptr<liq_result, Destroyer<liq_result_destroy>>;
using Source = std::unique_ptr<liq_image, Destroyer<liq_image_destroy>>;

// Patterns of single pixels would move from picture to picture, and cost more bytes than they are worth.
constexpr float kDithering = 0.5F;
// The quicker half of the library's scale of 1 to 10.
constexpr int kSpeed = 6;

/// In this format a pixel is there or not.
QImage straightOf(const QImage& picture)
{
    QImage straight = picture.convertToFormat(QImage::Format_RGBA8888);
    constexpr std::uint8_t kSolid = 255, kHalf = 128;
    for (int y = 0; y < straight.height(); ++y) {
        std::uint8_t* pixel = straight.scanLine(y);
        for (int x = 0; x < straight.width(); ++x, pixel += 4) {
            if (pixel[3] >= kHalf)
                pixel[3] = kSolid;
            else
                std::fill_n(pixel, 4, std::uint8_t{0});
        }
    }
    return straight;
}

base::Result<void> outcome(liq_error error, const char* what)
{
    if (error == LIQ_OK) return {};
    return base::fail(base::ErrorCode::IoFailure,
                      std::string(what) + ": error " + std::to_string(static_cast<int>(error)));
}

} // namespace

class Palette::Private
{
public:
    [[nodiscard]] Source sourceOf(const QImage& straight) const
    {
        return Source(liq_image_create_rgba(attributes.get(), straight.constBits(), straight.width(),
                                            straight.height(), 0));
    }

    Attributes attributes{liq_attr_create()};
    Histogram histogram{liq_histogram_create(attributes.get())};
    Quantised quantised;
    liq_palette palette{};
};

Palette::Palette() : d(std::make_unique<Private>()) { liq_set_speed(d->attributes.get(), kSpeed); }

Palette::~Palette() = default;

base::Result<void> Palette::look(const QImage& picture)
{
    const QImage straight = straightOf(picture);
    const Source source = d->sourceOf(straight);
    if (!source) return base::fail(base::ErrorCode::LimitReached, "the picture is too large for a palette");
    return outcome(liq_histogram_add_image(d->histogram.get(), d->attributes.get(), source.get()),
                   "the colours cannot be counted");
}

base::Result<void> Palette::choose()
{
    liq_result* result = nullptr;
    CHECK_RESULT(outcome(liq_histogram_quantize(d->histogram.get(), d->attributes.get(), &result),
                         "no palette can be made"));
    d->quantised.reset(result);
    liq_set_dithering_level(result, kDithering);
    // Asked for before any picture is mapped: it stays as it is from then on.
    d->palette = *liq_get_palette(result);
    return {};
}

void Palette::map(const QImage& picture, std::uint8_t* indices, int stride) const
{
    const QImage straight = straightOf(picture);
    const Source source = d->sourceOf(straight);
    if (!source) return;
    std::vector<unsigned char*> rows(static_cast<std::size_t>(straight.height()));
    for (std::size_t y = 0; y < rows.size(); ++y) rows[y] = indices + static_cast<std::ptrdiff_t>(y) * stride;
    liq_write_remapped_image_rows(d->quantised.get(), source.get(), rows.data());
}

void Palette::writeColors(std::uint32_t* colors) const
{
    std::fill_n(colors, 256, 0xFF000000U);
    for (unsigned i = 0; i < d->palette.count; ++i) {
        const liq_color& color = d->palette.entries[i];
        colors[i] = static_cast<std::uint32_t>(color.a) << 24U | static_cast<std::uint32_t>(color.r) << 16U |
                    static_cast<std::uint32_t>(color.g) << 8U | color.b;
    }
}

} // namespace exporter
