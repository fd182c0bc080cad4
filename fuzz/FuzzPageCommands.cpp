#include "PlayMovie.h"
#include "base/Failure.h"
#include "browser/BrowseQuery.h"
#include "media/UrlEncode.h"
#include "player/PageAddresses.h"
#include "player/PageCommands.h"

#include <cstdlib>

// What pages and movies send to the program, and what stands in the addresses of pages. The first byte
// chooses; a command's name and its argument are apart by a zero byte.

namespace
{

/// Every command is carried out, and nothing happens by it but this: a movie that is not ours opens no page.
class Host : public player::PageCommandHost
{
public:
    explicit Host(bool own) : m_own(own) {}
    void LogEvent(const QString& text) override
    {
        if (!m_own && text.startsWith("Media debug") && text.contains('<')) std::abort();
    }
    [[nodiscard]] bool isOwnPage() const override { return m_own; }
    [[nodiscard]] bool isPageAddress(const QString& path) const override { return path.contains("gadgets"); }
    bool OpenMedia() override { return true; }
    player::PageOutcome helpWanted() override { return player::PageOutcome::Done; }
    player::PageOutcome updateWanted() override { return player::PageOutcome::Done; }
    void LoadFlash(const QString& path, const QString&) override
    {
        if (!m_own && isPageAddress(path)) std::abort();
    }
    void FullScreen(bool) override {}
    void ZoomFlash(int, quint8) override {}
    player::PageOutcome openOutside(const QString&) override { return player::PageOutcome::Declined; }
    [[nodiscard]] QString browserFolder() const override { return "/nowhere/"; }
    [[nodiscard]] int browserPage() const override { return m_page; }
    void setBrowserPage(int page) override { m_page = page; }
    void setBrowserOrder(const QString&) override {}
    [[nodiscard]] int browserPageCount() const override { return 3; }
    void NewMediaBrowse(const QString&) override {}
    void ShowBrowsePage() override {}
    std::optional<QString> chooseBrowserFolder(const QString&) override { return {}; }

private:
    bool m_own;
    int m_page = 0;
};

/// A movie with nothing in it, whose root gets the variables of a query.
void tryQuery(std::string_view query)
{
    constexpr std::uint8_t kEmpty[] = {'F', 'W',  'S',  6, 23, 0, 0, 0,    0x60, 0, 0x3E, 0x80,
                                       0,   0x3E, 0x80, 0, 20, 1, 0, 0x40, 0,    0, 0};
    fuzz::play(kEmpty, {}, "?" + std::string(query));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const QString all = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    switch (data[0] % 4) {
    case 0: tryQuery(text); break;
    case 1: {
        const QString encoded = media::URLEncode(all);
        for (const QChar letter : encoded)
            if (letter < u' ' || letter == u'&' || letter == u'=' || letter == u'?') std::abort();
        (void)player::filePartOf(all);
        break;
    }
    default: {
        Host host((data[0] & 4U) != 0);
        const qsizetype cut = all.indexOf(QChar(0));
        try {
            const QString argument = cut < 0 ? QString() : all.mid(cut + 1);
            (void)player::effectOf(all.left(cut), argument);
            (void)player::runPageCommand(host, all.left(cut), argument);
        } catch (const base::Failure&) {
            // An argument that is no number.
        }
    }
    }
    return 0;
}
