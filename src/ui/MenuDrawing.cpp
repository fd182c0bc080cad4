#include "ui/MenuDrawing.h"

#include "ui/Drawing.h"
#include "ui/Menu.h"

#include <QStyleOption>

namespace ui
{
namespace
{

using core::look::kBlue;
using core::look::kIce;
using core::look::kSky;
using core::look::kSlate;

constexpr int kItemHeight = 26;
constexpr int kSeparatorHeight = 9;
constexpr int kIconSize = 16;
constexpr int kIconLeft = 5;     ///< in the middle of the strip of 28 that menu sets have on the left
constexpr int kTextLeft = 36;    ///< the icon column
constexpr int kShortcutGap = 24; ///< least distance between caption and shortcut
constexpr int kRight = 28;       ///< right of the shortcuts, with room for the arrow of a sub-menu
constexpr int kArrowSize = 12;
constexpr int kInset = 4; ///< of the bar that marks the item under the pointer
constexpr double kDisabled = 0.45;
constexpr double kQuiet = 0.7;
constexpr double kHairline = 0.12;
constexpr QRgb kWhite = qRgb(255, 255, 255);

const MenuSet* setOf(const QWidget* menu)
{
    const auto* own = qobject_cast<const Menu*>(menu);
    return own == nullptr ? nullptr : &own->menuSet();
}

void drawIcon(QPainter& painter, const QIcon& icon, const QRect& square, bool enabled)
{
    // The paler picture of a disabled item is made here, so that the sets need not hold it.
    const QPixmap pixmap = icon.pixmap(square.size() * painter.device()->devicePixelRatioF());
    if (pixmap.isNull()) return;
    painter.save();
    if (!enabled) painter.setOpacity(0.35);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(square, pixmap);
    painter.restore();
}

/// The check mark of the set is made for its ground; on the bar that marks an item it is white like the text.
QIcon whiteOf(const QIcon& icon, const QSize& size, double ratio)
{
    QPixmap pixmap = icon.pixmap(size * ratio);
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), QColor(kWhite));
    return QIcon(pixmap);
}

void drawMarkOrIcon(QPainter& painter, const QStyleOptionMenuItem& option, const MenuSet* set,
                    const QColor& colour)
{
    const QRect square(option.rect.left() + kIconLeft,
                       option.rect.top() + (option.rect.height() - kIconSize) / 2, kIconSize, kIconSize);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool checked = option.checkType != QStyleOptionMenuItem::NotCheckable && option.checked;
    // A mark is what the user looks for: it stands in the place of the icon.
    if (!checked) return drawIcon(painter, option.icon, square, enabled);
    if (set != nullptr && !set->checkMark().isNull()) {
        const bool marked = enabled && option.state.testFlag(QStyle::State_Selected);
        const double ratio = painter.device()->devicePixelRatioF();
        return drawIcon(painter, marked ? whiteOf(set->checkMark(), square.size(), ratio) : set->checkMark(),
                        square, enabled);
    }
    drawCheckMark(painter, square, colour);
}

} // namespace

void drawMenuPanel(QPainter& painter, const QStyleOption& option, const QWidget* menu)
{
    const MenuSet* set = setOf(menu);
    painter.fillRect(option.rect, QColor(kSlate));
    if (set != nullptr && set->hasGround()) painter.drawTiledPixmap(option.rect, set->ground());
}

QSize menuItemSize(const QStyleOptionMenuItem& option, const QSize& contents)
{
    if (option.menuItemType == QStyleOptionMenuItem::Separator) return {kTextLeft, kSeparatorHeight};
    const int gap = option.text.contains('\t') ? kShortcutGap : 0;
    return {kTextLeft + contents.width() + gap + kRight,
            std::max(kItemHeight, option.fontMetrics.height() + 8)};
}

void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& option, const QWidget* menu)
{
    const MenuSet* set = setOf(menu);
    const QColor ground = set == nullptr ? QColor(kIce) : set->textColour();
    const QRect& rect = option.rect;
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        QColor line = ground;
        line.setAlphaF(static_cast<float>(kHairline));
        const QRectF row = onPixels(
            painter, QRectF(rect.left() + kTextLeft, rect.center().y(), rect.width() - kTextLeft - 8, 2));
        painter.setPen(hairline(line));
        painter.drawLine(row.topLeft(), row.topRight());
        return;
    }
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter.save();
    if (selected && enabled)
        drawPlate(painter, rect.adjusted(kInset, 1, -kInset, -1), 3, QColor(kBlue), QColor());
    else if (selected)
        drawPlate(painter, rect.adjusted(kInset, 1, -kInset, -1), 3, QColor(), faded(kSky, 0.5));
    QColor colour = selected && enabled ? QColor(kWhite) : ground;
    if (!enabled) colour.setAlphaF(static_cast<float>(kDisabled));
    drawMarkOrIcon(painter, option, set, colour);

    const QRect line = rect.adjusted(kTextLeft, 0, -kRight, 0);
    const auto tab = option.text.indexOf('\t');
    QFont font = option.font;
    if (option.menuItemType == QStyleOptionMenuItem::DefaultItem) font.setBold(true);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextShowMnemonic,
                     tab < 0 ? option.text : option.text.left(tab));
    if (tab >= 0) {
        QColor quiet = colour;
        if (enabled && !selected) quiet.setAlphaF(static_cast<float>(kQuiet));
        painter.setPen(quiet);
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                         option.text.mid(tab + 1));
    }
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu)
        drawChevron(painter,
                    QRectF(rect.right() - kArrowSize - 8, rect.top() + (rect.height() - kArrowSize) / 2.0,
                           kArrowSize, kArrowSize),
                    option.direction == Qt::RightToLeft ? Qt::LeftArrow : Qt::RightArrow, colour);
    painter.restore();
}

void drawMenuScroller(QPainter& painter, const QStyleOptionMenuItem& option)
{
    const bool down = option.state.testFlag(QStyle::State_DownArrow);
    QRectF square(0, 0, kArrowSize, kArrowSize);
    square.moveCenter(QRectF(option.rect).center());
    drawChevron(painter, square, down ? Qt::DownArrow : Qt::UpArrow, QColor(kIce));
}

void drawMenuBarGround(QPainter& painter, const QStyleOption& option)
{
    painter.fillRect(option.rect, QColor(kSlate));
}

void drawMenuBarItem(QPainter& painter, const QStyleOptionMenuItem& option)
{
    drawMenuBarGround(painter, option);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool open = option.state.testFlag(QStyle::State_Sunken);
    if (enabled && option.state.testFlag(QStyle::State_Selected))
        drawPlate(painter, option.rect.adjusted(0, 1, 0, -1), 3,
                  faded(open ? kBlue : kSky, open ? 0.6 : 0.18), QColor());
    painter.setFont(option.font);
    painter.setPen(enabled ? QColor(kIce) : faded(kIce, kDisabled));
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextSingleLine | Qt::TextShowMnemonic, option.text);
}

} // namespace ui
