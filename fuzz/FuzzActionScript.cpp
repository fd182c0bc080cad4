#include "PlayMovie.h"
#include "swfc/source/Movie.h"

#include <string>

// A script's text, compiled by our own compiler and run in a movie that is drawn: what the classes do with
// any arguments. The first byte chooses the movie's version, and whether every safe point collects.

namespace
{

class OneFile : public swfc::SourceFiles
{
public:
    explicit OneFile(std::string content) : m_content(std::move(content)) {}
    base::Result<std::vector<std::uint8_t>> read(const std::string& path) override
    {
        if (m_isRead) return base::fail(base::ErrorCode::NotFound, path);
        m_isRead = true;
        return std::vector<std::uint8_t>(m_content.begin(), m_content.end());
    }

private:
    std::string m_content;
    bool m_isRead = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    std::string text = "// movie: version=\"" + std::to_string(5 + data[0] % 4) + "\"\n";
    text.append(reinterpret_cast<const char*>(data) + 1, size - 1);
    OneFile files(std::move(text));
    swfc::Diagnostics diagnostics;
    const auto movie = swfc::source::compileMovie("f.as", files, diagnostics);
    if (movie.empty()) return 0;
    constexpr std::uint8_t kInput[] = {0, 99, 99, 1, 99, 99, 2, 99, 99, 3, 65, 65};
    fuzz::play(movie, kInput, {}, (data[0] & 0x80) != 0);
    return 0;
}
