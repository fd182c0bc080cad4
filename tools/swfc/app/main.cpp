// swfc: compiles a movie description or a script into a movie file.

#include "swfc/source/Movie.h"

#include "base/Files.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace
{

constexpr int kSourceErrors = 1, kUsageError = 2;

int usage()
{
    std::fputs("usage: swfc SOURCE.xml|SOURCE.as -o OUT.swf [--deps FILE]\n"
               "  --deps FILE  write the files that were read, as a rule for make\n",
               stderr);
    return kUsageError;
}

std::string escaped(const std::string& path)
{
    std::string out;
    for (const char c : path) {
        if (c == ' ' || c == '#') out += '\\';
        out += c;
    }
    return out;
}

bool write(const std::string& path, const std::uint8_t* bytes, std::size_t count)
{
    const auto written = base::replaceFile(path, base::Bytes(bytes, count));
    if (!written)
        std::fprintf(stderr, "%s: expected a writable file: %s\n", path.c_str(),
                     written.error().what.c_str());
    return written.has_value();
}

} // namespace

int main(int argc, char** argv)
{
    std::string source, target, dependencies;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "-o") == 0 && hasValue)
            target = argv[++i];
        else if (std::strcmp(argv[i], "--deps") == 0 && hasValue)
            dependencies = argv[++i];
        else if (argv[i][0] == '-' || !source.empty())
            return usage();
        else
            source = argv[i];
    }
    if (source.empty() || target.empty()) return usage();
    swfc::DiskFiles files;
    swfc::Diagnostics diagnostics;
    const auto movie = swfc::source::compileMovie(source, files, diagnostics);
    for (const std::string& line : diagnostics.lines()) std::fprintf(stderr, "%s\n", line.c_str());
    if (diagnostics.hasErrors()) return kSourceErrors;
    if (!write(target, movie.data(), movie.size())) return kSourceErrors;
    if (!dependencies.empty()) {
        std::string rule = escaped(target) + ":";
        for (const std::string& path : files.pathsRead()) rule += " " + escaped(path);
        rule += "\n";
        if (!write(dependencies, reinterpret_cast<const std::uint8_t*>(rule.data()), rule.size()))
            return kSourceErrors;
    }
    return 0;
}
