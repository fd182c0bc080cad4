#include "skin/Accessible.h"

#include "skin/Controls.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace skin
{
namespace
{

QAccessible::Role roleOf(SkinControl::Part part)
{
    switch (part) {
    case SkinControl::Part::None: return QAccessible::Pane;
    case SkinControl::Part::Button: return QAccessible::Button;
    case SkinControl::Part::Text: return QAccessible::StaticText;
    case SkinControl::Part::Slider: return QAccessible::Slider;
    }
    return QAccessible::Pane;
}

class AccessibleElement : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit AccessibleElement(SkinControl& control)
        : QAccessibleWidget(&control, roleOf(control.part())), m_control(control)
    {
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        const auto* label = qobject_cast<const SkinLabel*>(&m_control);
        if (kind == QAccessible::Name) return label != nullptr ? label->Caption() : m_control.toolTip();
        if (kind == QAccessible::Description && label != nullptr) return m_control.toolTip();
        return QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QStringList actionNames() const override
    {
        const bool presses = m_control.part() == SkinControl::Part::Button && m_control.isEnabled();
        return presses ? QStringList(pressAction()) : QStringList();
    }
    void doAction(const QString& name) override
    {
        if (name == pressAction() && m_control.part() == SkinControl::Part::Button) m_control.click();
    }
    /// A slider has a value as soon as its skin says which.
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        const bool isSlider = m_control.part() == SkinControl::Part::Slider && m_control.Value() >= 0;
        if (type == QAccessible::ValueInterface && isSlider)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QVariant currentValue() const override { return m_control.Value(); }
    void setCurrentValue(const QVariant& value) override { m_control.dragTo(value.toDouble()); }
    [[nodiscard]] QVariant maximumValue() const override { return 100.0; }
    [[nodiscard]] QVariant minimumValue() const override { return 0.0; }
    [[nodiscard]] QVariant minimumStepSize() const override { return 1.0; }

private:
    SkinControl& m_control; // goes after this: the toolkit deletes what it made for a widget with the widget
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object)
{
    auto* control = qobject_cast<SkinControl*>(object);
    return control != nullptr ? new AccessibleElement(*control) : nullptr;
}

} // namespace

void installAccessibility() { QAccessible::installFactory(&interfaceOf); }

} // namespace skin
