#include "base/TextCodeGuess.h"

#include "base/TextCode.h"

#include <gtest/gtest.h>

namespace base
{
namespace
{

TEST(TextCodeGuess, TellsCodesByTheTextsOfMovies)
{
    struct Case {
        const char *code, *utf8;
    };
    constexpr Case kCases[] = {
        {"windows-1251", "Загрузка...\nНачать игру\nВаш счёт: 100 очков"},
        {"windows-1251", "Привет"},
        {"koi8-r", "Загрузка...\nНачать игру\nВаш счет: 100 очков"},
        {"windows-1252", "Spiel laden\nLautstärke: größer\nÜber uns, Jürgen"},
        {"windows-1252", "déjà vu, garçon! ¿Qué pasó?"},
        {"shift-jis", "スタート\nもう一度あそぶ\n得点は100です"},
        {"gbk", "开始游戏\n你的得分是\n再玩一次"},
        {"big5", "開始遊戲\n你的得分是\n再玩一次"},
        {"euc-kr", "게임 시작\n다시 하기\n점수는 백점입니다"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.utf8);
        const auto code = TextCode::named(c.code);
        ASSERT_TRUE(code);
        EXPECT_EQ(guessTextCode(code->fromUtf8(c.utf8)), c.code);
    }
    EXPECT_EQ(guessTextCode("Loading...\n_root.score"), "") << "ASCII speaks for none";
    EXPECT_EQ(guessTextCode(""), "");
    for (int byte = 0x80; byte < 0x100; ++byte) {
        // Cut anywhere, nothing is read past the end.
        const std::string text(1, static_cast<char>(byte));
        const std::string_view name = guessTextCode(text);
        EXPECT_TRUE(name.empty() || TextCode::named(name)) << byte;
    }
}

} // namespace
} // namespace base
