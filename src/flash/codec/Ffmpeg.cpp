#include "flash/codec/Ffmpeg.h"

#include <dlfcn.h>

#include <optional>

namespace flash::codec
{

namespace
{

std::optional<Ffmpeg> load()
{
    // Never closed: the functions are used until the process ends. Each library brings in the ones below it.
    constexpr int kHow = RTLD_NOW | RTLD_LOCAL;
    void* avcodec = dlopen("libavcodec.so." AV_STRINGIFY(LIBAVCODEC_VERSION_MAJOR), kHow);
    void* avutil = dlopen("libavutil.so." AV_STRINGIFY(LIBAVUTIL_VERSION_MAJOR), kHow);
    void* swresample = dlopen("libswresample.so." AV_STRINGIFY(LIBSWRESAMPLE_VERSION_MAJOR), kHow);
    void* swscale = dlopen("libswscale.so." AV_STRINGIFY(LIBSWSCALE_VERSION_MAJOR), kHow);
    if (avcodec == nullptr || avutil == nullptr || swresample == nullptr || swscale == nullptr) return {};
    Ffmpeg table;
#define FLASH_FFMPEG_FIND(library, function)                                                                 \
    table.function = reinterpret_cast<decltype(&::function)>(dlsym(library, #function));                     \
    if (table.function == nullptr) return {};
    FLASH_FFMPEG_FUNCTIONS(FLASH_FFMPEG_FIND)
#undef FLASH_FFMPEG_FIND
    table.av_log_set_level(AV_LOG_QUIET);
    return table;
}

} // namespace

const Ffmpeg* Ffmpeg::get()
{
    static const std::optional<Ffmpeg> table = load();
    return table ? &*table : nullptr;
}

} // namespace flash::codec
