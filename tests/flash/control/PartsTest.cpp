#include "flash/Engine.h"

#include "flash/stage/Stage.h"

#include <QDir>
#include <QImage>

#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

// Whole movies, drawn where they change: they look as if every frame was drawn whole.
namespace flash
{

namespace
{

/// One that plays, and its picture.
struct Playing {
    explicit Playing(const std::string& path) : engine(host, {})
    {
        opened = engine.open(path).has_value();
        fit();
    }
    void fit()
    {
        const stage::View& view = engine.stage().view();
        picture = QImage(view.width(), view.height(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(0);
    }
    stage::HostEvents host;
    Engine engine;
    QImage picture;
    bool opened = false;
};

/// The pointer wanders about and clicks now and then, and keys are pressed.
void useAtRandom(Engine& engine, unsigned seed)
{
    std::mt19937 random(seed);
    engine.act([&](stage::Stage& stage) {
        const double x = static_cast<double>(random() % static_cast<unsigned>(stage.view().width())),
                     y = static_cast<double>(random() % static_cast<unsigned>(stage.view().height()));
        switch (random() % 6) {
        case 0: stage.pointer().move(x, y); break;
        case 1: stage.pointer().press(x, y, stage::MouseButton::Left, 1); break;
        case 2: stage.pointer().release(x, y, stage::MouseButton::Left); break;
        case 3: {
            constexpr int kKeys[] = {9, 13, 32, 37, 38, 39, 40, 65};
            const int key = kKeys[random() % std::size(kKeys)];
            stage.keyboard().press(key, key < 65 ? 0 : U'a');
            stage.keyboard().release(key, key < 65 ? 0 : U'a');
            break;
        }
        default: break;
        }
    });
}

/// Sums of what several fills give to a pixel are rounded in one order or another, for what is drawn beside
/// it: one level of 256 is no difference.
bool looksSame(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) <= 1 && std::abs(qGreen(a) - qGreen(b)) <= 1 &&
           std::abs(qBlue(a) - qBlue(b)) <= 1 && qAlpha(a) == qAlpha(b);
}

QStringList movieFiles()
{
    QStringList folders{ZORVEX_PROGRAM_DIR "/media/samples", ZORVEX_PROGRAM_DIR "/media/gadgets",
                        ZORVEX_BENCH_MOVIES};
    // More of them, for a longer look.
    folders += qEnvironmentVariable("ZORVEX_TEST_MOVIES").split(':', Qt::SkipEmptyParts);
    QStringList files;
    for (const QString& folder : folders) {
        const QDir dir(folder);
        for (const QString& name : dir.entryList({"*.swf"}, QDir::Files, QDir::Name))
            files += dir.filePath(name);
    }
    return files;
}

} // namespace

TEST(Parts, MoviesLookAsDrawnWhole)
{
    const QStringList files = movieFiles();
    ASSERT_GE(files.size(), 8) << "samples, pages and the movies of the benchmarks";
    const int asked = qEnvironmentVariableIntValue("ZORVEX_TEST_FRAMES");
    const int frames = asked > 0 ? asked : 60;
    long long pixelsInParts = 0, pixelsWhole = 0;
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        Playing parts(file.toStdString()), whole(file.toStdString());
        ASSERT_TRUE(parts.opened && whole.opened);
        const double step = 1000 / std::max(1.0, parts.engine.stage().frameRate());
        for (int frame = 0; frame < frames; ++frame) {
            for (Playing* one : {&parts, &whole}) {
                useAtRandom(one->engine, static_cast<unsigned>(frame));
                one->engine.advance(step);
                if (frame == frames / 2) {
                    one->engine.act([](stage::Stage& stage) {
                        stage.view().setSize(stage.view().width() * 3 / 4 + 1, stage.view().height());
                    });
                    one->fit();
                }
            }
            if (!parts.engine.isOpen() || !whole.engine.isOpen()) break;
            const auto rects = parts.engine.dirtyRects();
            for (const QRect& rect : rects) pixelsInParts += 1LL * rect.width() * rect.height();
            pixelsWhole += 1LL * whole.picture.width() * whole.picture.height();
            parts.engine.render(parts.picture, rects);
            whole.engine.render(whole.picture, {whole.picture.rect()});
            if (parts.picture == whole.picture) continue;
            const QImage wanted = whole.picture;
            whole.picture.fill(0x12345678);
            whole.engine.render(whole.picture, rects);
            int missed = 0, different = 0;
            QRect where;
            for (int y = 0; y < whole.picture.height(); ++y)
                for (int x = 0; x < whole.picture.width(); ++x)
                    if (!looksSame(parts.picture.pixel(x, y), wanted.pixel(x, y))) {
                        ++(looksSame(whole.picture.pixel(x, y), wanted.pixel(x, y)) ? missed : different);
                        where |= QRect(x, y, 1, 1);
                    }
            if (where.isEmpty()) continue;
            ADD_FAILURE() << "frame " << frame << ": " << missed << " pixels not drawn again, " << different
                          << " drawn differently, within " << where.x() << "," << where.y() << " "
                          << where.width() << "x" << where.height();
            break;
        }
    }
    EXPECT_LT(pixelsInParts, pixelsWhole * 3 / 4) << "otherwise there is nothing to look at";
}

} // namespace flash
