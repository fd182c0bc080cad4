#include "Tools.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A script's time ends in the midst of whatever it does at that moment: nobody can catch it, nothing behind
// it is done, and who runs the movie gets an answer.
namespace
{

using namespace tools;

constexpr qint64 kPatienceMs = 20'000; // for a limit of one second

void expectEnd(const QString& name, const QString& classes, const QString& loop)
{
    SCOPED_TRACE(name.toStdString());
    QTemporaryDir folder;
    const auto write = [&](const QString& file, const QString& text) {
        QFile out(folder.filePath(file));
        ASSERT_TRUE(out.open(QFile::WriteOnly));
        out.write(text.toUtf8());
    };
    write("Main.as", "package { import flash.display.*; import flash.utils.*; import flash.events.*;\n"
                     "public class Main extends MovieClip { public function Main() {\n"
                     "  var list:Vector.<int> = new <int>[1, 2, 3], any:Array = [1, '2', 3], i:int, n:int, "
                     "sum:Number = 0;\n"
                     "  trace('before');\n"
                     "  try { " +
                         loop +
                         " } catch (e:Error) { trace('caught', e); } finally { trace('finally'); }\n"
                         "  trace('behind', n, sum); } } }\n" +
                         classes);
    write(
        "movie.xml",
        "<movie version=\"10\" width=\"100\" height=\"100\" rate=\"20\" actionscript=\"3\" document=\"Main\">"
        "<scriptLimits recursion=\"200\" timeout=\"1\"/><actionscript file=\"Main.as\"/><frame/></movie>");
    const QString movie = folder.filePath("movie.swf");
    const Outcome compiled = run(tool("swfc"), {folder.filePath("movie.xml"), "-o", movie}, folder.path());
    ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
    QElapsedTimer clock;
    clock.start();
    const Outcome played = run(tool("flashrun"), {"trace", movie, "--frames", "3"}, folder.path());
    EXPECT_LT(clock.elapsed(), kPatienceMs);
    EXPECT_EQ(played.status, 0) << played.err.toStdString();
    EXPECT_EQ(played.out.toStdString(), "before\n");
}

TEST(ScriptLimits, EndLoopsOfTheMachineItself)
{
    expectEnd("steps", {}, "for (i = 0; i < 10; i &= 1) i++;");
    expectEnd("sums of elements", {}, "for (i = 0; ; i = (i + 1) % 3) n += list[i];");
    expectEnd("sums of anything", {}, "for (i = 0; ; i = (i + 1) % 3) n = n + any[i];");
    expectEnd("members",
              "class Node { public var n:int; public function get step():int { return 1; }\n"
              "  public function grow():void { n += step; } }",
              "var node:Node = new Node(); for (;;) { node.grow(); node.n++; }");
    expectEnd("exceptions", {}, "for (;;) try { throw 1; } catch (e:int) { n++; } finally { sum = 1; }");
    expectEnd("empty names", {}, "for (;;) for (var name:String in any) if (name == 'x') break;");
}

TEST(ScriptLimits, EndWhatNativesDo)
{
    expectEnd("sorting", {}, "for (;;) any.sort(function(a:*, b:*):int { return 1; });");
    expectEnd("a comparison that does not end", {},
              "any.sort(function(a:*, b:*):int { for (;;) n++; return 0; });");
    expectEnd(
        "texts", {},
        "var text:String = ''; for (;;) { text = text.substr(0, 100) + 'ab'; text.split('a').join('b'); }");
    expectEnd("a pattern", {}, "for (;;) 'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa!'.replace(/(a+)+$/, '');");
    expectEnd("conversions", {}, "for (;;) n = int({valueOf: function():int { for (;;) n++; return 1; }});");
    expectEnd("listeners", {},
              "var d:EventDispatcher = new EventDispatcher(); d.addEventListener('a', function(e:Event):void "
              "{ n++; });"
              "for (;;) d.dispatchEvent(new Event('a'));");
}

} // namespace
