// Numbers and places of compilation errors, many at a time. The texts stand in the folder syntax.

#include "script/ScriptControl.h"

#include <gtest/gtest.h>

namespace script
{

TEST(CompilationErrors, NameWhatIsMissingAndWhere)
{
    struct Case {
        std::u16string_view code;
        int number;
        int line;
        int column;
    };
    const Case kCases[] = {
        {u"x = 1 +", 1002, 1, 8},
        {u"Select Case", 1002, 1, 12},
        {u"If Then", 1002, 1, 4},
        {u"x = (1 + 2", 1006, 1, 11},
        {u"[name = 1", 1007, 1, 10},
        {u"Dim 5", 1010, 1, 5},
        {u"Sub\nEnd Sub", 1010, 1, 4},
        {u"Const a", 1011, 1, 8},
        {u"For i 1 To 2", 1011, 1, 7},
        {u"For i = 1", 1013, 1, 10},
        {u"Sub P\nx = 1", 1014, 2, 6},
        {u"Function F\nEnd Sub", 1015, 2, 5},
        {u"Sub P\nEnd Function", 1016, 2, 5},
        {u"If x = 1 y = 2", 1017, 1, 10},
        {u"While x\n", 1018, 2, 1},
        {u"Do\nx = 1\n", 1019, 3, 1},
        {u"For i = 1 To 2\n", 1020, 2, 1},
        {u"Select x", 1021, 1, 8},
        {u"Select Case x\nEnd If", 1022, 2, 5},
        {u"x = 1 2", 1025, 1, 7},
        {u"Dim a(b)", 1026, 1, 7},
        {u"Do Forever\nLoop", 1028, 1, 4},
        {u"With x\nEnd If", 1029, 2, 5},
        {u"x = 1 ? 2", 1032, 1, 7},
        {u"x = \"open", 1033, 1, 10},
        {u"Loop", 1038, 1, 1},
        {u"Exit Sub", 1039, 1, 6},
        {u"For a.b = 1 To 2 : Next", 1040, 1, 6},
        {u"Dim a, A", 1041, 1, 8},
        {u"F(1, 2)", 1044, 1, 8},
        {u"Const c = f(1)", 1045, 1, 11},
        {u"For Each x Of y", 1046, 1, 12},
        {u"Class C\nEnd Sub", 1047, 2, 5},
        {u"Property Get P\nEnd Property", 1048, 1, 1},
        {u"Class C\nProperty P\nEnd Property\nEnd Class", 1049, 2, 10},
        {u"Class C\nProperty Get P\nEnd Sub\nEnd Class", 1050, 3, 5},
        {u"Class C\nProperty Let P\nEnd Property\nEnd Class", 1054, 2, 15},
        {u"Next", 1055, 1, 1},
        {u"x = 1\n End Sub", 1024, 2, 2},
        {u"Wend", 1024, 1, 1},
        {u"x = 1 : ElseIf x Then", 1024, 1, 9},
        {u"(x) = 1", 1024, 1, 1},
        {u"x = 1\nOption Explicit", 1024, 2, 1},
        {u"Set Me = x", 1037, 1, 5},
        {u" Me = 1", 1037, 1, 2},
        {u"Dim a\nClass A\nEnd Class", 1041, 2, 7},
        {u"Sub a\nEnd Sub\nx = 1\nConst A = 1", 1041, 4, 7},
        {u"Const A = 1\nPublic Sub a\nEnd Sub", 1041, 2, 12},
        {u"Class C\nDim x\nPublic Property Get X\nEnd Property\nEnd Class", 1041, 3, 21},
        {u"Sub P(a)\nDim A\nEnd Sub", 1041, 2, 5},
        {u"Sub P(a, _\n  A)\nEnd Sub", 1041, 2, 3},
        {u"Class C\nProperty Get P(a)\nEnd Property\nProperty Let P(v)\nEnd Property\nEnd Class", 1051, 4,
         14},
        {u"Class C\nPublic Default Sub P\nEnd Sub\nPublic Default Sub Q\nEnd Sub\nEnd Class", 1052, 4, 20},
        {u"Class C\nSub Class_Terminate(a)\nEnd Sub\nEnd Class", 1053, 2, 5},
        {u"Class C\nPublic Default x\nEnd Class", 1056, 2, 16},
        {u"Class C\nDefault Sub P\nEnd Sub\nEnd Class", 1057, 2, 1},
        {u"Class C\nPublic Default Property Set P(v)\nEnd Property\nEnd Class", 1058, 2, 25},
        // The same in other places: words that are missing at the end of the line stand where it ends, those
        // that are in the way where they begin, of two definitions it is the later one.
        {u"x = 1 + ' note", 1002, 1, 15},
        {u"x = (", 1002, 1, 6},
        {u"x = a(1,", 1002, 1, 9},
        {u"If x Then\nElseIf\nEnd If", 1002, 2, 7},
        {u"For i = To 2", 1002, 1, 9},
        {u"For i = 1 To 2 Step\nNext", 1002, 1, 20},
        {u"ReDim a", 1005, 1, 8},
        {u"x = a(1, 2", 1006, 1, 11},
        {u"F(1)(2", 1006, 1, 7},
        {u"Sub P(a\nEnd Sub", 1006, 1, 8},
        {u"Sub P(Optional a)\nEnd Sub", 1006, 1, 16},
        {u"Sub P(a As String)\nEnd Sub", 1006, 1, 9},
        {u"Dim a(1", 1006, 1, 8},
        {u"x = [a", 1007, 1, 7},
        {u"For = 1 To 2", 1010, 1, 5},
        {u"For 1 = 1 To 2", 1010, 1, 5},
        {u"For Each In x", 1010, 1, 10},
        {u"Sub", 1010, 1, 4},
        {u"Sub 1", 1010, 1, 5},
        {u"Sub P(\nEnd Sub", 1010, 1, 7},
        {u"For i", 1011, 1, 6},
        {u"Const a(1) = 2", 1011, 1, 8},
        {u"Set x", 1011, 1, 6},
        {u"Set x 1", 1011, 1, 7},
        {u"Let x", 1011, 1, 6},
        {u"If x Then\ny = 1\nEnd", 1012, 3, 4},
        {u"If x Then\ny = 1\nEnd Sub", 1012, 3, 5},
        {u"For i = 1\nNext", 1013, 1, 10},
        {u"If x Then\ny = 1", 1014, 2, 6},
        {u"If x Then\nElse\nElse\nEnd If", 1014, 3, 1},
        {u"If x Then\nElse\nElseIf y Then\nEnd If", 1014, 3, 1},
        {u"With x\n.a = 1", 1014, 2, 7},
        {u"Select Case x\nx = 1\nEnd Select", 1014, 2, 1},
        {u"Select Case x\nCase 1\n", 1014, 3, 1},
        {u"Sub P()\nEnd", 1016, 2, 4},
        {u"Sub P()\nEnd If", 1016, 2, 5},
        {u"If x\ny = 1\nEnd If", 1017, 1, 5},
        {u"If x Then\nElseIf y\nEnd If", 1017, 2, 9},
        {u"While x\nLoop", 1018, 2, 1},
        {u"While x\nEnd While", 1018, 2, 1},
        {u"Do Until x", 1019, 1, 11},
        {u"Do\nNext", 1019, 2, 1},
        {u"For i = 1 To 2\nLoop", 1020, 2, 1},
        {u"On Error Resume", 1020, 1, 16},
        {u"Select", 1021, 1, 7},
        {u"Select Case x\nCase 1\nEnd", 1022, 3, 4},
        {u"Else", 1024, 1, 1},
        {u"End If", 1024, 1, 1},
        {u"ElseIf x Then", 1024, 1, 1},
        {u"Case 1", 1024, 1, 1},
        {u"Nothing = 1", 1024, 1, 1},
        {u"1 = x", 1024, 1, 1},
        {u"F 1 2", 1025, 1, 5},
        {u"For i = 1 To 2\nNext i", 1025, 2, 6},
        {u"For i = 1 To 2 x", 1025, 1, 16},
        {u"Do While x\nLoop While y", 1025, 2, 6},
        {u"Dim a As Integer", 1025, 1, 7},
        {u"Dim a b", 1025, 1, 7},
        {u"Dim a(", 1026, 1, 7},
        {u"Dim a(-1)", 1026, 1, 7},
        {u"Dim a(1.5)", 1026, 1, 7},
        {u"Dim a(1,)", 1026, 1, 9},
        {u"Do\nLoop x", 1028, 2, 6},
        {u"Do x\nLoop", 1028, 1, 4},
        {u"With x\n.a = 1\nEnd", 1029, 3, 4},
        {u"x = &hFFFFFFFFF", 1031, 1, 5},
        {u"x = 1e999", 1031, 1, 5},
        {u"x = ]", 1032, 1, 5},
        {u"x = @", 1032, 1, 5},
        {u"x = 1 _ 2", 1032, 1, 7},
        {u"x = \"a", 1033, 1, 7},
        {u"F \"a\", \"b", 1033, 1, 10},
        {u"Me = 1", 1037, 1, 1},
        {u"Exit", 1039, 1, 5},
        {u"Exit For", 1039, 1, 6},
        {u"Exit Do", 1039, 1, 6},
        {u"Exit Function", 1039, 1, 6},
        {u"Sub P\nExit Function\nEnd Sub", 1039, 2, 6},
        {u"Exit Property", 1039, 1, 6},
        {u"For a(1) = 1 To 2\nNext", 1040, 1, 6},
        {u"For Each a.b In c\nNext", 1040, 1, 11},
        {u"Class C\nDim a\nDim a\nEnd Class", 1041, 3, 5},
        {u"Class C\nSub P\nEnd Sub\nSub p\nEnd Sub\nEnd Class", 1041, 4, 5},
        {u"Class C\nEnd Class\nClass c\nEnd Class", 1041, 3, 7},
        {u"Function F(a, a)\nEnd Function", 1041, 1, 15},
        {u"Sub P\nDim a\nConst a = 1\nEnd Sub", 1041, 3, 7},
        {u"Sub P(a)\nConst a = 1\nEnd Sub", 1041, 2, 7},
        {u"F (1, 2)", 1044, 1, 9},
        {u"o.F(1, 2)", 1044, 1, 10},
        {u"F(1, 2) : x = 1", 1044, 1, 9},
        {u" If x Then F(1, 2)", 1044, 1, 19},
        {u"F()(1, 2)", 1044, 1, 10},
        {u"Const a =", 1045, 1, 10},
        {u"Const a = b", 1045, 1, 11},
        {u"For Each i\nNext", 1046, 1, 11},
        {u"Class C\nEnd", 1047, 2, 4},
        {u"Public Default Sub P\nEnd Sub", 1048, 1, 8},
        {u"Public Property Get P\nEnd Property", 1048, 1, 8},
        {u"Class C\nProperty\nEnd Property\nEnd Class", 1049, 2, 9},
        {u"Class C\nProperty Get P\nEnd Class", 1050, 3, 5},
        {u"Class C\nProperty Get P\nEnd\nEnd Class", 1050, 3, 4},
        {u"Class C\nSub Class_Initialize(a)\nEnd Sub\nEnd Class", 1053, 2, 5},
        {u"Class C\nProperty Set P\nEnd Property\nEnd Class", 1054, 2, 15},
        {u"Class C\nProperty Let P()\nEnd Property\nEnd Class", 1054, 2, 17},
        {u" Next i", 1055, 1, 2},
        {u"Next i", 1055, 1, 1},
        {u"Class C\nPublic Default Dim x\nEnd Class", 1056, 2, 16},
        {u"Class C\nPublic Default\nEnd Class", 1056, 2, 15},
        {u"Class C\nPrivate Default Sub P\nEnd Sub\nEnd Class", 1057, 2, 9},
        {u"Class C\nPublic Default Property Let P(v)\nEnd Property\nEnd Class", 1058, 2, 25},
    };
    for (const Case& c : kCases) {
        ScriptControl control;
        SCOPED_TRACE(std::string(c.code.begin(), c.code.end()));
        EXPECT_FALSE(control.addCode(c.code));
        EXPECT_EQ(control.error().number, c.number);
        EXPECT_EQ(control.error().line, c.line);
        EXPECT_EQ(control.error().column, c.column);
        EXPECT_EQ(control.error().source, u"Microsoft VBScript compilation error");
    }
}

// A text that does not compile leaves nothing behind.
TEST(CompilationErrors, RunNothingOfTheText)
{
    ScriptControl control;
    EXPECT_FALSE(control.addCode(u"x = 1\nSub P : End Sub\ny = ("));
    const auto seen = control.eval(u"TypeName(x)");
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->text(), u"Empty");
    EXPECT_FALSE(control.run(u"P"));
}

} // namespace script
