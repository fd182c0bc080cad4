#pragma once

#include <QString>

namespace player
{

/// @param reason why a file could not be used, in the words of the program
/// @returns what can be done about it, a sentence; empty when there is nothing to say
QString adviceOn(const QString& reason);

/// The file, the reason and what can be done, a line each; what is not known is left out.
QString failureText(const QString& path, const QString& reason);

} // namespace player
