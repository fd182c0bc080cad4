#pragma once

#include "core/Application.h"

#include <functional>
#include <optional>

namespace core
{

/// The steps of starting before there is a window: paths, journal, development test, visual style, and the
/// journal's lines on all of them. No folder is created, with one exception: a program folder that the user
/// may not write to, or that is installed for all users, leaves settings, cache and journal to the user's own
/// folders. That is decided here once and stands in the journal.
/// There is no guard against a second instance; each launch has its own journal, the later one wins.
/// @param executable   absolute path of the running program
/// @param commandLine  the arguments as one text, quotes included
/// @param visualStyle  initialises the look of windows; a test passes nothing
/// @throws base::Failure when the journal cannot be begun: no handler is armed this early
void StartUp(Application& application, const QString& executable, const QString& commandLine,
             const std::function<void()>& visualStyle = {});

/// @returns the arguments joined by spaces, those holding a space or a quote in double quotes and quotes in
///          them doubled, as one line
QString commandLine(const QStringList& arguments);

/// The arguments of such a line. One that a shell passed in pieces, because nobody quoted its spaces, is one
/// when there is a file of that name, or none of any of the pieces'.
QStringList argumentsOf(const QString& commandLine);

/// @returns what the program prints instead of opening its window, when it is asked for its version or for
///          help; nothing otherwise. A file of such a name is a file to open.
std::optional<QString> commandLineAnswer(const QStringList& arguments);

/// @returns whether the executable's base name holds the development project's name, in any case
bool isDevelopmentSession(const QString& executable);

} // namespace core
