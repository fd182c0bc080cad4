// Any bytes as a description or as a script: the compiler answers with a movie or with errors. The first byte
// chooses which, and the version; from 0x80 on it is ActionScript 3, or its assembler.

#include "swfc/source/Movie.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

class OneFile : public swfc::SourceFiles
{
public:
    explicit OneFile(std::string content) : m_content(std::move(content)) {}
    base::Result<std::vector<std::uint8_t>> read(const std::string& path) override
    {
        // Whatever else it asks for holds the same bytes, so that inclusions and media are tried as well.
        if (++m_reads > kMaxReads) return base::fail(base::ErrorCode::NotFound, path);
        return std::vector<std::uint8_t>(m_content.begin(), m_content.end());
    }

private:
    static constexpr int kMaxReads = 64;
    std::string m_content;
    int m_reads = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    const bool isActionScript3 = data[0] >= 0x80;
    const bool isScript = (data[0] & 1) != 0;
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (isActionScript3 && isScript)
        text = "// movie: version=\"10\"\n" + text;
    else if (isActionScript3)
        text = "<movie version=\"10\"><abc><![CDATA[" + text + "]]></abc></movie>";
    else if (isScript)
        text = "// movie: version=\"" + std::to_string(4 + (data[0] >> 1) % 5) + "\"\n" + text;
    OneFile files(std::move(text));
    swfc::Diagnostics diagnostics;
    const auto movie = swfc::source::compileMovie(isScript ? "f.as" : "f.xml", files, diagnostics);
    // Exactly one of the two.
    if (movie.empty() != diagnostics.hasErrors()) std::abort();
    return 0;
}
