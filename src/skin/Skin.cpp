#include "skin/Skin.h"

#include "base/Failure.h"
#include "skin/Accessible.h"
#include "skin/SkinFiles.h"
#include "skin/Texts.h"

#include <QApplication>

#include <algorithm>
#include <cassert>

// How a skin lives: views, layout, statements. How it is built stands in SkinBuilder.cpp.

namespace skin
{

Skin::Skin(SkinHost& host, script::Host* scriptHost) : m_host(host), m_bridge(host, scriptHost)
{
    installAccessibility();
}
Skin::~Skin() = default;

void Skin::UnloadSkin()
{
    assert(!m_bridge.isRunning() && "a script may not lose the skin that it runs for");
    QWidget& movie = m_host.movie();
    QWidget& client = m_host.clientArea();
    if (movie.parentWidget() != &client) {
        movie.setParent(&client);
        movie.show();
    }
    for (auto i = m_controls.rbegin(); i != m_controls.rend(); ++i) {
        SkinControl* control = *i;
        if (control == nullptr) continue;
        // A statement of the control's own may be running.
        control->hide();
        control->disconnect(this);
        control->deleteLater();
    }
    m_controls.clear();
    m_objects.assign(1, SkinObject());
    m_masks.clear();
    m_pictures = 0;
    m_labels = 0;
    m_movieFilled = movie.geometry();
    m_bridge.reset();
}

bool Skin::isShown() const
{
    const auto index = static_cast<std::size_t>(m_currentView);
    return index < m_objects.size() && m_objects[index].object != nullptr &&
           m_objects[index].object->Visible();
}

bool Skin::SetSkinView(const QString& name)
{
    const Busy busy(*this);
    const auto found =
        std::find_if(m_objects.begin() + 1, m_objects.end(), [&name](const SkinObject& record) {
            // Any picture will do; in a label the movie could not lie.
            return record.picture() != nullptr && record.name.compare(name, Qt::CaseInsensitive) == 0;
        });
    if (found == m_objects.end()) {
        constexpr int kNoSuchElement = 5;
        m_host.logError(
            base::Failure(kNoSuchElement, "Skin", (texts::kNoView + ('"' + name + '"')).toStdString()),
            texts::kSetViewPlace + name, {});
        return false;
    }
    const auto before = static_cast<std::size_t>(m_currentView);
    if (before < m_objects.size() && m_objects[before].object) m_objects[before].object->hide();
    SkinControl& view = *found->object;
    view.setGeometry(QRect(QPoint(0, 0), m_host.clientArea().size()));
    placeMovie(view);
    view.show();
    m_currentView = static_cast<int>(found - m_objects.begin());
    // The view may have been left while the program had another state.
    setActive(m_active);
    UpdateSkin();
    return true;
}

void Skin::placeMovie(QWidget& view)
{
    QWidget& movie = m_host.movie();
    if (movie.parentWidget() != &view) {
        const QPointer<QWidget> focus = QApplication::focusWidget();
        const bool hadFocus = focus && movie.isAncestorOf(focus);
        const bool wasShown = !movie.isHidden();
        movie.setParent(&view);
        movie.setVisible(wasShown);
        if (hadFocus && focus) focus->setFocus();
    }
    movie.lower();
    // Each view says anew where the movie lies; in one that does not it fills the view.
    movie.setGeometry(view.rect());
    m_movieFilled = movie.geometry();
}

void Skin::UpdateSkin()
{
    if (!isLoaded()) return;
    if (m_inLayout) {
        // A statement of this pass has changed the window: one pass follows, not one inside another.
        m_layoutWanted = true;
        return;
    }
    constexpr int kMaxPasses = 3;
    m_inLayout = true;
    int passes = 0;
    m_bridge.beginPass();
    do {
        m_layoutWanted = false;
        layOut();
    } while (m_layoutWanted && !m_bridge.hasOverrun() && ++passes < kMaxPasses);
    m_inLayout = false;
    m_host.UpdateRegion(false);
    if (m_bridge.endPass()) m_host.skinOverran();
}

double Skin::position(Expression& expression) { return m_bridge.evaluate(expression).value_or(0); }

void Skin::layOut()
{
    const Busy busy(*this);
    const int viewIndex = m_currentView;
    if (viewIndex <= 0 || static_cast<std::size_t>(viewIndex) >= m_objects.size()) return;
    SkinObject& view = m_objects[static_cast<std::size_t>(viewIndex)];
    if (!view.object) return;
    const QSize inner = m_host.clientArea().size();
    view.width = Expression(QString::number(inner.width()));
    view.height = Expression(QString::number(inner.height()));
    for (SkinObject& record : m_objects) {
        if (m_bridge.hasOverrun()) return;
        if (record.viewIndex != viewIndex || !record.object) continue;
        const double left = position(record.left);
        const double top = position(record.top);
        const double width = position(record.width);
        const double height = position(record.height);
        if (record.object) record.object->Move(left, top, width, height);
    }
    QWidget& movie = m_host.movie();
    if (movie.parentWidget() == view.object && movie.geometry() == m_movieFilled) {
        movie.setGeometry(QRect(QPoint(0, 0), inner));
        m_movieFilled = movie.geometry();
    }
    m_bridge.RunScript(QString(view.onResize));
}

void Skin::runInfoUpdate()
{
    const auto index = static_cast<std::size_t>(m_currentView);
    if (index >= m_objects.size() || isBusy()) return;
    // By itself, three times a second: it has no more time than a pass of the layout.
    m_bridge.beginPass();
    m_bridge.RunScript(QString(m_objects[index].onInfoUpdate), Bridge::Repetition::Timer);
    if (m_bridge.endPass()) m_host.skinOverran();
}

void Skin::runMediaChange()
{
    const auto index = static_cast<std::size_t>(m_currentView);
    if (index >= m_objects.size()) return;
    m_bridge.beginPass();
    m_bridge.RunScript(QString(m_objects[index].onMediaChange));
    if (m_bridge.endPass()) m_host.skinOverran();
}

void Skin::setActive(bool active)
{
    m_active = active;
    for (const SkinObject& record : m_objects) {
        if (record.viewIndex != m_currentView || !record.object) continue;
        // Views stay in use: the movie lies in one, and goes on.
        if (record.kind != Kind::Panel && record.kind != Kind::Button) continue;
        if (record.hasImage(ImageState::Disabled))
            record.picture()->showState(active && record.picture()->Enabled() ? ImageState::Normal
                                                                              : ImageState::Disabled);
        record.object->setResting(!active);
    }
}

std::vector<MaskPlace> Skin::masks() const
{
    std::vector<MaskPlace> result;
    for (const Mask& mask : m_masks)
        if (mask.panel && !mask.panel->isHidden())
            result.push_back({mask.holes, GetAbsLeft(*mask.panel), GetAbsTop(*mask.panel)});
    return result;
}

int Skin::GetAbsTop(const QWidget& control) const
{
    int top = 0;
    for (const QWidget* at = &control; at != nullptr && at != &m_host.clientArea(); at = at->parentWidget())
        top += at->y();
    return top;
}

QObject* Skin::control(const QString& array, int index) const
{
    for (const auto& control : m_controls)
        if (control && control->Index() == index && control->Name() == array) return control;
    return nullptr;
}

// ---- what happens to elements

SkinObject* Skin::recordOf(const SkinControl& control)
{
    bool isNumber = false;
    const auto index = static_cast<std::size_t>(std::max(0, control.Tag().toInt(&isNumber)));
    return isNumber && index < m_objects.size() && m_objects[index].pointer ? &m_objects[index] : nullptr;
}

void Skin::react(SkinControl& control, const ElementPointer::Reaction& reaction, QPoint position)
{
    if (reaction.paint)
        if (auto* picture = qobject_cast<SkinPicture*>(&control)) picture->showState(*reaction.paint);
    if (reaction.popUp) return m_host.ShowPopUp();
    if (!reaction.run) return;
    const SkinObject* record = recordOf(control);
    if (record == nullptr) return;
    // Copies: the statement may replace the skin, and the record with it.
    switch (*reaction.run) {
    case Statement::Click: m_bridge.RunScript(QString(record->onClick)); break;
    case Statement::DoubleClick: m_bridge.RunScript(QString(record->onDblClick)); break;
    case Statement::Drag: {
        const QString statement = record->onDrag;
        m_bridge.RunScript("X=" + QString::number(position.x()));
        m_bridge.RunScript("Y=" + QString::number(position.y()));
        m_bridge.RunScript(statement);
        break;
    }
    }
}

void Skin::connectElement(SkinControl& control)
{
    control.setOpensMenu();
    const auto on = [this, &control](auto reactionOf) {
        return [this, &control, reactionOf](auto... arguments) {
            SkinObject* record = recordOf(control);
            if (record != nullptr) reactionOf(*record->pointer, arguments...);
        };
    };
    connect(&control, &SkinControl::pressed, this,
            on([this, &control](ElementPointer& p, PointerButton b, QPoint at) {
                emit userActed();
                react(control, p.press(b), at);
            }));
    connect(
        &control, &SkinControl::moved, this,
        on([this, &control](ElementPointer& p, bool held, QPoint at) { react(control, p.move(held), at); }));
    connect(&control, &SkinControl::released, this,
            on([this, &control](ElementPointer& p, PointerButton b, QPoint at) {
                react(control, p.release(b), at);
            }));
    connect(&control, &SkinControl::clicked, this,
            on([this, &control](ElementPointer& p) { react(control, p.click(), {}); }));
    connect(&control, &SkinControl::doubleClicked, this,
            on([this, &control](ElementPointer& p) { react(control, p.doubleClick(), {}); }));
    connect(&control, &SkinControl::entered, this,
            on([this, &control](ElementPointer& p) { react(control, p.enter(), {}); }));
    connect(&control, &SkinControl::left, this,
            on([this, &control](ElementPointer& p) { react(control, p.leave(), {}); }));
    connect(&control, &SkinControl::pressedWhileResting, this, [this] {
        setActive(true);
        m_host.activateProgram();
    });
}

} // namespace skin
