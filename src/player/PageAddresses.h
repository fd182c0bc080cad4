#pragma once

#include <QString>
#include <QStringList>

namespace core
{
class Application;
}

namespace player
{

// The addresses of the program's own pages: a file of the gadgets folder with its parameters behind it. The
// version text goes in as it is, its space included; other texts are encoded.

/// @param error       why the last movie was closed; may be empty
/// @param noAnimation the setting's text, passed on as it was read
QString welcomePage(const core::Application& application, const QString& error, const QString& noAnimation);
/// @param greetings shown behind version and copyright
/// @param thanks    shown behind the greetings
QString aboutPage(const core::Application& application, const QString& greetings, const QString& thanks,
                  const QString& noAnimation);
/// @param volume 0..100
/// @param pan    -100..100
QString soundPage(const QString& gadgetsPath, int volume, int pan);

/// The file of an address that the Flash control was given: a path or file: address, maybe with a query.
QString filePartOf(const QString& address);

/// Whether a file lies in a folder or below it, links and ".." resolved. What does not exist lies nowhere.
bool liesWithin(const QString& file, const QString& folder);

/// What tells a page the language of the interface; nothing while it is the pages' own.
QString languageForPage();

/// What goes behind welcomePage(): up to four movies to be opened again, with their pictures where there are
/// some, and samples of the program's where there are fewer.
QString moviesForPage(const core::Application& application, const QStringList& recent);
/// The same when something went wrong.
/// @param file   name of the file that could not be opened
/// @param advice what can be done; may be empty
QString failureForPage(const QString& file, const QString& advice);

} // namespace player
