#pragma once

#include "swfc/source/Movie.h"

#include <map>
#include <string>
#include <vector>

namespace test
{

/// Serves sources from memory.
class MemoryFiles : public swfc::SourceFiles
{
public:
    std::map<std::string, std::string> files;
    base::Result<std::vector<std::uint8_t>> read(const std::string& path) override
    {
        const auto found = files.find(path);
        if (found == files.end()) return base::fail(base::ErrorCode::NotFound, "no such file");
        return std::vector<std::uint8_t>(found->second.begin(), found->second.end());
    }
};

struct Compiled {
    std::vector<std::uint8_t> movie;
    std::vector<std::string> errors;
};

inline Compiled compile(MemoryFiles& files, const std::string& path)
{
    swfc::Diagnostics diagnostics;
    Compiled compiled;
    compiled.movie = swfc::source::compileMovie(path, files, diagnostics);
    compiled.errors = diagnostics.lines();
    return compiled;
}

} // namespace test
