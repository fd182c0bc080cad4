#include "PlayerWindow.h"
#include "flash/Engine.h"
#include "flash/FlashControl.h"
#include "flash/sound/SoundPlayer.h"
#include "flash/stage/Stage.h"
#include "player/PageAddresses.h"

#include <cmath>

// What the player's commands do to a movie that really plays.

namespace player
{
namespace
{

/// 200 x 160 on blue-grey, four frames; a red square of 40 that stands 40 further right on each. Writes down
/// what a script of its own finds of the global sound.
constexpr const char* kMovie = R"(<movie version="6" width="200" height="160" rate="20" background="#336699">
  <shape id="square"><rect x="0" y="0" width="40" height="40" fill="#FF0000"/></shape>
  <frame><place id="square" depth="1"/><script>
    _root.onEnterFrame = function () {
      var s = new Sound(); heard = s.getVolume() + " " + s.getPan(); };
  </script></frame>
  <frame><move depth="1" x="40"/></frame>
  <frame><move depth="1" x="80"/></frame>
  <frame><move depth="1" x="120"/></frame>
</movie>)";

const QColor kRed("#FF0000"), kGround("#336699");

class PlayingMovie : public PlayerWindow
{
protected:
    PlayingMovie() : player(application, '"' + compile("moving", kMovie) + '"')
    {
        player.Form_Load();
        player.PauseMedia();
        player.StopMedia();
    }
    /// The colour at a place of the movie's own measure, while it is shown at its own size.
    [[nodiscard]] QColor at(int x, int y)
    {
        const QImage shown = control().grab().toImage();
        return shown.pixelColor(shown.width() / 2 - 100 + x, shown.height() / 2 - 80 + y);
    }
    flash::FlashControl& control() { return player.control(); }
    Player player;
};

TEST_F(PlayingMovie, PlaysPausesStopsAndSteps)
{
    EXPECT_FALSE(control().Playing());
    EXPECT_EQ(control().FrameNum(), 0);
    player.PlayPauseMedia();
    EXPECT_TRUE(control().Playing());
    EXPECT_TRUE(waitFor([this] { return control().FrameNum() == 2; }));
    player.PlayPauseMedia();
    EXPECT_FALSE(control().Playing());
    EXPECT_EQ(control().FrameNum(), 2) << "a pause stays where it is";
    player.StopMedia();
    EXPECT_EQ(control().FrameNum(), 0) << "a stop goes to the first frame";
    EXPECT_FALSE(control().Playing());

    EXPECT_EQ(at(20, 20), kRed);
    player.menus().item("mnuFFwd").trigger();
    EXPECT_EQ(control().FrameNum(), 1);
    EXPECT_EQ(at(20, 20), kGround);
    EXPECT_EQ(at(60, 20), kRed);
    player.menus().item("mnuRwd").trigger();
    player.menus().item("mnuRwd").trigger();
    EXPECT_EQ(control().FrameNum(), 3) << "back from the first is the last";
    player.menus().item("mnuStop").trigger();
    EXPECT_EQ(control().FrameNum(), 0);
}

TEST_F(PlayingMovie, LoopsOnlyWhenTold)
{
    if (control().Loop()) player.menus().item("mnuLoop").trigger();
    player.PlayMedia();
    EXPECT_TRUE(waitFor([this] { return !control().Playing(); }));
    EXPECT_EQ(control().FrameNum(), 3) << "it halts at the last frame";
    player.menus().item("mnuLoop").trigger();
    EXPECT_TRUE(player.menus().isChecked("mnuLoop"));
    control().GotoFrame(3);
    player.PlayMedia();
    EXPECT_TRUE(waitFor([this] { return control().FrameNum() == 1; }));
    EXPECT_TRUE(control().Playing());
}

TEST_F(PlayingMovie, FadesTheWholeMovieOverItsGround)
{
    player.menus().item("mnuOpMed").trigger();
    EXPECT_EQ(control().GetVariable("_alpha").toDouble(), 50);
    const QColor half = at(20, 20);
    EXPECT_NEAR(half.red(), (0xFF + 0x33) / 2, 2);
    EXPECT_NEAR(half.green(), 0x66 / 2, 2);
    EXPECT_EQ(at(190, 150), kGround);
    player.menus().item("mnuOpFull").trigger();
    EXPECT_EQ(at(20, 20), kRed);
}

TEST_F(PlayingMovie, FitsTheWindowAsTheScaleModeSays)
{
    player.resize(player.width() + 200, player.height()); // wider than the movie's proportions
    const auto topLeft = [this] { return control().grab().toImage().pixelColor(2, 2); };
    player.menus().item("mnuSMode0").trigger();
    EXPECT_EQ(topLeft(), kGround) << "all is shown, with ground at the sides";
    player.menus().item("mnuSMode2").trigger();
    EXPECT_EQ(topLeft(), kRed) << "stretched into the corners";
    player.menus().item("mnuSMode1").trigger();
    const double shown = control().width() / 200.0; // the width decides, the height is cut
    const double cutTop = (160 * shown - control().height()) / 2;
    EXPECT_EQ(topLeft(), cutTop < 40 * shown ? kRed : kGround);
}

TEST_F(PlayingMovie, SmoothsEdgesByQuality)
{
    // The square's edge lies between pixels at this size.
    player.resize(player.width() + 33, player.height() + 27);
    const auto colours = [this] {
        const QImage shown = control().grab().toImage();
        QSet<QRgb> found;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x) found.insert(shown.pixel(x, y));
        return found.size();
    };
    player.SetQuality("High");
    EXPECT_GT(colours(), 2);
    player.SetQuality("Low");
    EXPECT_EQ(colours(), 2) << "ground and square, nothing in between";
}

TEST_F(PlayingMovie, KeepsItsGroundUnderTheSoundPage)
{
    const QString page = path("media/gadgets/sound.swf");
    ASSERT_TRUE(QFile::copy(ZORVEX_PROGRAM_DIR "/media/gadgets/sound.swf", page));
    player.SetSound(40, -30);
    if (control().hasOwnProcess()) {
        EXPECT_EQ(control().masterVolume(), 0.4) << "the page does not go into another movie's process";
        return;
    }
    const auto heard = [this] { return control().GetVariable("heard"); };
    EXPECT_TRUE(waitFor([&] { return heard() == "40 -30"; })) << heard().toStdString();
    EXPECT_EQ(control().masterVolume(), 1.0) << "not a second time over the page's";
    EXPECT_EQ(control().BGColor(), "336699");
    EXPECT_EQ(at(190, 150), kGround);
    EXPECT_EQ(control().FrameNum(), 0) << "the movie itself is not touched";

    // What is loaded next is as loud.
    player.LoadFlash(path("moving.swf"), {});
    EXPECT_TRUE(waitFor([&] { return heard() == "40 -30"; })) << heard().toStdString();

    player.menus().item("mnuVolumeUp").trigger();
    EXPECT_TRUE(waitFor([&] { return heard() == "50 0"; })) << "a step centres the balance";
    player.menus().item("mnuMute").trigger();
    EXPECT_TRUE(waitFor([&] { return heard() == "0 0"; }));
    EXPECT_TRUE(control().isMuted());
    player.menus().item("mnuMute").trigger();
    EXPECT_TRUE(waitFor([&] { return heard() == "50 0"; }));
    EXPECT_FALSE(control().isMuted());

    // A page that is damaged is as good as none.
    QFile file(page);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.close();
    player.SetSound(20, 0);
    EXPECT_EQ(control().masterVolume(), 0.2);
    EXPECT_EQ(control().BGColor(), "336699");
}

TEST_F(PlayingMovie, GivesItsGroundBackWhenAMovieIsComplete)
{
    control().setBGColor("FF00FF");
    emit control().OnReadyStateChange(3);
    EXPECT_EQ(control().BGColor(), "FF00FF");
    emit control().OnReadyStateChange(4);
    EXPECT_EQ(control().BGColor(), "336699");
}

/// The loudness of either side over the next tenth of a second.
std::pair<double, double> loudness(flash::Engine& engine)
{
    std::vector<flash::sound::StereoFrame> frames(4410);
    engine.sound().mixer().mix(frames);
    double left = 0, right = 0;
    for (const auto& frame : frames) {
        left += std::abs(frame.left);
        right += std::abs(frame.right);
    }
    return {left / static_cast<double>(frames.size()), right / static_cast<double>(frames.size())};
}

TEST_F(PlayerWindow, SoundPageSetsWhatIsHeard)
{
    // One second of a square wave, the same on both sides: 16 bits at 22050.
    QByteArray samples;
    for (int i = 0; i < 22050; ++i)
        samples += i / 25 % 2 == 0 ? QByteArray("\x00\x20", 2) : QByteArray("\x00\xE0", 2);
    const auto number = [](quint32 value, int bytes) {
        QByteArray out;
        for (; bytes > 0; --bytes, value >>= 8U) out += static_cast<char>(value & 255U);
        return out;
    };
    QFile wave(path("tone.wav"));
    ASSERT_TRUE(wave.open(QFile::WriteOnly));
    const auto size = static_cast<quint32>(samples.size());
    wave.write("RIFF" + number(36 + size, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) + number(1, 2) +
               number(22050, 4) + number(44100, 4) + number(2, 2) + number(16, 2) + "data" + number(size, 4) +
               samples);
    wave.close();
    const QString tone = compile("tone", R"(<movie version="6" width="100" height="80" rate="20">
      <sound id="tone" file="tone.wav" format="pcm"/>
      <frame><startSound sound="tone" loops="100"/><script>stop();</script></frame></movie>)");

    flash::stage::HostEvents host; // tells nobody
    flash::Engine engine(host, {});
    ASSERT_TRUE(engine.open(tone.toStdString()));
    const auto heard = [&](int volume, int pan) {
        const QString page = soundPage(ZORVEX_PROGRAM_DIR "/media/gadgets/", volume, pan);
        EXPECT_TRUE(engine.openLevel(6000, page.toStdString()));
        engine.advance(100, flash::Engine::SoundPace::Device);
        loudness(engine); // what lies between, if the gains are faded
        return loudness(engine);
    };
    const auto [left, right] = heard(100, 0);
    ASSERT_GT(left, 1000);
    EXPECT_NEAR(left, right, 1);
    EXPECT_NEAR(heard(50, 0).first, left / 2, left / 50);
    EXPECT_NEAR(heard(0, 0).first, 0, 1);
    EXPECT_NEAR(heard(100, 100).first, 0, 1);
    EXPECT_NEAR(heard(100, 100).second, right, right / 50);
    EXPECT_NEAR(heard(80, -100).second, 0, 1);
    EXPECT_NEAR(heard(80, -50).second, right * 0.8 * 0.5, right / 50);
}

} // namespace
} // namespace player
