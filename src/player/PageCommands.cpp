#include "player/PageCommands.h"

#include "base/Failure.h"
#include "core/Application.h"
#include "player/Texts.h"
#include "settings/Options.h"

namespace player
{
namespace
{

constexpr int kTypeMismatch = 13;

void log(PageCommandHost& host, const QString& text)
{
    // The journal is a page of its own: only the program's pages may write its tags.
    host.LogEvent("Media debug :: " + (host.isOwnPage() ? text : core::HtmlEscape(text)));
}

void open(PageCommandHost& host, const QString&) { host.OpenMedia(); }
void help(PageCommandHost& host, const QString&) { host.openHelp(); }
void update(PageCommandHost& host, const QString&) { host.WebUpdate(); }

void select(PageCommandHost& host, const QString& path)
{
    // Pages may do what movies may not; no movie is to put words into their mouths.
    if (!host.isOwnPage() && host.isPageAddress(path))
        return host.LogEvent("Not opened for a movie: " + core::HtmlEscape(path));
    host.LoadFlash(path, {});
}

QString orBrowserFolder(const PageCommandHost& host, const QString& folder)
{
    return folder.isEmpty() ? host.browserFolder() : folder;
}

void search(PageCommandHost& host, const QString& folder)
{
    host.setBrowserPage(0);
    host.NewMediaBrowse(orBrowserFolder(host, folder));
}

void goToPage(PageCommandHost& host, int page)
{
    host.setBrowserPage(page);
    host.ShowBrowsePage();
}

void nextPage(PageCommandHost& host, const QString&) { goToPage(host, host.browserPage() + 1); }
void backPage(PageCommandHost& host, const QString&) { goToPage(host, host.browserPage() - 1); }
void lastPage(PageCommandHost& host, const QString&) { goToPage(host, host.browserPageCount() - 1); }
void firstPage(PageCommandHost& host, const QString&) { goToPage(host, 0); }

void browse(PageCommandHost& host, const QString& folder)
{
    // The page number stays: the scan clamps it.
    if (const auto chosen = host.chooseBrowserFolder(orBrowserFolder(host, folder)))
        host.NewMediaBrowse(*chosen);
}

void fullScreen(PageCommandHost& host, const QString& argument)
{
    const std::optional<bool> on = settings::toBoolean(argument);
    if (!on) throw base::Failure(kTypeMismatch, "FULLSCREEN", texts::kTypeMismatch);
    if (*on) return host.FullScreen(true);
    // Sized three times in a row on purpose: some window managers need the second call.
    host.ZoomFlash(100, 2);
}

void execute(PageCommandHost& host, const QString& target)
{
    host.LogEvent("Movie opened: '" + core::HtmlEscape(target) + "'");
    host.openOutside(target);
}

struct CommandInfo {
    const char* name;
    void (*run)(PageCommandHost& host, const QString& argument);
};
// clang-format off
constexpr CommandInfo kCommands[] = {
    {"MEOWLOG",       &log},
    {"MEOWOPEN",      &open},
    {"MEOWHELP",      &help},
    {"MEOWUPDATE",    &update},
    {"MEOWSEL",       &select},
    {"MEOWSEARCH",    &search},
    {"MEOWNEXTPAGE",  &nextPage},
    {"MEOWBACKPAGE",  &backPage},
    {"MEOWLASTPAGE",  &lastPage},
    {"MEOWFIRSTPAGE", &firstPage},
    {"MEOWBROWSE",    &browse},
    {"FULLSCREEN",    &fullScreen},
    {"EXEC",          &execute},
};
// clang-format on

} // namespace

void runPageCommand(PageCommandHost& host, const QString& command, const QString& argument)
{
    const QString name = command.toUpper();
    for (const CommandInfo& known : kCommands)
        if (name == QLatin1String(known.name)) return known.run(host, argument);
    host.LogEvent({});
    host.LogEvent(" :: Unsupported FS Command (" + core::HtmlEscape(command) + ")");
}

} // namespace player
