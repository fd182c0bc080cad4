#include "script/QtDispatch.h"
#include "script/ScriptControl.h"

#include <gtest/gtest.h>

namespace
{

class Window : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int ScaleWidth MEMBER scaleWidth)
    Q_PROPERTY(QString Caption MEMBER caption)
    Q_PROPERTY(bool Visible MEMBER visible)
    Q_PROPERTY(double Ratio READ ratio)
    Q_PROPERTY(double Zoom MEMBER zoom)
    Q_PROPERTY(QObject* Child MEMBER child)
    Q_PROPERTY(QVariantList Names MEMBER names)

public:
    double ratio() const { return 1.5; }
    Q_INVOKABLE QString FitText(const QString& text, int width = 3) { return text.left(width); }
    Q_INVOKABLE int Add(int a, int b) { return a + b; }
    Q_INVOKABLE double Half(double number) { return number / 2; }
    Q_INVOKABLE QVariant Same(const QVariant& value) { return value; }
    Q_INVOKABLE void MoveObject(QObject* object) { moved = object; }

    int scaleWidth = 640;
    QString caption;
    double zoom = 1;
    bool visible = true;
    QObject* child = nullptr;
    QObject* moved = nullptr;
    QVariantList names{1, QStringLiteral("два")};
};

struct QtDispatchTest : testing::Test {
    QtDispatchTest()
    {
        object = script::make<script::QtDispatch>(&window);
        control.addObject(u"Player", *object, true);
    }
    int failure(std::u16string_view statement)
    {
        return control.executeStatement(statement) ? 0 : control.error().number;
    }
    std::u16string value(std::u16string_view expression)
    {
        const auto found = control.eval(expression);
        return found ? control.textOf(*found).value_or(u"?") : u"failed";
    }
    Window window;
    script::ScriptControl control;
    script::Ref<script::QtDispatch> object;
};

TEST_F(QtDispatchTest, ReadsAndWritesPropertiesOfAnyCase)
{
    EXPECT_EQ(value(u"player.SCALEWIDTH - 40"), u"600");
    EXPECT_EQ(value(u"ScaleWidth / 2"), u"320");
    EXPECT_EQ(failure(u"Caption = \"Привет\" & 5 : ScaleWidth = \"12\" : Visible = 0"), 0);
    EXPECT_EQ(window.caption, QStringLiteral("Привет5"));
    EXPECT_EQ(window.scaleWidth, 12);
    EXPECT_FALSE(window.visible);
    EXPECT_EQ(value(u"TypeName(Visible) & TypeName(Ratio) & TypeName(Caption)"), u"BooleanDoubleString");
    EXPECT_EQ(failure(u"Caption = Empty"), 0);
    EXPECT_EQ(window.caption, QString());
    EXPECT_EQ(value(u"Names(1) & UBound(Names)"), u"два1");
}

TEST_F(QtDispatchTest, CallsMethodsWithConversionAndDefaults)
{
    EXPECT_EQ(value(u"FitText(\"abcdef\")"), u"abc");
    EXPECT_EQ(value(u"FitText(\"abcdef\", \"5\")"), u"abcde");
    EXPECT_EQ(value(u"FitText(12345, 2)"), u"12");
    EXPECT_EQ(value(u"Add(1, True + 3)"), u"3");
    EXPECT_EQ(value(u"TypeName(Same(#1/2/2024#)) & Same(#1/2/2024 3:04:05 PM#)"), u"Date1/2/2024 3:04:05 PM");
    EXPECT_EQ(failure(u"Player.MoveObject Player"), 0);
    EXPECT_EQ(window.moved, &window);
}

TEST_F(QtDispatchTest, ConvertsAsTheScriptsLocaleWrites)
{
    EXPECT_EQ(failure(u"Zoom = \"1.5\" : Caption = 2.5"), 0);
    EXPECT_EQ(window.zoom, 1.5);
    EXPECT_EQ(window.caption, QStringLiteral("2.5"));
    EXPECT_EQ(failure(u"SetLocale 1049 : Zoom = \"2,5\" : Caption = 2.5"), 0);
    EXPECT_EQ(window.zoom, 2.5);
    EXPECT_EQ(window.caption, QStringLiteral("2,5"));
    EXPECT_EQ(value(u"Half(\"1 000,5\")"), u"500,25");
    EXPECT_EQ(value(u"Half(CCur(3))"), u"1,5");
    EXPECT_EQ(failure(u"Zoom = \"1.5.\""), 13);
    // Halves round to the even neighbour and texts of logical values count, as anywhere in the language.
    EXPECT_EQ(failure(u"ScaleWidth = 2.5 : Visible = \"False\""), 0);
    EXPECT_EQ(window.scaleWidth, 2);
    EXPECT_FALSE(window.visible);
    EXPECT_EQ(failure(u"ScaleWidth = \"3,5\""), 0);
    EXPECT_EQ(window.scaleWidth, 4);
    EXPECT_EQ(failure(u"ScaleWidth = 3000000000"), 6);
    EXPECT_EQ(window.scaleWidth, 4);
    EXPECT_EQ(failure(u"ScaleWidth = Empty"), 0);
    EXPECT_EQ(window.scaleWidth, 0);
}

TEST_F(QtDispatchTest, ReportsWhatIsWrong)
{
    EXPECT_EQ(failure(u"Player.NoSuchThing"), 438);
    EXPECT_EQ(failure(u"Ratio = 2"), 438);
    EXPECT_EQ(failure(u"ScaleWidth = \"wide\""), 13);
    EXPECT_EQ(failure(u"x = Add(1)"), 450);
    EXPECT_EQ(failure(u"x = Add(1, \"b\")"), 13);
    EXPECT_EQ(failure(u"For Each x In Player : Next"), 451);
    EXPECT_EQ(failure(u"x = Player"), 438);
}

TEST_F(QtDispatchTest, OutlivesTheObjectItShows)
{
    auto child = std::make_unique<Window>();
    window.child = child.get();
    EXPECT_EQ(failure(u"Set c = Player.Child : c.ScaleWidth = 7"), 0);
    EXPECT_EQ(child->scaleWidth, 7);
    child.reset();
    window.child = nullptr;
    EXPECT_EQ(failure(u"c.ScaleWidth = 8"), 91);
}

} // namespace

#include "QtDispatchTest.moc"
