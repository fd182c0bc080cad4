#include "core/StartUp.h"
#include "flash/FlashControl.h"
#include "media/MovieBytes.h"
#include "player/Player.h"
#include "skin/SampleSkin.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
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

    constexpr int kWarmUp = 200; // tables that grow with what they have seen have grown by then
    constexpr int kSwitches = 150;
    constexpr double kMaxPerSwitch = 1024;
    const auto switchSkins = [&](int count) {
        int done = 0;
        QEventLoop loop;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &player, [&] {
            if (done == count) return loop.quit();
            emit player.skinWindow().skin().userActed(); // who switches so often is not the skin
            if (const QString item = QString("mnuSkinList%1").arg(done++ % 2); GetParam())
                player.skinWindow().skin().bridge().RunScript("Player." + item + ".Click");
            else
                player.menus().item(item).trigger();
        });
        timer.start(1);
        loop.exec();
    };
    // A script engine that is let go of may live for a while on a busy machine: the least of what is seen
    // until `enough` counts, and what was forgotten stays however long one looks.
    const auto leastInUse = [](std::chrono::milliseconds atMost, std::size_t enough) {
        std::size_t least = bytesInUse();
        for (QDeadlineTimer deadline(atMost); least > enough && !deadline.hasExpired();) {
            QTest::qWait(5);
            least = std::min(least, bytesInUse());
        }
        return least;
    };
    switchSkins(kWarmUp);
    const std::size_t warm = leastInUse(std::chrono::milliseconds(500), 0);
    switchSkins(kSwitches);
    const std::size_t last =
        leastInUse(std::chrono::seconds(20), warm + static_cast<std::size_t>(kSwitches * kMaxPerSwitch / 2));
    const auto perSwitch = (static_cast<double>(last) - static_cast<double>(warm)) / kSwitches;
    std::printf("%.0f bytes a switch\n", perSwitch);
    EXPECT_LT(perSwitch, kMaxPerSwitch) << "one forgotten button is larger";
}

INSTANTIATE_TEST_SUITE_P(By, SkinSwitch, testing::Bool(),
                         [](const auto& info) { return info.param ? "TheSkinsOwnScript" : "TheMenu"; });

} // namespace
} // namespace player
