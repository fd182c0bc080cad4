#include "MovieFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What a maker of movies has written wrongly in ActionScript 3 is told with its place, once, and makes no
// movie.
namespace
{

using test::compile;
using test::MemoryFiles;
using testing::ElementsAre;

TEST(ActionScript3Errors, NamePlaceAndNeed)
{
    const struct {
        const char *name, *script, *error;
    } kCases[] = {
        // clang-format off
        {"a statement without its end", "var x:int = 5\nvar y:int = = 6;",
         "3:13: expected an expression, found '='"},
        {"an unclosed block", "function f():void {\n  if (true) {\n}",
         "5:1: expected '}' after the body of a function, found end of script"},
        {"an unclosed text", "var s:String = \"abc\n;",
         "2:16: expected a quotation mark to end this text, found the end of the line"},
        {"an unclosed comment", "var a:int;\n/* begun",
         "3:1: expected '*/' to end this comment, found end of script"},
        {"a class in a function", "function f():void { class A {} }",
         "2:21: expected a statement, found 'class'"},
        {"a name twice", "class A { var a:int; function a():void {} }",
         "2:31: expected a new member, found 'a' a second time"},
        {"an unknown type", "var x:Missing;",
         "2:7: expected a class that is known, found 'Missing'"},
        {"an unknown base", "class A extends Nothing {}",
         "2:17: expected a class that is known, found 'Nothing'"},
        {"a base that is an interface", "interface I {} class A extends I {}",
         "2:32: expected a class to extend, found the interface 'I'"},
        {"a base that is final", "final class A {} class B extends A {}",
         "2:34: expected a class to extend that is not final, found 'A'"},
        {"an interface that is a class", "class B {} class A implements B {}",
         "2:31: expected an interface, found the class 'B'"},
        {"itself as base", "class A extends A {}",
         "2:7: expected a class that does not extend itself, found 'A'"},
        {"an override of nothing", "class A { override public function f():void {} }",
         "2:36: expected a function of the base class to override, found 'f'"},
        {"an override of what is final",
         "class A { final public function f():void {} }\nclass B extends A { override public function f():void {} }",
         "3:46: expected a function to override that is not final, found 'f'"},
        {"an override with another parameter",
         "class A { public function f(a:int):void {} }\nclass B extends A { override public function f(a:Number):void {} }",
         "3:46: expected the parameters and the result of what is overridden, found 'f' with others"},
        {"an override with another default",
         "class A { public function f(a:int):void {} }\nclass B extends A { override public function f(a:int = 1):void {} }",
         "3:46: expected the parameters and the result of what is overridden, found 'f' with others"},
        {"an override with another result",
         "class A { public function f():int { return 1; } }\nclass B extends A { override public function f():String { return ''; } }",
         "3:46: expected the parameters and the result of what is overridden, found 'f' with others"},
        {"a getter over a function",
         "class A { public function f():int { return 1; } }\nclass B extends A { override public function get f():int { return 1; } }",
         "3:50: expected a function of the same kind to override, found 'f'"},
        {"a value from nothing", "function f():void { return 5; }",
         "2:28: expected no value from a function whose result is void"},
        {"a missing override", "class A { public function f():void {} } class B extends A { public function f():void {} }",
         "2:77: expected 'override' before a function that the base class has, found 'f'"},
        {"what an interface wants", "interface I { function f():void; }\nclass A implements I {}",
         "3:7: expected 'f' of the interface 'I'"},
        {"a body in an interface", "interface I { function f():void {} }",
         "2:24: expected no body in an interface"},
        {"no body in a class", "class A { function f():void; }",
         "2:20: expected a body of the function"},
        {"break outside", "break;",
         "2:1: expected a loop or switch around 'break'"},
        {"continue outside", "function f():void { continue; }",
         "2:21: expected a loop around 'continue'"},
        {"a label that is not there", "for (;;) { break out; }",
         "2:12: expected a label around this statement, found 'out'"},
        {"two defaults", "switch (1) { default: break; default: break; }",
         "2:37: expected one default in a switch, found ':'"},
        {"a case outside", "case 1: trace(1);",
         "2:1: expected an expression, found 'case'"},
        {"try alone", "try { trace(1); }",
         "3:1: expected 'catch' or 'finally', found end of script"},
        {"catch without a name", "try { } catch { }",
         "2:15: expected '(' after catch, found '{'"},
        {"return outside", "return 1;",
         "2:1: expected 'return' within a function"},
        {"a constant counted up", "function f():void { const a:int = 1; a++; }",
         "2:38: expected a variable, found the constant 'a'"},
        {"a value assigned to", "1 = 2;",
         "2:3: expected a variable or member before the assignment sign, found '='"},
        {"a call assigned to", "trace(1) = 2;",
         "2:10: expected a variable or member before the assignment sign, found '='"},
        {"new of an interface", "interface I {} new I();",
         "2:16: expected a class to make an object of, found the interface 'I'"},
        {"a default of what must be there", "function f(a:int = 1, b:int):void {}",
         "2:28: expected a value for every parameter after one that has one, found ')'"},
        {"something after the rest", "function f(...all, b:int):void {}",
         "2:18: expected ')' after the parameters, found ','"},
        {"two modifiers", "class A { public private var a:int; }",
         "2:18: expected one namespace before a declaration, found 'private'"},
        {"a setter without", "class A { function set a():void {} }",
         "2:24: expected one parameter of a setter"},
        {"an unknown import", "import no.such.Thing;",
         "2:1: expected a class that is known, found 'no.such.Thing'"},
        {"an import of nothing", "import ;",
         "2:8: expected the name of a class, found ';'"},
        {"a package in a package", "package a { package b {} }",
         "2:13: expected a statement, found 'package'"},
        {"a hexadecimal without digits", "var x:int = 0x;",
         "2:15: expected a hexadecimal digit after 0x"},
        {"an object without a colon", "var o:Object = {a 1};",
         "2:19: expected ':' after the name, found number 1"},
        {"a list without its end", "var a:Array = [1, 2;",
         "2:20: expected ',' between elements, found ';'"},
        {"arguments without a comma", "trace(1 2);",
         "2:9: expected ')' after the arguments, found number 2"},
        {"a conditional without its second half", "var x:int = true ? 1;",
         "2:21: expected ':' between the two values of a condition, found ';'"},
        {"an expression that ends", "var x:int = 5 + ;",
         "2:17: expected an expression, found ';'"},
        {"for without its parts", "for (var i:int = 0; i < 5) {}",
         "2:26: expected ';' after the condition of 'for', found ')'"},
        {"for each of nothing", "for each (var x:int) {}",
         "2:20: expected 'in', found ')'"},
        {"while without a condition", "while () {}",
         "2:8: expected an expression, found ')'"},
        {"do without while", "do { } trace(1);",
         "2:8: expected 'while' after the body of 'do', found 'trace'"},
        {"with without an object", "with { }",
         "2:6: expected '(' after with, found '{'"},
        {"an element without its end", "var x:XML = <a><b></a>;",
         "2:13: expected an end tag for this element, found end of script"},
        {"a vector of nothing", "var v:Vector.<> = null;",
         "2:15: expected a type, found '>'"},
        {"use of what is no namespace", "use namespace missing;",
         "2:1: expected a namespace that is known, found 'missing'"},
        {"a definition twice", "class A {}\nclass A {}",
         "3:1: expected a new name, found 'A' a second time"},
        {"an interface with a variable", "interface I { var a:int; }",
         "2:15: expected functions only in an interface"},
        {"a word of the language as a name", "var class:int = 1;",
         "2:5: expected the name of a variable, found 'class'"},
        {"an accessor twice", "class A { function get a():int { return 1; } function get a():int { return 2; } }",
         "2:59: expected a new member, found 'a' a second time"},
        // clang-format on
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        MemoryFiles files;
        files.files["s.as"] = std::string("// movie: version=\"10\"\n") + c.script + "\n";
        const auto compiled = compile(files, "s.as");
        EXPECT_THAT(compiled.errors, ElementsAre(std::string("s.as:") + c.error));
        EXPECT_TRUE(compiled.movie.empty());
    }
}

TEST(ActionScript3Errors, AreTheSameOnAnyLine)
{
    for (const int lines : {0, 1, 500}) {
        MemoryFiles files;
        std::string script = "// movie: version=\"10\"\n";
        for (int i = 0; i < lines; ++i)
            script += i % 3 == 0 ? "// words\r\n" : i % 3 == 1 ? "/* more\n */ " : "\n";
        const auto line = 1 + std::count(script.begin(), script.end(), '\n');
        const auto column = script.size() - script.rfind('\n') + 8;
        files.files["s.as"] = script + "var x = ;";
        EXPECT_THAT(compile(files, "s.as").errors,
                    ElementsAre("s.as:" + std::to_string(line) + ":" + std::to_string(column) +
                                ": expected an expression, found ';'"));
    }
}

TEST(ActionScript3Errors, AreToldOfTheFileThatHasThem)
{
    MemoryFiles files;
    files.files["Main.as"] = "package {\nimport flash.display.Sprite;\n"
                             "public class Main extends Sprite { public function Main() { new Other(); } } }";
    files.files["Other.as"] = "package {\npublic class Other {\n  var a:int = (1;\n} }";
    EXPECT_THAT(compile(files, "Main.as").errors,
                ElementsAre("Other.as:3:17: expected ')' after the expression, found ';'"));
}

// Cut anywhere, a good script compiles or has errors; the compiler stays up, and one error is not told twice.
TEST(ActionScript3Errors, SurviveCutsAndOddCharacters)
{
    const std::string good =
        "// movie: version=\"10\"\n"
        "namespace own = \"a\"; interface I { function get n():int; }\n"
        "class A implements I { own var x:*; public static const K:Vector.<int> = new <int>[1, 2];\n"
        "  public function get n():int { return own::x ? K[0] : -1; } }\n"
        "function f(a:int = 1, ...rest):String { try { switch (a) { case 1: return `; default: throw a; } }\n"
        "  catch (e:Error) { for each (var y:XML in <a b={a}>{f}</a>..@*) delete y[0]; } finally { a++; } "
        "return null; }\n"
        "label: for (var i:int = 0; i < 3; i++) { with (this) if (/[x\\/]+/gi.test(\"x\")) continue label; "
        "else break; }\n"
        "var o:Object = {a: 1, \"b\": [1, , 2], 3: function():void {}}; o.a >>>= 2; o.b ||= typeof o is A;\n";
    for (std::size_t length = 0; length <= good.size(); ++length) {
        MemoryFiles files;
        files.files["s.as"] = good.substr(0, length);
        compile(files, "s.as");
        for (const char odd : {'\0', '\xFF', '{', '"', '<'}) {
            files.files["s.as"] = good;
            files.files["s.as"].insert(length, 1, odd);
            const auto compiled = compile(files, "s.as");
            EXPECT_EQ(compiled.errors.empty(), !compiled.movie.empty()) << length << " " << odd;
        }
    }
}

} // namespace
