#include "core/StartUp.h"
#include "flash/FlashControl.h"
#include "player/Player.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

// What the player itself costs while a movie plays.

namespace
{

/// A copy of the program's data, so that journal and settings are the bench's own.
void copyFolder(const QString& from, const QString& to)
{
    QDir().mkpath(to);
    for (const QFileInfo& entry : QDir(from).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (entry.isDir())
            copyFolder(entry.filePath(), to + '/' + entry.fileName());
        else
            QFile::copy(entry.filePath(), to + '/' + entry.fileName());
    }
}

class Program
{
public:
    Program()
    {
        copyFolder(ZORVEX_PROGRAM_DIR "/media", m_folder.filePath("media"));
        QFile::copy(ZORVEX_PROGRAM_DIR "/settings.xml", m_folder.filePath("settings.xml"));
        QDir(m_folder.path()).mkpath("cache");
        core::StartUp(m_application, m_folder.filePath("Zorvex"), {});
        m_player.emplace(m_application, '"' + m_folder.filePath("media/samples/film.swf") + '"');
        m_player->Form_Load();
        m_player->setUpdateTimerEnabled(false);
    }
    player::Player& player() { return *m_player; }

private:
    QTemporaryDir m_folder;
    core::Application m_application;
    std::optional<player::Player> m_player;
};

/// One tick of the status timer, the skin's statement and the labels' new texts included; painting is the
/// window system's and comes later. The frame moves on, so that the texts do change.
void tick(benchmark::State& state)
{
    Program program;
    player::Player& player = program.player();
    state.SetLabel(player.skinWindow().isShown() ? "with the skin" : "WITHOUT A SKIN");
    const int frames = std::max(player.control().TotalFrames(), 1);
    int frame = 0;
    for (auto _ : state) {
        state.PauseTiming();
        player.control().GotoFrame(frame = (frame + 1) % frames);
        state.ResumeTiming();
        player.timer().tmrUpdate_Timer();
    }
}
BENCHMARK(tick)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
