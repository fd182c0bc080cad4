#include "flash/FlashControl.h"
#include "flash/control/Messages.h"
#include "flash/control/PicturePainting.h"

#include "Movies.h"
#include "StandInOutput.h"

#include <QCursor>
#include <QPixmap>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#include <cstring>

namespace flash
{

TEST(OwnPointer, IsNoneWhenWhatIsSaidOfItDoesNotFitTogether)
{
    struct Case {
        const char* name;
        std::uint8_t width, height, x, y;
        std::size_t bytes;
        bool isShown;
    };
    constexpr Case kCases[] = {
        {"none", 0, 0, 0, 0, 0, false},
        {"a pixel", 1, 1, 0, 0, 4, true},
        {"the largest, pointed with by its last pixel", 32, 32, 31, 31, 32 * 32 * 4, true},
        {"too wide", 33, 1, 0, 0, 33 * 4, false},
        {"too high", 1, 255, 0, 0, 255 * 4, false},
        {"no height", 8, 0, 0, 0, 0, false},
        {"pixels missing", 8, 8, 0, 0, 8 * 8 * 4 - 1, false},
        {"more pixels than it has", 8, 8, 0, 0, 1U << 20U, false},
        {"points beside itself", 8, 8, 8, 0, 8 * 8 * 4, false},
        {"points below itself", 8, 8, 0, 200, 8 * 8 * 4, false},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        control::State state;
        state.pointerWidth = c.width;
        state.pointerHeight = c.height;
        state.pointerX = c.x;
        state.pointerY = c.y;
        state.pointerPixels.assign(c.bytes, '\x40');
        const QImage image = control::ownPointer(state);
        EXPECT_EQ(!image.isNull(), c.isShown);
        EXPECT_EQ(image.size(), c.isShown ? QSize(c.width, c.height) : QSize(0, 0));
    }
}

// Compiled here: the movie's script makes the pictures.
constexpr const char* kMovie = R"(// movie: version="11" width="100" height="80" rate="25" document="Main"
package {
    import flash.display.*; import flash.events.*; import flash.geom.*; import flash.ui.*;
    public class Main extends Sprite
    {
        public function Main()
        {
            var data:MouseCursorData = new MouseCursorData();
            data.data = new <BitmapData>[new BitmapData(12, 7, true, 0xFFFF0000), new BitmapData(12, 7, true, 0xFF0000FF)];
            data.hotSpot = new Point(11, 3);
            data.frameRate = 5;
            Mouse.registerCursor("own", data);
            Mouse.cursor = "own";
            stage.addEventListener("mouseDown", function(e:Event):void {
                if (Mouse.cursor == "own") Mouse.hide();
                Mouse.unregisterCursor("own");
            });
            stage.addEventListener("mouseUp", function(e:Event):void { Mouse.show(); });
        }
    }
}
)";

TEST(FlashControl, ShowsAPointerThatTheMovieHasMade)
{
    const test::MovieFolder folder;
    const QString source = folder.write("pointer.as", swf::ByteList(kMovie, kMovie + std::strlen(kMovie)));
    const QString movie = source + ".swf";
    ASSERT_EQ(QProcess::execute(QString(ZORVEX_TOOLS_DIR "/swfc"), {source, "-o", movie}), 0);
    FlashControl control;
    control.resize(100, 80);
    control.show();
    ASSERT_TRUE(control.LoadMovie(0, movie));
    const auto colour = [&control] {
        const QCursor shown = control.cursor();
        if (shown.shape() != Qt::BitmapCursor) return QColor();
        EXPECT_EQ(shown.hotSpot(), QPoint(11, 3));
        EXPECT_EQ(shown.pixmap().size(), QSize(12, 7));
        return shown.pixmap().toImage().pixelColor(5, 5);
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return colour() == QColor(255, 0, 0); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return colour() == QColor(0, 0, 255); })) << "it moves";
    QTest::mousePress(&control, Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(QTest::qWaitFor([&] { return control.cursor().shape() == Qt::BlankCursor; }));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, {20, 20});
    EXPECT_TRUE(QTest::qWaitFor([&] { return control.cursor().shape() == Qt::ArrowCursor; }))
        << "nothing is left of it";
}

} // namespace flash
