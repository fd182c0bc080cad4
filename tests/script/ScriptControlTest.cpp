#include "script/ScriptControl.h"

#include "script/vbscript/Random.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace script
{

namespace
{

std::u16string evaluated(ScriptControl& control, std::u16string_view expression)
{
    const auto value = control.eval(expression);
    if (!value) return u"failed";
    const auto text = control.textOf(*value);
    return text ? *text : u"no text";
}

Ref<HostObject> counter(int& calls)
{
    auto object = make<HostObject>(u"Counter");
    object->property(
        u"Total", [&calls]() -> Result<Value> { return Value::longInteger(calls); },
        [&calls](const Value& value) -> Result<void> {
            calls = value.whole();
            return {};
        });
    object->method(u"PlayMedia", [&calls](Arguments) -> Result<Value> {
        ++calls;
        return Value();
    });
    return object;
}

} // namespace

TEST(ScriptControl, ReachesHostMembersWithAndWithoutTheObjectsName)
{
    int calls = 0;
    ScriptControl control;
    const auto player = counter(calls);
    control.addObject(u"Player", *player, true);
    ASSERT_TRUE(control.executeStatement(u"playmedia"));
    ASSERT_TRUE(control.executeStatement(u"Player.PlayMedia"));
    ASSERT_TRUE(control.executeStatement(u"Call PlayMedia()"));
    EXPECT_EQ(calls, 3);
    ASSERT_TRUE(control.executeStatement(u"TOTAL = 40 + 2"));
    EXPECT_EQ(calls, 42);
    EXPECT_EQ(evaluated(control, u"Player.total / 2"), u"21");
    // A procedure of the script comes before a global member.
    ASSERT_TRUE(control.addCode(u"Sub PlayMedia : Player.Total = -1 : End Sub"));
    ASSERT_TRUE(control.executeStatement(u"PlayMedia"));
    EXPECT_EQ(calls, -1);
}

TEST(ScriptControl, HidesMembersOfObjectsAddedWithoutThem)
{
    int calls = 0;
    ScriptControl control;
    const auto element = counter(calls);
    control.addObject(u"btnPlay", *element);
    EXPECT_FALSE(control.executeStatement(u"PlayMedia"));
    EXPECT_EQ(control.error().number, 13);
    EXPECT_TRUE(control.executeStatement(u"btnPlay.PlayMedia"));
    EXPECT_FALSE(control.executeStatement(u"btnPlay.Stop"));
    EXPECT_EQ(control.error().number, 438);
    EXPECT_EQ(control.error().description, u"Object doesn't support this property or method: 'btnPlay.Stop'");
}

TEST(ScriptControl, ReportsWhereAndWhyCodeFails)
{
    ScriptControl control;
    EXPECT_FALSE(control.addCode(u"\r\nSub onLoad\r\n  x =\r\nEnd Sub"));
    EXPECT_EQ(control.error().number, 1002);
    EXPECT_EQ(control.error().line, 3);
    EXPECT_EQ(control.error().column, 6);
    EXPECT_EQ(control.error().text, u"  x =");
    EXPECT_EQ(control.error().source, u"Microsoft VBScript compilation error");
    EXPECT_FALSE(control.executeStatement(u"onLoad"));
    EXPECT_EQ(control.error().number, 13);
    EXPECT_EQ(control.error().line, 1);
    control.error().clear();
    EXPECT_EQ(control.error().number, 0);
}

TEST(ScriptControl, KnowsNothingOfEarlierCodeAfterReset)
{
    int calls = 0;
    ScriptControl control;
    const auto player = counter(calls);
    control.addObject(u"Player", *player, true);
    ASSERT_TRUE(control.addCode(u"x = 5 : Sub onLoad : PlayMedia : End Sub"));
    ASSERT_TRUE(control.run(u"onLoad"));
    control.reset();
    EXPECT_EQ(evaluated(control, u"TypeName(x)"), u"Empty");
    EXPECT_FALSE(control.run(u"onLoad"));
    EXPECT_FALSE(control.executeStatement(u"PlayMedia"));
    EXPECT_EQ(player->references(), 1U);
}

TEST(ScriptControl, SurvivesAResetFromInsideARunningScript)
{
    ScriptControl control;
    const auto player = make<HostObject>(u"Player");
    int later = 0;
    player->method(u"LoadNewSkin", [&](Arguments) -> Result<Value> {
        control.reset();
        control.addObject(u"Player", *player, true);
        static_cast<void>(control.addCode(u"mark = 2 : Function WhoAmI : WhoAmI = \"new\" : End Function"));
        return Value();
    });
    player->method(u"Note", [&](Arguments) -> Result<Value> {
        ++later;
        return Value();
    });
    control.addObject(u"Player", *player, true);
    ASSERT_TRUE(control.addCode(u"Sub Change : LoadNewSkin : Note : End Sub"));
    EXPECT_TRUE(control.executeStatement(u"Change"));
    EXPECT_EQ(later, 1);
    EXPECT_EQ(evaluated(control, u"WhoAmI"), u"new");
}

TEST(ScriptControl, RunsStatementsFromInsideACallOfTheHost)
{
    ScriptControl control;
    const auto player = make<HostObject>(u"Player");
    player->method(u"OpenMedia", [&](Arguments) -> Result<Value> {
        static_cast<void>(control.executeStatement(u"changes = changes + 1"));
        return Value();
    });
    player->method(u"Again", [&](Arguments) -> Result<Value> {
        if (!control.executeStatement(u"Again")) return fault(control.error().number);
        return Value();
    });
    control.addObject(u"Player", *player, true);
    ASSERT_TRUE(control.addCode(u"Dim changes : changes = 0 : OpenMedia : OpenMedia"));
    EXPECT_EQ(evaluated(control, u"changes"), u"2");
    // A host that calls back without end is stopped before the native stack is.
    EXPECT_FALSE(control.executeStatement(u"Again"));
    EXPECT_EQ(control.error().number, 28);
}

// A window has a Left, and so has the language.
TEST(ScriptControl, GivesMembersWhatTheFunctionOfTheirNameCannotTake)
{
    ScriptControl control;
    int left = 30;
    const auto player = make<HostObject>(u"Player");
    player->property(
        u"Left", [&]() -> Result<Value> { return Value::longInteger(left); },
        [&](const Value& value) -> Result<void> {
            left = value.whole();
            return {};
        });
    control.addObject(u"Player", *player, true);
    EXPECT_EQ(evaluated(control, u"Left + 10"), u"40");
    EXPECT_EQ(evaluated(control, u"Left(\"abc\", 1) & Left"), u"a30");
    EXPECT_TRUE(control.executeStatement(u"Left = Left + 5"));
    EXPECT_EQ(left, 35);
    ASSERT_TRUE(control.addCode(
        u"Sub Move : Left = Left * 2 : x = Left(\"abc\", 2) : Left = Left + Len(x) : End Sub"));
    EXPECT_TRUE(control.executeStatement(u"Move"));
    EXPECT_EQ(left, 72);
    // Without such a member the function is meant and complains.
    EXPECT_FALSE(control.executeStatement(u"x = Right"));
    EXPECT_EQ(control.error().number, 450);
    EXPECT_FALSE(control.executeStatement(u"Right = 1"));
    EXPECT_EQ(control.error().number, 501);
    // A variable of the script hides both.
    ASSERT_TRUE(control.executeStatement(u"Dim Left : Left = 1"));
    EXPECT_EQ(left, 72);
}

// What Class_Terminate calls when the engine ends finds the host as it was.
TEST(ScriptControl, ReachesTheHostWhileTheEngineEnds)
{
    auto control = std::make_unique<ScriptControl>();
    std::vector<std::u16string> notes;
    const auto player = make<HostObject>(u"Player");
    player->method(u"Note", [&](Arguments arguments) -> Result<Value> {
        notes.emplace_back(arguments[0].text());
        // The host may turn to the control at this very moment, which has a new engine already.
        if (control) static_cast<void>(control->executeStatement(u"mark = 1"));
        return Value();
    });
    const auto fill = [&] {
        control->addObject(u"Player", *player, true);
        ASSERT_TRUE(control->addCode(
            u"Dim made, late\nClass Loud : Public Other\n"
            u"Private Sub Class_Terminate\n Note TypeName(Player)\n"
            u" If Not made Then made = True : Set late = New Loud\n Player.Note \"end\"\nEnd Sub\nEnd Class\n"
            u"Set a = New Loud : Set a.Other = New RegExp"));
    };
    fill();
    control->reset();
    ASSERT_GE(notes.size(), 2U);
    EXPECT_EQ(notes[0], u"Player");
    EXPECT_EQ(notes[1], u"end");
    EXPECT_EQ(evaluated(*control, u"mark"), u"1");
    EXPECT_EQ(player->references(), 1U);

    notes.clear();
    fill();
    control.reset();
    EXPECT_GE(notes.size(), 2U);
    EXPECT_EQ(player->references(), 1U);
}

TEST(ScriptControl, EndsObjectsThatMakeNewOnesWithoutEnd)
{
    struct ImpatientHost final : Host {
        bool continueAfterTimeout() override { return false; }
    } host;
    ScriptControl control(&host);
    control.setTimeout(std::chrono::milliseconds(20));
    const std::u16string_view code =
        u"Class A : Private Sub Class_Terminate : Set x = New A : Set x = Nothing : End Sub\n"
        u"End Class\nSet late = New A";
    ASSERT_TRUE(control.addCode(code));
    control.reset();
    ASSERT_TRUE(control.addCode(code));
    EXPECT_FALSE(control.executeStatement(u"Set late = Nothing"));
    EXPECT_EQ(evaluated(control, u"1 + 1"), u"2");
}

TEST(ScriptControl, MayBeResetFromWhatAnEndingObjectCalls)
{
    ScriptControl control;
    int calls = 0;
    const auto player = make<HostObject>(u"Player");
    player->method(u"Again", [&](Arguments) -> Result<Value> {
        if (++calls < 5) control.reset();
        return Value::longInteger(calls);
    });
    const auto fill = [&] {
        control.addObject(u"Player", *player, true);
        return control.addCode(u"Class A : Private Sub Class_Terminate : x = Again + Again : End Sub\n"
                               u"End Class\nSub Change : Again : Again : End Sub\nSet o = New A");
    };
    ASSERT_TRUE(fill());
    control.reset();
    EXPECT_EQ(calls, 2);
    ASSERT_TRUE(fill());
    // The running engine ends when its last call returns: Change's two, then those of Class_Terminate.
    EXPECT_TRUE(control.executeStatement(u"Change"));
    EXPECT_EQ(calls, 6);
    EXPECT_EQ(player->references(), 1U);
}

TEST(ScriptControl, CountsWorkOnLongTextsTowardsTheTimeout)
{
    struct ImpatientHost final : Host {
        bool continueAfterTimeout() override { return false; }
    } host;
    ScriptControl control(&host);
    control.setTimeout(std::chrono::milliseconds(20));
    ASSERT_TRUE(control.executeStatement(u"t = String(1000000, \"a\") : n = 0"));
    EXPECT_FALSE(control.executeStatement(u"Do : n = n + 1 : x = InStr(1, t, \"aaab\", 1) : Loop"));
    const auto rounds = control.eval(u"n");
    ASSERT_TRUE(rounds);
    EXPECT_LT(rounds->whole(), 500);
}

TEST(ScriptControl, RefusesOtherLanguages)
{
    ScriptControl control;
    EXPECT_TRUE(control.setLanguage(u"vbSCRIPT"));
    EXPECT_FALSE(control.setLanguage(u"JScript"));
    EXPECT_EQ(control.error().number, 380);
    EXPECT_NE(control.error().description.find(u"JScript"), std::u16string::npos);
}

TEST(ScriptControl, AsksTheHostWhenTheTimeIsUp)
{
    struct AskedHost final : Host {
        int asked = 0;
        bool continueAfterTimeout() override { return ++asked < 2; }
    } host;
    ScriptControl control(&host);
    control.setTimeout(std::chrono::milliseconds(20));
    // Not even a script that ignores errors survives the end of its time.
    EXPECT_FALSE(control.executeStatement(u"On Error Resume Next : Do : Loop"));
    EXPECT_EQ(host.asked, 2);
    EXPECT_EQ(control.error().description, u"Script execution was interrupted");
    EXPECT_EQ(evaluated(control, u"1 + 1"), u"2");
}

TEST(ScriptControl, KeepsStringsAndArraysWithinTheHeapLimit)
{
    ScriptControl control;
    control.setHeapLimit(std::size_t{8} << 20);
    EXPECT_FALSE(control.executeStatement(u"s = \"ab\" : Do : s = s & s : Loop"));
    EXPECT_EQ(control.error().number, 7);
    EXPECT_FALSE(control.executeStatement(u"ReDim a(3000000)"));
    EXPECT_EQ(control.error().number, 7);
    EXPECT_TRUE(control.executeStatement(u"s = \"\" : ReDim a(1000)"));
}

TEST(ScriptControl, LeavesDialogsToTheHost)
{
    struct DialogHost final : Host {
        std::u16string shown;
        int messageBox(const std::u16string& text, int buttons, const std::u16string& title) override
        {
            shown = text + u"|" + title + (buttons == 36 ? u"|?" : u"|");
            return 6;
        }
        std::optional<std::u16string> inputBox(const std::u16string&, const std::u16string&,
                                               const std::u16string& preset) override
        {
            if (preset.empty()) return std::nullopt;
            return preset + u"!";
        }
    } host;
    ScriptControl control(&host);
    EXPECT_EQ(evaluated(control, u"MsgBox(\"Да?\", vbYesNo + vbQuestion, \"T\") = vbYes"), u"True");
    EXPECT_EQ(host.shown, u"Да?|T|?");
    EXPECT_EQ(evaluated(control, u"InputBox(\"a\", , \"x\")"), u"x!");
    EXPECT_EQ(evaluated(control, u"IsEmpty(InputBox(\"a\"))"), u"True");
}

TEST(ScriptControl, PassesValuesInAndOutOfProcedures)
{
    ScriptControl control;
    ASSERT_TRUE(control.addCode(u"Function Twice(v) : v = v * 2 : Twice = v : End Function"));
    const Value arguments[] = {Value::integer(21)};
    const auto result = control.run(u"twice", arguments);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->type(), VarType::Integer);
    EXPECT_EQ(result->whole(), 42);
    EXPECT_FALSE(control.run(u"Twice"));
    EXPECT_EQ(control.error().number, 450);
}

TEST(ScriptControl, LetsAHostKeepAScriptsObjectPastReset)
{
    ScriptControl control;
    ASSERT_TRUE(control.addCode(u"Class A : Public Default Function F : F = 3 : End Function : End Class"));
    auto object = control.eval(u"New A");
    ASSERT_TRUE(object);
    ASSERT_TRUE(object->isObject());
    EXPECT_EQ(*control.textOf(*object), u"3");
    control.reset();
    EXPECT_FALSE(control.textOf(*object));
}

TEST(ScriptControl, HandsVariablesToHostsThatChangeThem)
{
    ScriptControl control;
    const auto host = make<HostObject>(u"Host");
    host->writingMethod(u"Swap", [](std::span<Value> arguments) -> Result<Value> {
        if (arguments.size() != 2) return fault(450);
        std::swap(arguments[0], arguments[1]);
        return Value::boolean(true);
    });
    host->method(u"Same", [](Arguments arguments) -> Result<Value> { return arguments[0]; });
    control.addObject(u"Host", *host, true);
    ASSERT_TRUE(
        control.addCode(u"Dim b(1) : b(0) = \"element\"\n"
                        u"Sub Work(c) : Dim a : a = 1 : Swap a, b(0) : Host.Swap c, a : r = a & b(0) & c\n"
                        u"Swap (a), (c) : r = r & a & c : Same c : End Sub\n"
                        u"r = \"\" : x = 5 : Work x"));
    EXPECT_EQ(evaluated(control, u"r"), u"51element5element");
    EXPECT_EQ(evaluated(control, u"x"), u"element");
}

// What a host may do with an object of a script.
TEST(ScriptControl, ShowsObjectsOfScriptsToHosts)
{
    ScriptControl control;
    ASSERT_TRUE(
        control.addCode(u"Class Item : Public Default Property Get V : V = 5 : End Property : End Class\n"
                        u"Class Box\nPublic Field\nPrivate Secret\n"
                        u"Private Sub Hidden : End Sub\n"
                        u"Public Function Twice(n) : Twice = n * 2 : End Function\n"
                        u"Public Property Set Link(o) : Set Field = o : End Property\nEnd Class\n"
                        u"Set b = New Box"));
    auto held = control.eval(u"b");
    ASSERT_TRUE(held);
    Dispatch& box = *held->asObject();
    using Access = Dispatch::Access;
    EXPECT_FALSE(box.memberId(u"Secret"));
    EXPECT_FALSE(box.memberId(u"Hidden"));
    const auto field = box.memberId(u"FIELD");
    const auto twice = box.memberId(u"Twice");
    const auto link = box.memberId(u"Link");
    ASSERT_TRUE(field && twice && link);
    const Value item[] = {*control.eval(u"New Item")};
    const Value yes[] = {Value::boolean(true)};
    ASSERT_TRUE(box.invoke(*field, Access::Put, item));
    EXPECT_EQ(evaluated(control, u"TypeName(b.Field) & b.Field"), u"Integer5");
    ASSERT_TRUE(box.invoke(*field, Access::PutRef, item));
    EXPECT_EQ(evaluated(control, u"TypeName(b.Field)"), u"Item");
    EXPECT_EQ(box.invoke(*field, Access::PutRef, yes).error()->number, 424);
    EXPECT_EQ(box.invoke(*link, Access::PutRef, yes).error()->number, 424);
    const Value four[] = {Value::integer(4)};
    EXPECT_EQ(box.invoke(*twice, Access::Get, four).error()->number, 438);
    EXPECT_EQ(box.invoke(*twice, Access::GetOrCall, four)->whole(), 8);
}

TEST(ScriptControl, ClearsErrBetweenCalls)
{
    ScriptControl control;
    ASSERT_TRUE(control.executeStatement(u"On Error Resume Next : x = 1 / 0 : seen = Err.Number"));
    EXPECT_EQ(evaluated(control, u"seen & \" \" & Err.Number & Err.Description"), u"11 0");
}

TEST(ScriptControl, NumbersLinesAsTheAuthorsEditorDoes)
{
    ScriptControl control;
    EXPECT_FALSE(control.addCode(u"\r\nx = 1\r\n  y = (", 0));
    EXPECT_EQ(control.error().line, 2);
    EXPECT_EQ(control.error().text, u"  y = (");
    ASSERT_TRUE(control.addCode(u"\r\nSub onClick\r\n x = 1 / 0\r\nEnd Sub", 0));
    EXPECT_FALSE(control.executeStatement(u"onClick"));
    EXPECT_EQ(control.error().line, 2);
    EXPECT_EQ(control.error().column, 2);
}

TEST(ScriptControl, DescribesErrorsInTheLanguageOfTheInterface)
{
    ScriptControl control;
    EXPECT_FALSE(control.setInterfaceLanguage(1036));
    ASSERT_TRUE(control.setInterfaceLanguage(1049));
    EXPECT_FALSE(control.executeStatement(u"Player.Stop"));
    EXPECT_EQ(control.error().description, u"Требуется объект: 'Player'");
    EXPECT_FALSE(control.executeStatement(u"x = (1"));
    EXPECT_EQ(control.error().description, u"Ожидается ')'");
    EXPECT_EQ(evaluated(control, u"1.5 & \"\""), u"1.5"); // numbers are written as before
    control.reset();
    ASSERT_TRUE(control.executeStatement(u"On Error Resume Next : x = 1 / 0 : text = Err.Description"));
    EXPECT_EQ(evaluated(control, u"text"), u"Деление на ноль");
}

TEST(ScriptControl, TakesHtmlCommentsUnlessTheHostDoesNot)
{
    ScriptControl control;
    constexpr std::u16string_view kPage = u"<!--\nx = 1\n-->";
    EXPECT_TRUE(control.addCode(kPage));
    control.setHtmlComments(false);
    control.reset();
    EXPECT_FALSE(control.addCode(kPage));
    EXPECT_EQ(control.error().number, 1032);
}

TEST(Host, AnswersWithTheButtonThatIsOfferedFirst)
{
    ScriptControl control;
    EXPECT_EQ(
        evaluated(control,
                  u"MsgBox(\"?\") & MsgBox(\"?\", vbYesNo) & MsgBox(\"?\", vbYesNo + vbDefaultButton2)"),
        u"167");
    EXPECT_EQ(evaluated(control, u"MsgBox(\"?\", vbYesNoCancel + vbQuestion + vbDefaultButton3) & "
                                 u"MsgBox(\"?\", vbAbortRetryIgnore + vbDefaultButton2)"),
              u"24");
}

TEST(Random, GivesTheSequenceThatScriptsCountOn)
{
    vbscript::Random random;
    EXPECT_FLOAT_EQ(random.next(), 0.7055475F);
    EXPECT_FLOAT_EQ(random.next(), 0.533424F);
    random.restart(-1);
    EXPECT_FLOAT_EQ(random.next(), 0.224007F);
}

// Sizes that skins of the time did not reach, all within seconds even with the sanitizers.
TEST(ScriptLimits, LargeInputsAreFineAndDeepOnesRefused)
{
    ScriptControl control;
    std::u16string lines;
    for (int i = 0; i < 10000; ++i) lines += u"total = total + 1\r\n";
    ASSERT_TRUE(control.addCode(lines));
    EXPECT_EQ(evaluated(control, u"total"), u"10000");

    std::u16string sum = u"1";
    for (int i = 0; i < 20000; ++i) sum += u"+1";
    EXPECT_EQ(evaluated(control, sum), u"20001");

    struct Case {
        const char* name;
        std::u16string text;
    };
    const auto repeated = [](std::u16string_view part, int count) {
        std::u16string text;
        for (int i = 0; i < count; ++i) text += part;
        return text;
    };
    const Case kCases[] = {
        {"parentheses", u"x = " + repeated(u"(", 5000) + u"1" + repeated(u")", 5000)},
        {"signs", u"x = " + repeated(u"- ", 5000) + u"1"},
        {"negations", u"x = " + repeated(u"Not ", 5000) + u"1"},
        {"powers", u"x = " + repeated(u"2^-", 5000) + u"1"},
        {"indexes", u"x = a" + repeated(u"(1)", 5000)},
        {"members", u"x = a" + repeated(u".b", 5000)},
        {"arguments", u"x = " + repeated(u"f(", 5000)},
        {"blocks", repeated(u"If a Then\n", 5000)},
        {"single lines", repeated(u"If a Then ", 5000)},
        {"loops", repeated(u"Do\n", 5000)},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(control.executeStatement(c.text));
        EXPECT_EQ(control.error().number, 1001);
    }
}

} // namespace script
