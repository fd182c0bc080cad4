#include "SkinFixture.h"

#include <QAccessible>

namespace skin
{
namespace
{

// A slider as the skins that ship have it: its knob stays 6 pixels away from the ends.
constexpr const char* kSlider = R"(<THEME scriptFile="s.vbs" onLoad="OnLoad">
  <VIEW name="viewNormal" width="400" height="40">
    <SUBVIEW name="area" left="10" top="0" width="112" height="28" onDrag="SetBy" toolTip="Громкость"/>
    <SUBVIEW name="silent" left="150" top="0" width="112" height="28" toolTip="Место"/>
    <BUTTON name="btn" left="300" width="20" height="20" onClick="Pressed" toolTip="Пуск"/>
  </VIEW></THEME>)";
constexpr const char* kScript = "Dim X, Y, drags, presses\n"
                                "Sub OnLoad\n area.Value = 25\nEnd Sub\n"
                                "Sub SetBy\n"
                                " Dim share\n"
                                " share = (X - 6) / (area.Width - 12)\n"
                                " If share < 0 Then share = 0\n"
                                " If share > 1 Then share = 1\n"
                                " drags = drags + 1\n"
                                " area.Value = Round(share * 100)\n"
                                "End Sub\n"
                                "Sub Pressed\n presses = presses + 1\nEnd Sub\n";

class AccessibleTest : public SkinTest
{
protected:
    bool does(const QString& statement)
    {
        return skin.bridge().RunScript(statement) == Bridge::Outcome::Done;
    }
    QAccessibleInterface* interfaceOf(const QString& name)
    {
        return QAccessible::queryAccessibleInterface(record(name).object);
    }
};

TEST_F(AccessibleTest, ASliderTellsItsValueAndTakesOne)
{
    ASSERT_TRUE(load(kSlider, kScript));
    QAccessibleInterface* slider = interfaceOf("area");
    ASSERT_NE(slider, nullptr);
    EXPECT_EQ(slider->role(), QAccessible::Slider);
    EXPECT_EQ(slider->text(QAccessible::Name), "Громкость");
    QAccessibleValueInterface* value = slider->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->currentValue().toDouble(), 25);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), 100);
    EXPECT_EQ(number("area.Value"), 25);

    // The script alone knows where the knob is for a value: it is dragged until that is right.
    for (const double wanted : {90.0, 0.0, 100.0, 50.0, 3.0}) {
        value->setCurrentValue(wanted);
        EXPECT_NEAR(value->currentValue().toDouble(), wanted, 1) << wanted;
    }
    EXPECT_LE(number("drags"), 30);
    value->setCurrentValue(1e300);
    EXPECT_EQ(value->currentValue().toDouble(), 100);

    // What is out of use is told, and does not move.
    ASSERT_TRUE(does("area.Enabled = False"));
    value->setCurrentValue(10);
    EXPECT_EQ(value->currentValue().toDouble(), 100);
}

TEST_F(AccessibleTest, WhatHasNoValueTellsNone)
{
    ASSERT_TRUE(load(kSlider, kScript));
    EXPECT_EQ(interfaceOf("silent")->role(), QAccessible::Slider);
    EXPECT_EQ(interfaceOf("silent")->valueInterface(), nullptr);
    EXPECT_EQ(interfaceOf("btn")->role(), QAccessible::Button);
    ASSERT_TRUE(does("btn.Value = 7"));
    EXPECT_EQ(interfaceOf("btn")->valueInterface(), nullptr);
    ASSERT_TRUE(does("silent.Value = 300"));
    ASSERT_NE(interfaceOf("silent")->valueInterface(), nullptr);
    EXPECT_EQ(interfaceOf("silent")->valueInterface()->currentValue().toDouble(), 100);

    QAccessibleActionInterface* button = interfaceOf("btn")->actionInterface();
    ASSERT_NE(button, nullptr);
    button->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(number("presses"), 1);
}

} // namespace
} // namespace skin
