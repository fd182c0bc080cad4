#include "flash/stage/TextField.h"

#include "base/TextCodes.h"
#include "flash/render/Canvas.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Stage.h"

namespace flash::stage
{

TextField::TextField(Stage& stage, MoviePtr movie, const swf::EditText& definition)
    : Node(stage, NodeKind::TextField), m_definition(definition)
{
    m_movie = std::move(movie);
    readOnly = definition.readOnly;
    selectable = definition.selectable;
    password = definition.password;
    m_bounds = definition.bounds;
    m_text = base::utf16FromUtf8(Stage::textOf(m_movie, definition.initialText));
    m_variable = Stage::textOf(m_movie, definition.variableName);
}

NodePtr TextField::makeDynamic(Stage& stage, const MoviePtr& movie, const swf::Rect& boundsTwips)
{
    swf::EditText definition;
    definition.bounds = boundsTwips;
    definition.readOnly = true;
    definition.selectable = true;
    return std::make_shared<TextField>(stage, movie, definition);
}

void TextField::setText(std::u16string text)
{
    if (text == m_text) return;
    m_text = std::move(text);
    contentChanged();
}

void TextField::setVariable(std::string path)
{
    m_variable = std::move(path);
    m_lastValue.reset();
    syncVariable();
}

void TextField::syncVariable()
{
    Clip* scope = parentClip();
    if (m_variable.empty() || !scope) return;
    const std::optional<std::string> value = m_stage.script().variable(*scope, m_variable);
    if (!value) {
        if (!m_lastValue && !m_text.empty()) {
            std::string own = base::utf8FromUtf16(m_text);
            if (m_stage.script().setVariable(*scope, m_variable, own)) m_lastValue = std::move(own);
        }
        return;
    }
    if (value == m_lastValue) return;
    m_lastValue = value;
    setText(base::utf16FromUtf8(*value));
}

swf::Rect TextField::bounds(Extent) { return m_bounds; }

bool TextField::hitsShape(swf::Point stagePoint)
{
    return rectContains(*this, bounds(Extent::WithStrokes), stagePoint);
}

void TextField::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform&)
{
    if (!m_definition.border) return;
    canvas.fillRect(m_bounds, toDevice, {255, 255, 255, 255});
    canvas.strokeRect(m_bounds, toDevice, {0, 0, 0, 255});
}

void TextField::select(std::size_t begin, std::size_t end)
{
    m_anchor = std::min(begin, m_text.size());
    m_caret = std::min(end, m_text.size());
    invalidate();
}

void TextField::input(char32_t) {}
void TextField::press(swf::Point) {}
void TextField::drag(swf::Point) {}

} // namespace flash::stage
