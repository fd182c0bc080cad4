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

PageOutcome done(bool chosen = true) { return chosen ? PageOutcome::Done : PageOutcome::Declined; }

PageOutcome log(PageCommandHost& host, const QString& text)
{
    // The journal is a page of its own: only the program's pages may write its tags.
    host.LogEvent("Media debug :: " + (host.isOwnPage() ? text : core::HtmlEscape(text)));
    return done();
}

PageOutcome open(PageCommandHost& host, const QString&) { return done(host.OpenMedia()); }
PageOutcome help(PageCommandHost& host, const QString&) { return host.helpWanted(); }
PageOutcome update(PageCommandHost& host, const QString&) { return host.updateWanted(); }

PageOutcome select(PageCommandHost& host, const QString& path)
{
    // Pages may do what movies may not; no movie is to put words into their mouths.
    if (!host.isOwnPage() && host.isPageAddress(path))
        host.LogEvent("Not opened for a movie: " + core::HtmlEscape(path));
    else
        host.LoadFlash(path, {});
    return done();
}

QString orBrowserFolder(const PageCommandHost& host, const QString& folder)
{
    return folder.isEmpty() ? host.browserFolder() : folder;
}

PageOutcome search(PageCommandHost& host, const QString& folder)
{
    host.setBrowserPage(0);
    host.NewMediaBrowse(orBrowserFolder(host, folder));
    return done();
}

PageOutcome order(PageCommandHost& host, const QString& word)
{
    host.setBrowserOrder(word);
    host.setBrowserPage(0);
    host.NewMediaBrowse(host.browserFolder());
    return done();
}

PageOutcome goToPage(PageCommandHost& host, int page)
{
    host.setBrowserPage(page);
    host.ShowBrowsePage();
    return done();
}

PageOutcome nextPage(PageCommandHost& host, const QString&) { return goToPage(host, host.browserPage() + 1); }
PageOutcome backPage(PageCommandHost& host, const QString&) { return goToPage(host, host.browserPage() - 1); }
PageOutcome lastPage(PageCommandHost& host, const QString&)
{
    return goToPage(host, host.browserPageCount() - 1);
}
PageOutcome firstPage(PageCommandHost& host, const QString&) { return goToPage(host, 0); }

PageOutcome browse(PageCommandHost& host, const QString& folder)
{
    // The page number stays: the scan clamps it.
    const auto chosen = host.chooseBrowserFolder(orBrowserFolder(host, folder));
    if (chosen) host.NewMediaBrowse(*chosen);
    return done(chosen.has_value());
}

PageOutcome fullScreen(PageCommandHost& host, const QString& argument)
{
    const std::optional<bool> on = settings::toBoolean(argument);
    if (!on) throw base::Failure(kTypeMismatch, "FULLSCREEN", texts::kTypeMismatch.toStdString());
    if (*on)
        host.FullScreen(true);
    else // Sized three times in a row on purpose: some window managers need the second call.
        host.ZoomFlash(100, 2);
    return done();
}

PageOutcome execute(PageCommandHost& host, const QString& target)
{
    host.LogEvent("Movie opened: '" + core::HtmlEscape(target) + "'");
    return host.openOutside(target);
}

struct CommandInfo {
    const char* name;
    PageEffect effect;
    PageOutcome (*run)(PageCommandHost& host, const QString& argument);
};
// clang-format off
constexpr CommandInfo kCommands[] = {
    {"MEOWLOG",       PageEffect::Notes, &log},
    {"MEOWOPEN",      PageEffect::Opens, &open},
    {"MEOWHELP",      PageEffect::Opens, &help},
    {"MEOWUPDATE",    PageEffect::Opens, &update},
    {"MEOWSEL",       PageEffect::Loads, &select},
    {"MEOWSEARCH",    PageEffect::Opens, &search},
    {"MEOWNEXTPAGE",  PageEffect::Opens, &nextPage},
    {"MEOWBACKPAGE",  PageEffect::Opens, &backPage},
    {"MEOWLASTPAGE",  PageEffect::Opens, &lastPage},
    {"MEOWFIRSTPAGE", PageEffect::Opens, &firstPage},
    {"MEOWORDER",     PageEffect::Opens, &order},
    {"MEOWBROWSE",    PageEffect::Opens, &browse},
    {"FULLSCREEN",    PageEffect::Opens, &fullScreen}, // with false it leaves
    {"EXEC",          PageEffect::Asks,  &execute},
};
// clang-format on

const CommandInfo* find(const QString& command)
{
    const QString name = command.toUpper();
    for (const CommandInfo& known : kCommands)
        if (name == QLatin1String(known.name)) return &known;
    return nullptr;
}

} // namespace

PageOutcome runPageCommand(PageCommandHost& host, const QString& command, const QString& argument)
{
    if (const CommandInfo* known = find(command)) return known->run(host, argument);
    host.LogEvent({});
    host.LogEvent(" :: Unsupported FS Command (" + core::HtmlEscape(command) + ")");
    return PageOutcome::Done;
}

PageEffect effectOf(const QString& command, const QString& argument)
{
    const CommandInfo* known = find(command);
    if (known == nullptr) return PageEffect::Notes;
    if (known->run == &fullScreen && settings::toBoolean(argument) == false) return PageEffect::Leaves;
    return known->effect;
}

} // namespace player
