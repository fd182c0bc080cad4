#include "player/PageItems.h"

#include "flash/FlashControl.h"
#include "player/PageAddresses.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <QPointer>
#include <QStringList>

#include <algorithm>

namespace player
{
namespace
{

constexpr std::size_t kMaxItems = 200; // no page has as many

class AccessibleItem : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    AccessibleItem(PageItems& page, int index) : m_page(page), m_index(index) {}

    [[nodiscard]] bool isValid() const override { return true; }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(&m_page.control());
    }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? item().name : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    [[nodiscard]] QRect rect() const override
    {
        const QRect box = m_page.boxOf(m_index);
        return {m_page.control().mapToGlobal(box.topLeft()), box.size()};
    }
    [[nodiscard]] QAccessible::Role role() const override
    {
        return item().isButton ? QAccessible::Button : QAccessible::StaticText;
    }
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state;
        state.readOnly = !item().isButton;
        state.disabled = !item().isEnabled;
        state.focusable = presses();
        state.focused = m_page.focused() == m_index && m_page.control().hasFocus();
        state.invisible = !m_page.control().isVisible();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    [[nodiscard]] QStringList actionNames() const override
    {
        return presses() ? QStringList(pressAction()) : QStringList();
    }
    void doAction(const QString& name) override
    {
        if (name == pressAction() && presses()) m_page.press(m_index);
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    [[nodiscard]] const PageItems::Item& item() const
    {
        return m_page.items()[static_cast<std::size_t>(m_index)];
    }
    [[nodiscard]] bool presses() const { return item().isButton && item().isEnabled; }

    PageItems& m_page; // deletes this before its items change
    int m_index;
};

/// The place of a movie: a page with its items, or a movie of which no more is known than its name.
class AccessibleMovie : public QAccessibleWidget
{
public:
    explicit AccessibleMovie(flash::FlashControl& control)
        : QAccessibleWidget(&control, QAccessible::Animation), m_control(control)
    {
    }
    [[nodiscard]] QAccessible::Role role() const override
    {
        return childCount() > 0 ? QAccessible::Document : QAccessible::Animation;
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        const QString given = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Name || !given.isEmpty()) return given;
        return childCount() > 0 ? m_control.window()->windowTitle()
                                : QFileInfo(filePartOf(m_control.Movie())).completeBaseName();
    }
    [[nodiscard]] int childCount() const override
    {
        const PageItems* page = items();
        return page == nullptr ? 0 : static_cast<int>(page->items().size());
    }
    [[nodiscard]] QAccessibleInterface* child(int index) const override
    {
        PageItems* page = items();
        return page == nullptr ? nullptr : page->interfaceOf(index);
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override
    {
        const PageItems* page = items();
        return page == nullptr ? -1 : page->indexOf(child);
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override
    {
        PageItems* page = items();
        if (page == nullptr) return nullptr;
        const QPoint at = m_control.mapFromGlobal(QPoint(x, y));
        for (int i = childCount() - 1; i >= 0; --i)
            if (page->boxOf(i).contains(at)) return page->interfaceOf(i);
        return nullptr;
    }
    [[nodiscard]] QAccessibleInterface* focusChild() const override
    {
        PageItems* page = items();
        return page == nullptr || !m_control.hasFocus() ? nullptr : page->interfaceOf(page->focused());
    }

private:
    [[nodiscard]] PageItems* items() const
    {
        return m_control.findChild<PageItems*>(QString(), Qt::FindDirectChildrenOnly);
    }

    flash::FlashControl& m_control; // goes after this: the toolkit deletes what it made with the widget
};

QAccessibleInterface* makeInterface(const QString&, QObject* object)
{
    auto* control = qobject_cast<flash::FlashControl*>(object);
    return control != nullptr ? new AccessibleMovie(*control) : nullptr;
}

} // namespace

PageItems::PageItems(flash::FlashControl& control) : QObject(&control), m_control(control) {}

PageItems::~PageItems() { forgetInterfaces(); }

void PageItems::installAccessibility() { QAccessible::installFactory(&makeInterface); }

bool PageItems::take(const QString& command, const QString& argument)
{
    const QString name = command.toUpper();
    if (name == "MEOWITEMS")
        setItems(argument);
    else if (name == "MEOWFOCUS")
        setFocused(argument.toInt());
    else
        return false;
    return true;
}

void PageItems::clear()
{
    if (!m_items.empty()) setItems({});
}

void PageItems::setItems(const QString& lines)
{
    forgetInterfaces();
    m_items.clear();
    m_focused = -1;
    for (const QString& line : lines.split('\n', Qt::SkipEmptyParts)) {
        constexpr qsizetype kFields = 6;
        const QStringList fields = line.split('\t');
        if (fields.size() != kFields || m_items.size() >= kMaxItems) continue;
        m_items.push_back(
            {fields[0] != "text", fields[0] != "disabled", fields[5],
             QRectF(fields[1].toDouble(), fields[2].toDouble(), fields[3].toDouble(), fields[4].toDouble())});
    }
    m_ids.assign(m_items.size(), 0);
    if (!QAccessible::isActive()) return;
    QAccessibleEvent event(&m_control, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

void PageItems::setFocused(int index)
{
    m_focused = index >= 0 && static_cast<std::size_t>(index) < m_items.size() ? index : -1;
    if (m_focused < 0 || !QAccessible::isActive()) return;
    QAccessibleEvent event(interfaceOf(m_focused), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void PageItems::forgetInterfaces()
{
    for (QAccessible::Id& id : m_ids)
        if (id != 0) QAccessible::deleteAccessibleInterface(std::exchange(id, 0));
}

QRect PageItems::boxOf(int index) const
{
    const QSizeF stage = m_control.movieSize();
    if (index < 0 || static_cast<std::size_t>(index) >= m_items.size() || stage.isEmpty()) return {};
    const double byWidth = m_control.width() / stage.width();
    const double byHeight = m_control.height() / stage.height();
    double across = 1, down = 1; // no scale
    switch (m_control.ScaleMode()) {
    case 0: across = down = std::min(byWidth, byHeight); break;
    case 1: across = down = std::max(byWidth, byHeight); break;
    case 2: across = byWidth, down = byHeight; break;
    default: break;
    }
    const QPointF origin((m_control.width() - stage.width() * across) / 2,
                         (m_control.height() - stage.height() * down) / 2);
    const QRectF& box = m_items[static_cast<std::size_t>(index)].box;
    return QRectF(origin.x() + box.x() * across, origin.y() + box.y() * down, box.width() * across,
                  box.height() * down)
        .toRect();
}

void PageItems::press(int index)
{
    // Whoever asks waits for an answer: what a press opens may stay open for long.
    QMetaObject::invokeMethod(
        this,
        [this, at = QPointF(boxOf(index).center())] {
            const QPointer<flash::FlashControl> control = &m_control;
            const QPointF global = control->mapToGlobal(at);
            const auto send = [&](QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) {
                QMouseEvent event(type, at, global, button, buttons, Qt::NoModifier);
                if (control) QCoreApplication::sendEvent(control, &event);
            };
            send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
            send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
            send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
        },
        Qt::QueuedConnection);
}

QAccessibleInterface* PageItems::interfaceOf(int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_ids.size()) return nullptr;
    QAccessible::Id& id = m_ids[static_cast<std::size_t>(index)];
    if (id == 0) id = QAccessible::registerAccessibleInterface(new AccessibleItem(*this, index));
    return QAccessible::accessibleInterface(id);
}

int PageItems::indexOf(const QAccessibleInterface* item) const
{
    for (std::size_t i = 0; i < m_ids.size(); ++i)
        if (m_ids[i] != 0 && QAccessible::accessibleInterface(m_ids[i]) == item) return static_cast<int>(i);
    return -1;
}

} // namespace player
