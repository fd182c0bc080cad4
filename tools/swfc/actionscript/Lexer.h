#pragma once

#include "swfc/SourceFiles.h"
#include "swfc/actionscript/Tokens.h"

#include <vector>

namespace swfc::actionscript
{

/// Where a piece of script stands.
struct SourceText {
    std::string text; ///< UTF-8
    std::string path; ///< of the file it stands in; included files are looked for beside it
    Position start;
};

/// Cuts script text into tokens; `#include "file"` is replaced by the tokens of that file.
/// @returns always a list that ends with Tok::End. What is no token is reported and left out.
/// Limits: 32 files deep, 1024 inclusions, 8 million tokens; a file that includes itself is an error.
std::vector<Token> tokenize(const SourceText& source, int version, SourceFiles& files,
                            Diagnostics& diagnostics);

} // namespace swfc::actionscript
