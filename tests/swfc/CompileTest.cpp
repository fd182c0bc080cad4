#include "MovieChecker.h"
#include "MovieFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace
{

using test::compile;
using test::Compiled;
using test::MemoryFiles;
using testing::ElementsAre;
using testing::HasSubstr;

Compiled compileScript(const std::string& script, int version = 8)
{
    MemoryFiles files;
    files.files["s.as"] = "// movie: version=\"" + std::to_string(version) + "\"\n" + script;
    return compile(files, "s.as");
}

std::string repeated(const std::string& text, int count)
{
    std::string out;
    for (int i = 0; i < count; ++i) out += text;
    return out;
}

TEST(Compile, AClassAloneIsAMovieInActionScript3)
{
    MemoryFiles files;
    files.files["src/a/b/Main.as"] =
        "\xEF\xBB\xBF/* a */ // b\npackage a.b {\nimport flash.display.Sprite;\n"
        "public class Main extends Sprite { public function Main() { new Other(); } } }";
    files.files["src/a/b/Other.as"] = "package a.b { public class Other {} }";
    files.files["Here.as"] =
        "// movie: width=\"80\"\npackage{ public class Here extends flash.display.Sprite {} }";
    for (const char* path : {"src/a/b/Main.as", "Here.as"}) {
        const Compiled compiled = compile(files, path);
        EXPECT_THAT(compiled.errors, ElementsAre()) << path;
        ASSERT_GT(compiled.movie.size(), 4U) << path;
        EXPECT_EQ(compiled.movie[3], 10) << path;
    }
    // Without a package it is a script of the older language, whatever its names begin with.
    files.files["old.as"] = "packages = 1; /* package {";
    EXPECT_THAT(compile(files, "old.as").errors.size(), 1U);
    files.files["old.as"] = "packages = 1;";
    EXPECT_EQ(compile(files, "old.as").movie[3], 8);
}

TEST(Compile, RefusesHostileScriptsWithAnError)
{
    const struct {
        const char* name;
        std::string script, says;
    } kCases[] = {
        {"parentheses", repeated("(", 500'000), "nested at most 256 deep"},
        {"blocks", repeated("{", 100'000), "nested at most 256 deep"},
        {"functions", repeated("function f() {", 50'000), "nested at most 256 deep"},
        {"array literals", repeated("[", 100'000), "nested at most 256 deep"},
        {"signs", "x = " + repeated("-", 100'001) + "1", "expected"},
        {"negations", "x = " + repeated("!", 100'000) + "1", "nested at most 256 deep"},
        {"assignments", repeated("a=", 100'000) + "1", "nested at most 256 deep"},
        {"new", repeated("new ", 100'000) + "X", "nested at most 256 deep"},
        {"a sum on one line of a megabyte", "x = 1" + repeated("+1", 500'000), "at most 1000 links"},
        {"members", "x = a" + repeated(".a", 500'000), "at most 1000 links"},
        {"calls", "f" + repeated("()", 300'000), "at most 1000 links"},
        {"commas", "1" + repeated(",1", 300'000), "at most 1000 links"},
        {"string without an end", "x = \"" + repeated("a", 1'000'000), "to end this string"},
        {"comment without an end", "/*" + repeated("a", 1'000'000), "to end this comment"},
        {"body beyond 32 KB", "if (x) {" + repeated("trace(y + z);\n", 6000) + "}", "less than 32 KB"},
        {"function beyond 64 KB", "function f() {" + repeated("trace(y + z);\n", 9000) + "}",
         "less than 64 KB"},
        {"string beyond an action", "x = \"" + repeated("a", 70'000) + "\"", "at most 65533 bytes"},
        {"finally copied within finally",
         repeated("for (;;) { try { break; } finally { ", 40) + "x = 1;" + repeated("} }", 40),
         "at most 6 'finally' blocks"},
        {"zero byte", std::string("x = \"a\0b\"", 9), "without zero bytes"},
        {"bytes of no text", "\xFF\xFE\x80\x01", "expected"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Compiled compiled = compileScript(c.script);
        ASSERT_FALSE(compiled.errors.empty());
        EXPECT_THAT(compiled.errors.front(), HasSubstr(c.says));
        EXPECT_TRUE(compiled.movie.empty());
    }
}

TEST(Compile, AcceptsLongPlainSources)
{
    const std::pair<const char*, std::string> kCases[] = {
        {"a row of else-ifs", "if (a) b;" + repeated(" else if (a == 1) b = 2;", 600)},
        {"a line of a megabyte", repeated("a=1;", 250'000)},
        {"many strings",
         [] {
             std::string script;
             for (int i = 0; i < 3000; ++i)
                 script += "x = ['text " + std::to_string(i) + "', 'text " + std::to_string(i) + "'];\n";
             return script;
         }()},
        {"arguments", "f(0" + repeated(",1", 5000) + ");"},
    };
    for (const auto& [name, script] : kCases) {
        SCOPED_TRACE(name);
        const Compiled compiled = compileScript(script);
        EXPECT_THAT(compiled.errors, ElementsAre());
        EXPECT_THAT(checkMovie(compiled.movie), ElementsAre());
    }
}

TEST(Compile, TakesLessThanASecondForFiveThousandLines)
{
    std::string script;
    for (int i = 0; i < 500; ++i) {
        const std::string n = std::to_string(i);
        script += "function f" + n +
                  "(a, b) {\n  var sum = 0;\n  for (var i = 0; i < a.length; i++) {\n"
                  "    sum += a[i] * b - (i % 3 == 0 ? 1 : 2);\n    if (sum > 100) { break; }\n  }\n"
                  "  var o = {x: sum, y: [1, 2, sum]};\n  return o.x + o.y[2];\n}\n"
                  "trace(\"value \" + f" +
                  n + "([1, 2, 3], " + n + "));\n";
    }
    const auto start = std::chrono::steady_clock::now();
    const Compiled compiled = compileScript(script);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_THAT(compiled.errors, ElementsAre());
    EXPECT_LT(took.count(), 1.0);
}

TEST(Compile, RefusesFilesThatIncludeThemselves)
{
    MemoryFiles files;
    files.files["a.xml"] = "<movie><include href=\"b.xml\"/></movie>";
    files.files["b.xml"] = "<parts><include href=\"c.xml\"/></parts>";
    files.files["c.xml"] = "<parts>\n<include href=\"b.xml\"/></parts>";
    EXPECT_THAT(compile(files, "a.xml").errors, ElementsAre(HasSubstr("c.xml:2:")));
    files.files["a.as"] = "#include \"b.as\"";
    files.files["b.as"] = "\n#include \"a.as\"";
    EXPECT_THAT(compile(files, "a.as").errors, ElementsAre(HasSubstr("b.as:2:")));
    // Two inclusions in each of sixteen levels would be 65536.
    for (int i = 0; i < 16; ++i) {
        const std::string next = "<include href=\"p" + std::to_string(i + 1) + ".xml\"/>";
        files.files["p" + std::to_string(i) + ".xml"] = "<parts>" + next + next + "</parts>";
    }
    files.files["p16.xml"] = "<parts/>";
    files.files["bomb.xml"] = "<movie><include href=\"p0.xml\"/></movie>";
    EXPECT_THAT(compile(files, "bomb.xml").errors.front(), HasSubstr("256 inclusions"));
    std::string chain = "class C0 {}";
    for (int i = 0; i < 40; ++i) {
        const std::string n = std::to_string(i), m = std::to_string(i + 1);
        files.files["d/C" + n + ".as"] = "import d.C" + m + "; class d.C" + n + " {}";
    }
    files.files["chain.as"] = "import d.C0;";
    EXPECT_THAT(compile(files, "chain.as").errors.front(), HasSubstr("32 nested imports"));
}

TEST(Compile, RefusesHostileDescriptions)
{
    const std::pair<const char*, std::string> kCases[] = {
        {"entities", "<!DOCTYPE m [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;\">]><movie>&b;</movie>"},
        {"an entity of the file system",
         "<!DOCTYPE m [<!ENTITY a SYSTEM \"/etc/passwd\">]><movie>&a;</movie>"},
        {"deep elements", repeated("<movie>", 100'000)},
        {"no root", ""},
        {"another root", "<svg/>"},
        {"cut", "<movie><frame>"},
        {"bytes", std::string("\0\1\2", 3)},
        {"huge path number", "<movie><shape id=\"s\"><path d=\"M1e999 0\"/></shape></movie>"},
        {"no rate", "<movie rate=\"0\"/>"},
        {"no size", "<movie width=\"-1\"/>"},
        {"too many frames", "<movie><frame duration=\"16000\"/><frame/></movie>"},
        {"compressed before version 6", "<movie version=\"5\" compressed=\"yes\"/>"},
    };
    for (const auto& [name, xml] : kCases) {
        SCOPED_TRACE(name);
        MemoryFiles files;
        files.files["m.xml"] = xml;
        const Compiled compiled = compile(files, "m.xml");
        ASSERT_FALSE(compiled.errors.empty());
        EXPECT_THAT(compiled.errors.front(), HasSubstr("m.xml:"));
    }
}

// Every cut of a good description must be refused or compiled; neither may end the process.
TEST(Compile, SurvivesCutSources)
{
    const std::string good =
        "<movie version=\"8\"><gradient id=\"g\"><stop offset=\"0\" color=\"#fff\"/></gradient>"
        "<shape id=\"s\"><path d=\"M0 0a5 5 0 0 1 5 5z\" fill=\"g\" stroke=\"#123456\"/></shape>"
        "<button id=\"b\"><state id=\"s\"/><script>on (release, keyPress \"a\") { play(); }</script></button>"
        "<frame><place id=\"b\" name=\"n\"><blur/></place><script>for (var i in [1]) { trace('x'); "
        "}</script></frame></movie>";
    for (std::size_t length = 0; length <= good.size(); ++length) {
        MemoryFiles files;
        files.files["m.xml"] = good.substr(0, length);
        const Compiled compiled = compile(files, "m.xml");
        EXPECT_EQ(compiled.movie.empty(), length != good.size()) << length;
    }
    const std::string script = "class A extends B { var x:Number = 1; function get y() { return x; } }\n"
                               "try { a.b[c]++; } catch (e:T) { throw e; } finally { delete a; }\n"
                               "l: for (;;) { switch (x) { case 1: break l; default: continue l; } }";
    for (std::size_t length = 0; length <= script.size(); ++length) compileScript(script.substr(0, length));
}

TEST(Compile, NamesPlaceAndNeedInEachError)
{
    const struct {
        const char *script, *error;
        int version;
    } kCases[] = {
        {"x = ;", "s.as:2:5: expected an expression, found ';'", 8},
        {"if (x { }", "s.as:2:7: expected ')' after the expression of 'if', found '{'", 8},
        {"trace('a' 'b')", "s.as:2:11: expected ')' after arguments, found string \"b\"", 8},
        {"\n\n  break;", "s.as:4:3: expected a loop around 'break'", 8},
        {"continue there;", "s.as:2:1: expected a statement with the label 'there' around 'continue'", 8},
        {"return 5;", "s.as:2:1: expected a function around 'return'", 8},
        {"5 = x;", "s.as:2:3: expected a variable or member before the assignment sign, found '='", 8},
        {"try { } catch (e) { }", "s.as:2:1: expected version 7 or later for 'try', found version 6", 6},
        {"a === b;", "s.as:2:3: expected version 6 or later for '===', found version 5", 5},
        {"function f() {}", "s.as:2:1: expected version 5 or later for functions, found version 4", 4},
        {"random(1, 2);", "s.as:2:7: expected 1 argument to 'random', found 2", 8},
        {"#include \"none.as\"", "s.as:2:1: expected a readable file 'none.as': no such file", 8},
        {"class A { oops }", "s.as:2:11: expected 'function' or 'var' in a class, found 'oops'", 8},
        {"x = 'Ѫ';", "s.as:2:5: expected characters of windows-1251 before version 6", 5},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.script);
        EXPECT_THAT(compileScript(c.script, c.version).errors, ElementsAre(c.error));
    }
    // An error does not hide the next one.
    EXPECT_EQ(compileScript("x = ;\ny = 1;\nz = );\n").errors.size(), 2U);
}

/// A picture gives the very shape that one would write by hand, wherever its attributes stand.
TEST(Compile, TakesShapesFromPictures)
{
    MemoryFiles files;
    files.files["icons/sign.svg"] = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24" fill="none"
        stroke="#000" stroke-width="2" stroke-linejoin="round">
      <path d="M4 4h9" stroke-linecap="round"/><path d="M1 1h3v3z"/><g fill="#123" stroke="none"><circle cx="12" cy="17" r="1.3"/></g>
      <rect x="3" y="5" width="18" height="14" rx="2" stroke-width="3"/></svg>)";
    files.files["picture.xml"] =
        R"(<movie version="7"><shape id="a" svg="icons/sign.svg" color="#EEEEFF"/></movie>)";
    files.files["hand.xml"] = R"(<movie version="7"><shape id="a">
      <path d="M4 4h9" stroke="#EEEEFF" strokeWidth="2"/><path d="M1 1h3v3z" stroke="#EEEEFF" strokeWidth="2"/><circle cx="12" cy="17" r="1.3" fill="#EEEEFF"/>
      <rect x="3" y="5" width="18" height="14" radius="2" stroke="#EEEEFF" strokeWidth="3"/></shape></movie>)";
    const Compiled picture = compile(files, "picture.xml"), hand = compile(files, "hand.xml");
    EXPECT_THAT(picture.errors, testing::IsEmpty());
    EXPECT_THAT(hand.errors, testing::IsEmpty());
    EXPECT_EQ(picture.movie, hand.movie);

    files.files["icons/sign.svg"] = "<svg>\n<text>A</text></svg>";
    EXPECT_THAT(compile(files, "picture.xml").errors,
                ElementsAre(HasSubstr("icons/sign.svg:2:6: expected <path>")));
    files.files["icons/sign.svg"] = "<html/>";
    EXPECT_THAT(compile(files, "picture.xml").errors, ElementsAre(HasSubstr("expected <svg>")));
    files.files.erase("icons/sign.svg");
    EXPECT_THAT(compile(files, "picture.xml").errors, ElementsAre(HasSubstr("expected a readable file")));
}

} // namespace
