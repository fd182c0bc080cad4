#include "../stage/MovieBuilder.h"

#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/render/Canvas.h"

#include <gtest/gtest.h>

// What scripts show, on a stage and off it.
namespace flash::avm2
{

namespace
{

using B = stage::test::MovieBuilder;

/// A movie of version 10 and its machine; the first frame has run.
struct Fixture {
    explicit Fixture(B movie = B())
    {
        movie.movie().header.version = 10;
        player.attach(stage);
        stage.open(movie.take(), "file:///movie.swf");
    }
    Vm& vm() { return player.vm(); }
    Value make(std::string_view cls, std::initializer_list<Value> args = {})
    {
        return vm().construct(Value(vm().nativeClass(cls)), std::span(args.begin(), args.size()));
    }
    Value root() { return Value(player.root()); }
    double number(Value object, std::string_view property)
    {
        return vm().toNumber(vm().getPublic(object, property));
    }
    std::string text(Value object, std::string_view property)
    {
        return toUtf8(vm().text(vm().getPublic(object, property)));
    }
    /// A red square of 10 pixels.
    Value square()
    {
        const Value sprite = make("flash.display::Sprite");
        const Value pen = vm().getPublic(sprite, "graphics");
        vm().callPublic(pen, "beginFill", {0xFF0000});
        vm().callPublic(pen, "drawRect", {0, 0, 10, 10});
        return sprite;
    }
    std::uint32_t pixel(int x, int y)
    {
        constexpr int kSide = 100;
        std::vector<std::uint32_t> pixels(kSide * kSide);
        stage.view().setSize(kSide, kSide);
        render::Canvas canvas({pixels.data(), kSide, kSide, kSide}, render::Quality::High,
                              stage.view().renderCache());
        stage.view().render(canvas, {0, 0, kSide, kSide});
        return pixels[static_cast<std::size_t>(y * kSide + x)];
    }
    int error(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const ScriptThrow&) {
            return vm().toInt(vm().getPublic(vm().thrown(), "errorID"));
        }
        return 0;
    }

    stage::NullServices services;
    Player player{services.services(), {}};
    stage::Stage stage{services.services(), &player};
};

constexpr std::uint32_t kRed = 0xFFFF0000, kWhite = 0xFFFFFFFF;

} // namespace

TEST(Display, WhatAScriptAddsIsDrawnWhereItStands)
{
    Fixture f;
    const Value square = f.square();
    f.vm().setPublic(square, "x", 20);
    EXPECT_EQ(f.pixel(25, 5), kWhite);
    f.vm().callPublic(f.root(), "addChild", {square});
    EXPECT_EQ(f.pixel(25, 5), kRed);
    EXPECT_EQ(f.pixel(35, 5), kWhite);
    f.vm().setPublic(square, "scaleX", 2);
    EXPECT_EQ(f.pixel(35, 5), kRed);
    EXPECT_EQ(f.number(f.root(), "width"), 20);
    f.vm().callPublic(f.root(), "removeChild", {square});
    EXPECT_EQ(f.pixel(25, 5), kWhite);
}

TEST(Display, OrderMasksAndVisibilityCount)
{
    Fixture f;
    const Value below = f.square(), above = f.square(), mask = f.square();
    f.vm().setPublic(f.vm().getPublic(above, "transform"), "colorTransform",
                     f.make("flash.geom::ColorTransform", {0, 0, 0, 1, 0, 0, 255, 0}));
    for (const Value child : {below, above, mask}) f.vm().callPublic(f.root(), "addChild", {child});
    f.vm().setPublic(mask, "x", 5);
    f.vm().setPublic(above, "mask", mask);
    EXPECT_EQ(f.pixel(2, 2), kRed);
    EXPECT_EQ(f.pixel(7, 2), 0xFF0000FF);
    f.vm().callPublic(f.root(), "swapChildren", {below, above});
    EXPECT_EQ(f.pixel(7, 2), kRed);
    f.vm().setPublic(below, "visible", false);
    EXPECT_EQ(f.pixel(7, 2), 0xFF0000FF);
    EXPECT_EQ(f.pixel(2, 2), kWhite);
}

TEST(Display, ContainersRefuseWhatCannotBe)
{
    Fixture f;
    const Value outer = f.make("flash.display::Sprite"), inner = f.make("flash.display::Sprite");
    f.vm().callPublic(outer, "addChild", {inner});
    EXPECT_EQ(f.error([&] { f.vm().callPublic(outer, "addChild", {outer}); }), 2024);
    EXPECT_EQ(f.error([&] { f.vm().callPublic(inner, "addChild", {outer}); }), 2150);
    EXPECT_EQ(f.error([&] { f.vm().callPublic(outer, "removeChild", {outer}); }), 2025);
    EXPECT_EQ(f.error([&] { f.vm().callPublic(outer, "getChildAt", {1}); }), 2006);
    EXPECT_EQ(f.error([&] { f.vm().callPublic(outer, "addChild", {Value::null()}); }), 2007);
    EXPECT_EQ(f.error([&] {
        f.vm().setPublic(outer, "blendMode", Value(f.vm().string(std::u16string_view(u"none"))));
    }),
              2008);
    EXPECT_EQ(f.number(outer, "numChildren"), 1);
}

TEST(Display, ScriptsChildrenLieBesideThoseOfTheTimeline)
{
    B movie(3);
    movie.square(1, 10);
    movie.tag(0, B::placed(1, 1));
    movie.tag(1, B::placed(1, 5, 50));
    movie.tag(2, swf::RemoveObject{1, {}});
    Fixture f(std::move(movie));
    const Value own = f.make("flash.display::Sprite");
    f.vm().callPublic(f.root(), "addChild", {own});
    f.stage.advanceFrame();
    EXPECT_EQ(f.number(f.root(), "numChildren"), 3);
    EXPECT_EQ(f.vm().callPublic(f.root(), "getChildAt", {1}).bits(), own.bits());
    EXPECT_EQ(f.pixel(55, 5), kRed);
    f.stage.advanceFrame();
    EXPECT_EQ(f.number(f.root(), "numChildren"), 2);
    EXPECT_EQ(f.pixel(5, 5), kWhite);
    f.vm().callPublic(f.root(), "gotoAndStop", {1});
    EXPECT_EQ(f.number(f.root(), "currentFrame"), 1);
    EXPECT_EQ(f.pixel(5, 5), kRed);
    EXPECT_EQ(f.pixel(55, 5), kWhite);
}

TEST(Display, WhatNobodyHoldsGoesWithItsNode)
{
    Fixture f;
    f.vm().heap().collect();
    const std::size_t before = f.stage.displayList().instances();
    for (int i = 0; i < 50; ++i) {
        const Value sprite = f.square();
        f.vm().callPublic(sprite, "addChild", {f.square()});
        f.vm().callPublic(f.root(), "addChild", {sprite});
        f.vm().callPublic(f.root(), "removeChild", {sprite});
    }
    f.vm().heap().collect();
    // The stack may still mention the last ones.
    EXPECT_LT(f.stage.displayList().instances(), before + 10);
}

TEST(BitmapData, ColoursComeBackAsThePlayerKeepsThem)
{
    Fixture f;
    const Value data = f.make("flash.display::BitmapData", {4, 4, true, 0});
    const auto stored = [&](std::uint32_t color) {
        f.vm().callPublic(data, "setPixel32", {0, 0, static_cast<double>(color)});
        return f.vm().toUint(f.vm().callPublic(data, "getPixel32", {0, 0}));
    };
    EXPECT_EQ(stored(0xFF123456), 0xFF123456U);
    EXPECT_EQ(stored(0x00FFFFFF), 0U);
    EXPECT_EQ(stored(0x02404040), 0x027F7F7FU);
    EXPECT_EQ(stored(0x8DFFFFFF), 0x8DFEFEFEU);
    f.vm().callPublic(data, "dispose");
    EXPECT_EQ(f.error([&] { f.vm().callPublic(data, "getPixel", {0, 0}); }), 2015);
    EXPECT_EQ(f.error([&] { f.make("flash.display::BitmapData", {0, 1}); }), 2015);
}

TEST(BitmapData, DrawsWhatIsOnNoStage)
{
    Fixture f;
    const Value data = f.make("flash.display::BitmapData", {20, 20, false, 0xFFFFFF});
    const Value place = f.make("flash.geom::Matrix", {1, 0, 0, 1, 5, 5});
    f.vm().callPublic(data, "draw", {f.square(), place});
    EXPECT_EQ(f.vm().toUint(f.vm().callPublic(data, "getPixel", {7, 7})), 0xFF0000U);
    EXPECT_EQ(f.vm().toUint(f.vm().callPublic(data, "getPixel", {2, 2})), 0xFFFFFFU);
    const Value shown = f.make("flash.display::Bitmap", {data});
    f.vm().callPublic(f.root(), "addChild", {shown});
    EXPECT_EQ(f.pixel(7, 7), kRed);
    f.vm().callPublic(data, "fillRect", {f.make("flash.geom::Rectangle", {0, 0, 20, 20}), 0x00FF00});
    EXPECT_EQ(f.pixel(7, 7), 0xFF00FF00);
}

TEST(Display, FiltersAreCopiesThatKeepTheirNumbers)
{
    Fixture f;
    const Value square = f.square();
    const Value glow = f.make("flash.filters::GlowFilter", {0x00FF00, 0.5, 8, 9, 3, 2, true, false});
    const Value list = Value(f.vm().newArray(std::array{glow}));
    f.vm().setPublic(square, "filters", list);
    const Value back = f.vm().callPublic(f.vm().getPublic(square, "filters"), "pop");
    EXPECT_NE(back.bits(), glow.bits());
    EXPECT_EQ(f.number(back, "color"), 0x00FF00);
    EXPECT_EQ(f.number(back, "blurY"), 9);
    EXPECT_EQ(f.number(back, "quality"), 2);
    EXPECT_EQ(f.text(back, "inner"), "true");
    EXPECT_TRUE(f.vm().toBoolean(f.vm().getPublic(square, "cacheAsBitmap")));
    const Value wrong = Value(f.vm().newArray(std::array{Value(1)}));
    EXPECT_EQ(f.error([&] { f.vm().setPublic(square, "filters", wrong); }), 2005);
}

TEST(Geometry, SpaceTurnsAndMovesVectors)
{
    Fixture f;
    const Value matrix = f.make("flash.geom::Matrix3D");
    f.vm().callPublic(matrix, "appendRotation", {90, f.make("flash.geom::Vector3D", {0, 0, 1})});
    f.vm().callPublic(matrix, "appendTranslation", {5, 0, 0});
    const Value moved =
        f.vm().callPublic(matrix, "transformVector", {f.make("flash.geom::Vector3D", {1, 0, 0})});
    EXPECT_NEAR(f.number(moved, "x"), 5, 1e-6);
    EXPECT_NEAR(f.number(moved, "y"), 1, 1e-6);
    EXPECT_TRUE(f.vm().toBoolean(f.vm().callPublic(matrix, "invert")));
    const Value back = f.vm().callPublic(matrix, "transformVector", {moved});
    EXPECT_NEAR(f.number(back, "x"), 1, 1e-6);
    EXPECT_NEAR(f.number(back, "y"), 0, 1e-6);
}

} // namespace flash::avm2
