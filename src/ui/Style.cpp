#include "ui/Style.h"

#include "ui/Balloon.h"
#include "ui/ControlDrawing.h"
#include "ui/Drawing.h"
#include "ui/MenuDrawing.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QStyleFactory>
#include <QStyleOption>

namespace ui
{
namespace
{

using core::look::kSteel;

constexpr int kControlHeight = 28;
constexpr int kButtonPadding = 16;
constexpr int kComboArrow = 24;
constexpr int kListRow = 24;
constexpr int kScrollBar = 12;
constexpr int kIndicator = 16;
constexpr int kMessageSign = 40;

/// The list that a combo box unfolds.
bool isComboList(const QWidget* widget) { return widget != nullptr && widget->inherits("QComboBoxListView"); }

bool isScrollBarEnd(QStyle::SubControl part)
{
    return part == QStyle::SC_ScrollBarAddLine || part == QStyle::SC_ScrollBarSubLine;
}

} // namespace

Style::Style() : QProxyStyle(QStyleFactory::create("Fusion")) {}

void Style::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
        qobject_cast<QLineEdit*>(widget))
        widget->setAttribute(Qt::WA_Hover);
    // Tooltips show in windows that are not the active one, too.
    if (widget->isWindow()) widget->setAttribute(Qt::WA_AlwaysShowToolTips);
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            return drawButton(*painter, *button);
        break;
    case PE_FrameDefaultButton: return;
    case PE_IndicatorCheckBox: return drawCheckBox(*painter, *option);
    case PE_IndicatorRadioButton: return drawRadioButton(*painter, *option);
    case PE_FrameFocusRect:
        if (qobject_cast<const QAbstractItemView*>(widget) == nullptr &&
            option->state & State_KeyboardFocusChange)
            drawFocusRing(*painter, option->rect, 3);
        return;
    case PE_PanelLineEdit: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame != nullptr && frame->lineWidth > 0) return drawField(*painter, *option);
        return painter->fillRect(option->rect, option->palette.base());
    }
    case PE_FrameLineEdit: return;
    case PE_PanelMenu: return drawMenuPanel(*painter, *option, widget);
    case PE_Frame:
        if (widget == nullptr || !widget->inherits("QComboBoxPrivateContainer")) break;
        [[fallthrough]];
    case PE_FrameMenu:
        painter->setPen(hairline(QColor(kSteel)));
        painter->setBrush(Qt::NoBrush);
        return painter->drawRect(onPixels(*painter, option->rect));
    case PE_PanelMenuBar: return drawMenuBarGround(*painter, *option);
    case PE_PanelTipLabel:
        return drawPlate(*painter, option->rect, 0, option->palette.toolTipBase().color(), QColor(kSteel));
    default: break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const
{
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    switch (element) {
    case CE_MenuItem:
        if (item != nullptr) return drawMenuItem(*painter, *item, widget);
        break;
    case CE_MenuEmptyArea: return;
    case CE_MenuScroller:
        if (item != nullptr) return drawMenuScroller(*painter, *item);
        break;
    case CE_MenuBarItem:
        if (item != nullptr) return drawMenuBarItem(*painter, *item);
        break;
    case CE_MenuBarEmptyArea: return drawMenuBarGround(*painter, *option);
    case CE_PushButtonBevel:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            return drawButton(*painter, *button);
        break;
    case CE_PushButtonLabel:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
            button != nullptr && isPrimary(*button)) {
            QStyleOptionButton white = *button;
            for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
                white.palette.setColor(group, QPalette::ButtonText, Qt::white);
            return QProxyStyle::drawControl(element, &white, painter, widget);
        }
        break;
    case CE_ProgressBar:
        if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
            const double range = static_cast<double>(bar->maximum) - bar->minimum;
            return drawProgress(*painter, option->rect,
                                range > 0 ? (static_cast<double>(bar->progress) - bar->minimum) / range : 0);
        }
        break;
    default: break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const
{
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        control == CC_ComboBox && combo != nullptr)
        return drawComboBox(*painter, *combo, subControlRect(control, option, SC_ComboBoxArrow, widget));
    if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        control == CC_ScrollBar && bar != nullptr)
        return drawScrollBar(*painter, *bar, subControlRect(control, option, SC_ScrollBarSlider, widget));
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                            const QWidget* widget) const
{
    if (control == CC_ComboBox && part == SC_ComboBoxArrow) {
        const QRect arrow(option->rect.right() - kComboArrow + 1, option->rect.top(), kComboArrow,
                          option->rect.height());
        return visualRect(option->direction, option->rect, arrow);
    }
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return visualRect(option->direction, option->rect, option->rect.adjusted(6, 2, -kComboArrow, -2));
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || bar == nullptr)
        return QProxyStyle::subControlRect(control, option, part, widget);
    if (isScrollBarEnd(part)) return {};
    if (part == SC_ScrollBarGroove) return option->rect;
    const bool horizontal = bar->orientation == Qt::Horizontal;
    const int length = horizontal ? option->rect.width() : option->rect.height();
    const qint64 range = static_cast<qint64>(bar->maximum) - bar->minimum;
    constexpr int kMinThumb = 24;
    const auto thumb = range <= 0 ? length
                                  : std::clamp<int>(static_cast<int>(static_cast<qint64>(length) *
                                                                     bar->pageStep / (range + bar->pageStep)),
                                                    std::min(kMinThumb, length), length);
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                              bar->upsideDown);
    const auto stretch = [&](int from, int to) {
        const QRect& all = option->rect;
        return horizontal ? QRect(all.left() + from, all.top(), to - from, all.height())
                          : QRect(all.left(), all.top() + from, all.width(), to - from);
    };
    switch (part) {
    case SC_ScrollBarSlider: return stretch(start, start + thumb);
    case SC_ScrollBarSubPage: return stretch(0, start);
    case SC_ScrollBarAddPage: return stretch(start + thumb, length);
    default: return {};
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                              const QWidget* widget) const
{
    switch (type) {
    case CT_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            return menuItemSize(*item, contents);
        break;
    case CT_MenuBarItem: return contents + QSize(2 * 8, 2 * 5);
    case CT_PushButton: {
        constexpr int kMinWidth = 80;
        return {std::max(contents.width() + 2 * kButtonPadding, kMinWidth),
                std::max(contents.height() + 8, kControlHeight)};
    }
    case CT_ItemViewItem: {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return isComboList(widget) ? QSize(size.width(), std::max(size.height(), kListRow)) : size;
    }
    case CT_ComboBox:
        return {contents.width() + kComboArrow + 12, std::max(contents.height() + 8, kControlHeight)};
    case CT_LineEdit: return {contents.width() + 8, std::max(contents.height() + 8, kControlHeight)};
    case CT_CheckBox:
    case CT_RadioButton: {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return {size.width() + 4, std::max(size.height(), 26)};
    }
    default: break;
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_MenuPanelWidth: return 1;
    case PM_MenuHMargin: return 0;
    case PM_MenuVMargin: return 4;
    case PM_MenuScrollerHeight: return 20;
    case PM_SubMenuOverlap: return -2;
    case PM_MenuBarPanelWidth: return 0;
    case PM_MenuBarHMargin: return 4;
    case PM_MenuBarVMargin: return 2;
    case PM_MenuBarItemSpacing: return 0;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight: return kIndicator;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing: return 8;
    case PM_ScrollBarExtent: return kScrollBar;
    case PM_MessageBoxIconSize: return kMessageSign;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_ButtonDefaultIndicator: return 0;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin: return widget != nullptr && widget->isWindow() ? 16 : 8;
    // The text of a list's rows stands under that of the box.
    case PM_FocusFrameHMargin:
        return isComboList(widget) ? 6 : QProxyStyle::pixelMetric(metric, option, widget);
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing: return 8;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* data) const
{
    switch (hint) {
    case SH_ToolTip_WakeUpDelay: return Balloon::kInitialDelayMs;
    case SH_DialogButtonBox_ButtonsHaveIcons: return 0;
    case SH_ComboBox_Popup: return 0;
    case SH_MenuBar_MouseTracking:
    case SH_Menu_MouseTracking: return 1;
    case SH_MessageBox_TextInteractionFlags: return Qt::TextSelectableByMouse;
    case SH_UnderlineShortcut: return 1;
    default: return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QIcon Style::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const
{
    const QIcon sign = messageIcon(icon);
    return sign.isNull() ? QProxyStyle::standardIcon(icon, option, widget) : sign;
}

void initialiseVisualStyle()
{
    core::look::initialiseVisualStyle();
    QApplication::setStyle(new Style);
    QApplication::setPalette(QApplication::palette()); // setting a style brings its own palette back
    Balloon::install();
}

} // namespace ui
