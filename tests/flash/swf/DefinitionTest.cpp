#include "MovieWriter.h"

// Fonts, texts, sounds, video, buttons and placements.
namespace flash::swf
{
namespace
{

TEST(Font, OfTheFirstFormTakesNameAndCodesFromItsInfo)
{
    const auto movie = parsed(sampleMovie());
    const auto* font = definition<Font>(*movie, 21);
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->name, "C");
    EXPECT_EQ(font->unitsPerEm, 1024);
    ASSERT_EQ(font->glyphs.size(), 1U);
    EXPECT_EQ(font->glyphs[0].code, 'z');
    EXPECT_EQ(font->glyphByCode.at('z'), 0);
    const Shape& outline = *font->glyphs[0].outline;
    EXPECT_EQ(outline.bounds, (Rect{0, 9, 0, 9}));
    ASSERT_EQ(outline.layers.size(), 1U);
    EXPECT_EQ(outline.layers[0].fills.size(), 1U);
    EXPECT_EQ(outline.layers[0].runs.at(0).fill1, 1);
}

TEST(Font, OfTheThirdFormBringsItsLayout)
{
    const auto movie = parsed(sampleMovie());
    const auto* font = definition<Font>(*movie, 20);
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->name, "Ab");
    EXPECT_EQ(font->unitsPerEm, 20480);
    EXPECT_TRUE(font->hasLayout);
    EXPECT_EQ(font->ascent, 900);
    EXPECT_EQ(font->descent, 100);
    ASSERT_EQ(font->glyphs.size(), 1U);
    EXPECT_EQ(font->glyphs[0].advance, 512);
    EXPECT_EQ(font->glyphs[0].bounds, (Rect{0, 9, 0, 9})) << "an empty stated rectangle gives way";
    ASSERT_EQ(font->kerning.size(), 1U);
    EXPECT_EQ(font->kerning[0].adjustment, -3);
}

TEST(Font, GivesADoubledCodeToItsFirstGlyphAndSortsKerning)
{
    const ByteList glyph = BodyWriter().indexWidths(0, 0).endShape().bytes();
    const auto movie = parsed(movieBytes(6, {tag(48, BodyWriter()
                                                         .u16(1)
                                                         .u8(0x80)
                                                         .u8(0)
                                                         .u8(0)
                                                         .u16(2)
                                                         .u16(6)
                                                         .u16(8)
                                                         .u16(10)
                                                         .raw(glyph)
                                                         .raw(glyph)
                                                         .u8('a')
                                                         .u8('a')
                                                         .u16(0)
                                                         .u16(0)
                                                         .i16(0)
                                                         .i16(1)
                                                         .i16(2)
                                                         .rect(0, 0, 0, 0)
                                                         .rect(0, 0, 0, 0)
                                                         .u16(3)
                                                         .u8('b')
                                                         .u8('a')
                                                         .i16(1)
                                                         .u8('a')
                                                         .u8('z')
                                                         .i16(2)
                                                         .u8('a')
                                                         .u8('b')
                                                         .i16(3))}));
    const auto* font = definition<Font>(*movie, 1);
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->glyphByCode.at('a'), 0);
    ASSERT_EQ(font->kerning.size(), 3U);
    EXPECT_EQ(font->kerning[0].adjustment, 3);
    EXPECT_EQ(font->kerning[1].adjustment, 2);
    EXPECT_EQ(font->kerning[2].adjustment, 1);
}

TEST(StaticText, CarriesStyleAndPlaceFromRecordToRecord)
{
    const Rgba red{255, 0, 0, 255}, blue{0, 0, 255, 255};
    const auto movie = parsed(movieBytes(6, {tag(11, BodyWriter()
                                                         .u16(1)
                                                         .rect(0, 9, 0, 9)
                                                         .translation(3, 4)
                                                         .u8(4)
                                                         .u8(8)
                                                         .u8(0x8F)
                                                         .u16(7)
                                                         .rgb(red)
                                                         .i16(100)
                                                         .i16(50)
                                                         .u16(240)
                                                         .u8(2)
                                                         .bits(1, 4)
                                                         .signedBits(10, 8)
                                                         .bits(2, 4)
                                                         .signedBits(-3, 8)
                                                         .align()
                                                         .u8(0x84)
                                                         .rgb(blue)
                                                         .u8(1)
                                                         .bits(3, 4)
                                                         .signedBits(5, 8)
                                                         .align()
                                                         .u8(0))}));
    const auto* text = definition<StaticText>(*movie, 1);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->matrix.tx, 3);
    ASSERT_EQ(text->records.size(), 2U);
    EXPECT_EQ(text->records[0].x, 100);
    ASSERT_EQ(text->records[0].glyphs.size(), 2U);
    EXPECT_EQ(text->records[0].glyphs[1].advance, -3);
    EXPECT_EQ(text->records[1].x, 107);
    EXPECT_EQ(text->records[1].y, 50);
    EXPECT_EQ(text->records[1].color, blue);
    EXPECT_EQ(text->records[1].fontId, 7);
    EXPECT_EQ(text->records[1].height, 240);
}

TEST(EditText, ReadsItsFieldsInTheOrderOfTheFlags)
{
    const auto movie = parsed(sampleMovie());
    const auto* text = definition<EditText>(*movie, 23);
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->wordWrap && text->multiline && text->readOnly && text->selectable);
    EXPECT_FALSE(text->password || text->border || text->html);
    EXPECT_EQ(text->fontId, 20);
    EXPECT_EQ(text->maxLength, 9);
    EXPECT_EQ(text->align, EditText::Align::Center);
    EXPECT_EQ(text->leading, -4);
    EXPECT_EQ(text->variableName, "variable");
    EXPECT_EQ(text->initialText, "text");
}

TEST(Sound, KeepsItsDataAndTheLatencyOfMp3)
{
    const auto movie = parsed(sampleMovie());
    const auto* sound = definition<Sound>(*movie, 24);
    ASSERT_NE(sound, nullptr);
    EXPECT_EQ(sound->format, SoundFormat::Mp3);
    EXPECT_EQ(sound->rate, 44100);
    EXPECT_TRUE(sound->sixteenBit && sound->stereo);
    EXPECT_EQ(sound->latencySamples, 100);
    EXPECT_EQ(ByteList(sound->data.begin(), sound->data.end()), (ByteList{1, 2, 3}));
    EXPECT_GE(sound->data.data(), movie->bytes.data());
    EXPECT_LE(sound->data.data() + sound->data.size(), movie->bytes.data() + movie->bytes.size());
}

TEST(Video, GathersItsFramesFromLaterTags)
{
    const auto movie = parsed(sampleMovie());
    const auto* video = definition<VideoStream>(*movie, 25);
    ASSERT_NE(video, nullptr);
    EXPECT_TRUE(video->smoothing);
    EXPECT_EQ(video->codec, 2);
    ASSERT_EQ(video->frames.size(), 1U);
    EXPECT_EQ(video->frames[0].data.size(), 2U);
}

TEST(Button, ReadsRecordsConditionsAndSounds)
{
    const auto movie = parsed(sampleMovie());
    const auto* button = definition<Button>(*movie, 31);
    ASSERT_NE(button, nullptr);
    EXPECT_TRUE(button->trackAsMenu);
    ASSERT_EQ(button->records.size(), 1U);
    EXPECT_EQ(button->records[0].states, 15);
    EXPECT_EQ(button->records[0].filters.size(), 3U);
    EXPECT_EQ(button->records[0].blend, BlendMode::Multiply);
    ASSERT_EQ(button->actions.size(), 2U);
    EXPECT_EQ(button->actions[0].conditions, ButtonAction::OverDownToOverUp);
    EXPECT_EQ(button->actions[0].actions.bytes.size(), 2U);
    EXPECT_EQ(button->actions[1].keyCode, 13);
    EXPECT_EQ(button->sounds[0].soundId, 24);
    EXPECT_EQ(button->sounds[0].info.loops, 3);
    ASSERT_EQ(button->sounds[0].info.envelope.size(), 1U);
    EXPECT_EQ(button->sounds[0].info.envelope[0].right, 6);
}

TEST(Button, OfTheFirstFormActsOnReleaseAndTakesColoursFromALaterTag)
{
    const auto movie = parsed(movieBytes(
        4,
        {tag(7, BodyWriter()
                    .u16(1)
                    .u8(1)
                    .u16(2)
                    .u16(3)
                    .translation(4, 5)
                    .u8(2)
                    .u16(6)
                    .u16(7)
                    .translation(8, 9)
                    .u8(0)
                    .raw({6, 0})),
         tag(23,
             BodyWriter().u16(1).bits(0b01, 2).bits(10, 4).signedBits(128, 10).signedBits(256, 10).signedBits(
                 0, 10))}));
    const auto* button = definition<Button>(*movie, 1);
    ASSERT_NE(button, nullptr);
    ASSERT_EQ(button->records.size(), 2U);
    EXPECT_EQ(button->records[1].matrix.tx, 8);
    EXPECT_EQ(button->records[1].color.redMul, 128);
    ASSERT_EQ(button->actions.size(), 1U);
    EXPECT_EQ(button->actions[0].conditions, ButtonAction::OverDownToOverUp);
    EXPECT_EQ(button->actions[0].actions.bytes.size(), 2U);
}

TEST(PlaceObject, ReadsEveryFieldOfItsThirdForm)
{
    const auto movie = parsed(sampleMovie());
    const PlaceObject* place = nullptr;
    for (const ControlTag& tag : movie->timeline.frames.at(0).tags)
        if (!place) place = std::get_if<PlaceObject>(&tag);
    ASSERT_NE(place, nullptr);
    EXPECT_FALSE(place->move);
    EXPECT_EQ(place->depth, 1);
    EXPECT_EQ(place->characterId, 30);
    EXPECT_EQ(place->matrix->ty, 2);
    EXPECT_TRUE(place->color->isIdentity());
    EXPECT_EQ(place->ratio, 7);
    EXPECT_EQ(place->name, "clip");
    EXPECT_EQ(place->clipDepth, 3);
    EXPECT_EQ(place->blend, BlendMode::Layer);
    EXPECT_EQ(place->cacheAsBitmap, true);
    EXPECT_EQ(place->visible, true);
    EXPECT_EQ(place->opaqueBackground, (Rgba{255, 0, 0, 255}));
    ASSERT_TRUE(place->filters);
    ASSERT_EQ(place->filters->size(), 3U);
    const auto* blur = std::get_if<BlurFilter>(&place->filters->at(0));
    ASSERT_NE(blur, nullptr);
    EXPECT_EQ(blur->blurX, 2);
    EXPECT_EQ(blur->passes, 1);
    const auto* glow = std::get_if<GradientFilter>(&place->filters->at(1));
    ASSERT_NE(glow, nullptr);
    EXPECT_FALSE(glow->bevel || glow->inner);
    EXPECT_TRUE(glow->compositeSource);
    const auto* convolution = std::get_if<ConvolutionFilter>(&place->filters->at(2));
    ASSERT_NE(convolution, nullptr);
    EXPECT_EQ(convolution->matrix, std::vector<double>{1});
    ASSERT_EQ(place->clipActions.size(), 2U);
    EXPECT_EQ(place->clipActions[0].events, kClipLoad);
    EXPECT_EQ(place->clipActions[1].keyCode, 65);
    EXPECT_EQ(place->clipActions[1].actions.bytes.size(), 2U);
}

TEST(PlaceObject, ReadsNarrowEventFlagsBeforeVersion6)
{
    const auto movie = parsed(movieBytes(
        5, {tag(26, BodyWriter().u8(0x80).u16(1).u16(0).u16(kClipKeyUp).u16(kClipKeyUp).u32(1).u8(0).u16(0)),
            kShowFrame}));
    const auto* place = control<PlaceObject>(movie->timeline, 0, 0);
    ASSERT_NE(place, nullptr);
    ASSERT_EQ(place->clipActions.size(), 1U);
    EXPECT_EQ(place->clipActions[0].events, kClipKeyUp);
    EXPECT_EQ(place->clipActions[0].actions.bytes.size(), 1U);
}

TEST(PlaceObject, KeepsWhatPrecedesADamagedField)
{
    const auto movie =
        parsed(movieBytes(8, {tag(70, BodyWriter().u8(0x02).u8(0x03).u16(4).u16(9).u8(1).u8(99)),
                              tag(4, BodyWriter().u16(1).u16(2)), kShowFrame}));
    const auto* place = control<PlaceObject>(movie->timeline, 0, 0);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(place->characterId, 9);
    EXPECT_FALSE(place->blend);
    EXPECT_EQ(movie->warnings.size(), 1U);
    const auto* bare = control<PlaceObject>(movie->timeline, 0, 1);
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(bare->matrix, Matrix{});
    EXPECT_FALSE(bare->color);
}

} // namespace
} // namespace flash::swf
