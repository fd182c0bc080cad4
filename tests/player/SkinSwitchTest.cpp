#include "core/StartUp.h"
#include "flash/FlashControl.h"
#include "media/MovieBytes.h"
#include "player/Player.h"
#include "skin/SampleSkin.h"

#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <malloc.h>

namespace player
{
namespace
{

std::size_t bytesInUse()
{
    malloc_trim(0);
    const struct mallinfo2 use = mallinfo2();
    return use.uordblks + use.hblkhd;
}

/// Whether the allocator is glibc's own, whose figures mallinfo2 tells; under a sanitizer it is not.
bool countsBytes()
{
    const std::size_t before = mallinfo2().uordblks;
    const std::vector<char> some(10'000);
    return mallinfo2().uordblks > before && some.data() != nullptr;
}

class SkinSwitch : public testing::TestWithParam<bool>
{
};

// In the real event loop and with nothing else going on: what a switch leaves to be deleted later must not
// have to wait for somebody to move the mouse.
TEST_P(SkinSwitch, LeavesMemoryAsItWas)
{
    if (!countsBytes()) GTEST_SKIP() << "a sanitizer has an allocator of its own, and finds leaks itself";
    const QTemporaryDir folder;
    const QString root = folder.path() + '/';
    QDir(root).mkpath("cache");
    QDir(root).mkpath("media/gadgets");
    QFile::copy(PROJECT_SOURCE_DIR "/assets/program/settings.xml", root + "settings.xml");
    skin::writeSampleSkin(root + "media/skins/default/");
    skin::writeSampleSkin(root + "media/skins/other/", Qt::darkRed);
    core::Application application;
    core::StartUp(application, root + "Zorvex", {});
    Player player(application, {});
    player.Form_Load();
    if (player.menus().isChecked("mnuMenuBar")) player.ToggleMenu();

    constexpr int kWarmUp = 40; // tables that grow with what they have seen have grown by then
    constexpr int kSwitches = 160;
    // The least of some switches counts: what a script engine holds for a moment is none of this.
    constexpr int kLooks = 30; // on a busy machine a held engine may stay for many
    constexpr auto kUnknown = std::numeric_limits<std::size_t>::max();
    std::size_t warm = kUnknown, last = kUnknown;
    int done = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &player, [&] {
        if (done >= kWarmUp && done < kWarmUp + kLooks) warm = std::min(warm, bytesInUse());
        if (done >= kSwitches - kLooks) last = std::min(last, bytesInUse());
        if (done == kSwitches) return QCoreApplication::quit();
        emit player.skinWindow().skin().userActed(); // who switches so often is not the skin
        if (const QString item = QString("mnuSkinList%1").arg(done++ % 2); GetParam())
            player.skinWindow().skin().bridge().RunScript("Player." + item + ".Click");
        else
            player.menus().item(item).trigger();
    });
    timer.start(1);
    QApplication::exec();
    const auto perSwitch =
        (static_cast<double>(last) - static_cast<double>(warm)) / (kSwitches - kWarmUp - kLooks);
    std::printf("%.0f bytes a switch\n", perSwitch);
    EXPECT_LT(perSwitch, 1024) << "one forgotten button is larger";
}

INSTANTIATE_TEST_SUITE_P(By, SkinSwitch, testing::Bool(),
                         [](const auto& info) { return info.param ? "TheSkinsOwnScript" : "TheMenu"; });

} // namespace
} // namespace player
