#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
#include <libavutil/video_enc_params.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

// FFmpeg's functions, called through a table that is filled when it is first asked for. Linking its libraries
// would load some eighty others at every start, which took 11 of 18 ms of a run that plays no sound.
namespace flash::codec
{

/// The functions in use, under the libraries' own names. Only the major version that the headers are from is
/// opened, so the types fit.
struct Ffmpeg {
#define FLASH_FFMPEG_FUNCTIONS(X)                                                                            \
    X(avcodec, avcodec_find_decoder)                                                                         \
    X(avcodec, avcodec_alloc_context3)                                                                       \
    X(avcodec, avcodec_free_context)                                                                         \
    X(avcodec, avcodec_open2)                                                                                \
    X(avcodec, avcodec_send_packet)                                                                          \
    X(avcodec, avcodec_receive_frame)                                                                        \
    X(avcodec, avcodec_flush_buffers)                                                                        \
    X(avcodec, av_packet_alloc)                                                                              \
    X(avcodec, av_packet_free)                                                                               \
    X(avcodec, av_packet_unref)                                                                              \
    X(avcodec, av_new_packet)                                                                                \
    X(avcodec, av_parser_init)                                                                               \
    X(avcodec, av_parser_parse2)                                                                             \
    X(avcodec, av_parser_close)                                                                              \
    X(avutil, av_frame_alloc)                                                                                \
    X(avutil, av_frame_free)                                                                                 \
    X(avutil, av_frame_unref)                                                                                \
    X(avutil, av_frame_get_side_data)                                                                        \
    X(avutil, av_log_set_level)                                                                              \
    X(avutil, av_mallocz)                                                                                    \
    X(avutil, av_channel_layout_default)                                                                     \
    X(swresample, swr_alloc_set_opts2)                                                                       \
    X(swresample, swr_init)                                                                                  \
    X(swresample, swr_free)                                                                                  \
    X(swresample, swr_convert)                                                                               \
    X(swresample, swr_get_out_samples)                                                                       \
    X(swresample, swr_set_matrix)                                                                            \
    X(swscale, sws_getCachedContext)                                                                         \
    X(swscale, sws_freeContext)                                                                              \
    X(swscale, sws_getCoefficients)                                                                          \
    X(swscale, sws_scale)
#define FLASH_FFMPEG_DECLARE(library, function) decltype(&::function) function = nullptr;
    FLASH_FFMPEG_FUNCTIONS(FLASH_FFMPEG_DECLARE)
#undef FLASH_FFMPEG_DECLARE

    /// @returns null when the libraries or one of the functions are not there; never anything else then. The
    ///          table lives until the process ends. It keeps FFmpeg from writing to the standard error:
    ///          damaged sounds and videos are an ordinary thing here.
    static const Ffmpeg* get();
};

} // namespace flash::codec
