#pragma once

#include "base/Files.h"
#include "flash/Engine.h"
#include "flash/stage/Stage.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>

// What the targets share that play a whole movie: load, scripts, input, sound, drawing.

namespace fuzz
{

/// Ends scripts that take long, so that a run costs little; refuses nothing else.
class HurriedHost : public flash::stage::HostEvents
{
public:
    bool abortSlowScript() override { return true; }
    bool endsScripts() override { return std::chrono::steady_clock::now() > m_end; }

private:
    static constexpr std::chrono::milliseconds kScripts{400};
    std::chrono::steady_clock::time_point m_end = std::chrono::steady_clock::now() + kScripts;
};

/// 8-bit codes of old movies, the common kinds of them.
inline constexpr const char* kTextCodes[] = {
    "", flash::Engine::Options::kAutomaticTextCode.data(), "Shift-JIS", "GBK", "EUC-KR", "KOI8-R", "Latin-1"};

/// Fonts need a Qt application, which needs no display.
inline void startQt()
{
    static const bool offscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = offscreen ? 0 : 0;
    static const QGuiApplication application(argc, nullptr);
}

/// One thing that a user does. @param byte says what, @param x, y where, 0 to 255 across the view
inline void doInput(flash::stage::Stage& stage, unsigned byte, unsigned x, unsigned y)
{
    const double left = stage.view().width() * (x / 255.0), top = stage.view().height() * (y / 255.0);
    switch (byte % 8) {
    case 0: stage.pointer().move(left, top); break;
    case 1: stage.pointer().press(left, top); break;
    case 2: stage.pointer().release(left, top); break;
    case 3: stage.keyboard().press(static_cast<int>(x), y); break;
    case 4: stage.keyboard().release(static_cast<int>(x), y); break;
    case 5: stage.pointer().wheel(static_cast<int>(x) - 128); break;
    case 6: stage.pointer().press(left, top, flash::stage::MouseButton::Left, 2); break;
    default: stage.pointer().leave(); break;
    }
}

/// Plays a movie's first frames in a folder of its own and draws each.
/// @param input three bytes for each thing that the user does, one thing a frame
/// @param query what stands behind the movie's address
/// @param collectAlways with a collection wherever one may happen
/// @param textCode as Engine::Options::textCode
inline void play(base::Bytes movie, base::Bytes input, const std::string& query = {},
                 bool collectAlways = false, const char* textCode = "")
{
    constexpr int kFrames = 8, kLongestSide = 200;
    startQt();
    static const QTemporaryDir folder("/dev/shm/fuzz-XXXXXX");
    const std::filesystem::path file = std::filesystem::path(folder.path().toStdString()) / "movie.swf";
    if (!base::replaceFile(file, movie)) std::abort();

    HurriedHost host;
    flash::Engine::Options options;
    options.startDateMs = 1e12;
    options.collectAlways = collectAlways;
    options.textCode = textCode;
    options.storageFolder = file.parent_path() / "stored";
    flash::Engine engine(host, options);
    engine.stage().view().setSize(kLongestSide, kLongestSide);
    if (!engine.open(file.string() + query)) return;
    QImage image(kLongestSide, kLongestSide, QImage::Format_ARGB32_Premultiplied);
    for (int frame = 0; frame < kFrames && engine.isOpen(); ++frame) {
        if (input.size() >= 3) {
            doInput(engine.stage(), input[0], input[1], input[2]);
            input = input.subspan(3);
        }
        engine.advance(std::clamp(engine.stage().frameMs(), 1.0, 1000.0));
        engine.render(image, {image.rect()});
    }
    std::error_code ignored;
    std::filesystem::remove_all(options.storageFolder, ignored);
}

} // namespace fuzz
