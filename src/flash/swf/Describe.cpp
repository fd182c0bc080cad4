#include "flash/swf/Describe.h"

#include "flash/swf/Tags.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace flash::swf
{
namespace
{

[[gnu::format(printf, 2, 3)]] void line(std::string& out, const char* format, ...)
{
    std::array<char, 256> text{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    out += text.data();
    out += '\n';
}

double pixels(std::int32_t twips) { return static_cast<double>(twips) / kTwipsPerPixel; }

void describeHeader(const Movie& movie, std::string& out)
{
    const Header& header = movie.header;
    line(out, "version     %d%s%s", header.version, header.compressed ? ", compressed" : "",
         movie.isAs3 ? ", ActionScript 3" : "");
    line(out, "size        %g x %g pixels", pixels(header.frameSize.width()),
         pixels(header.frameSize.height()));
    line(out, "frame rate  %g", header.frameRate);
    line(out, "frames      %d stated, %zu present", header.frameCount, movie.timeline.frames.size());
    line(out, "length      %zu bytes on disk, %zu plain, %u stated", movie.fileLength, movie.bytes.size(),
         header.statedLength);
    if (movie.hasBackground)
        line(out, "background  #%02x%02x%02x", movie.background.r, movie.background.g, movie.background.b);
    line(out, "characters  %zu, %zu exported", movie.characters.size(), movie.exports.size());
}

} // namespace

std::string describe(const Movie& movie)
{
    std::string out;
    describeHeader(movie, out);
    out += '\n';
    line(out, "%4s  %-28s %5s %8s %10s", "code", "tag", "since", "count", "bytes");
    for (const TagCount& entry : movie.tagCounts) {
        const TagInfo* info = findTag(entry.code);
        line(out, "%4u  %-28s %5s %8u %10llu", entry.code, info ? info->name.data() : "(unknown)",
             info ? std::to_string(info->since).c_str() : "-", entry.count,
             static_cast<unsigned long long>(entry.bytes));
    }
    if (!movie.warnings.empty()) out += '\n';
    for (const std::string& warning : movie.warnings) out += "warning: " + warning + '\n';
    return out;
}

} // namespace flash::swf
