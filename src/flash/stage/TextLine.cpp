#include "flash/stage/TextLine.h"

#include "flash/stage/DisplayList.h"
#include "flash/stage/Drawing.h"
#include "flash/stage/Stage.h"

namespace flash::stage
{

TextLine::TextLine(Stage& stage) : Clip(stage, stage.movie(), stage.displayList().emptyTimeline()) {}

void TextLine::setLine(std::shared_ptr<const render::ComposedLine> line, const swf::Matrix& toNode)
{
    invalidate();
    m_line = std::move(line);
    m_toNode = toNode;
    // What is drawn of a clip says how large it is and where it is hit: a box that is not seen.
    Drawing& box = drawing();
    box.clear();
    if (m_line) {
        const double right = m_line->textWidth, top = -m_line->totalAscent, bottom = m_line->totalDescent;
        swf::FillStyle clear;
        clear.color.a = 0;
        box.moveTo(toNode.map({0, top}));
        box.beginFill(clear);
        box.lineTo(toNode.map({right, top}));
        box.lineTo(toNode.map({right, bottom}));
        box.lineTo(toNode.map({0, bottom}));
        box.endFill();
    }
    contentChanged();
}

void TextLine::draw(render::Canvas& canvas, const swf::Matrix& toDevice, const swf::ColorTransform& color)
{
    if (m_line) m_line->draw(canvas, toDevice * m_toNode, color);
}

} // namespace flash::stage
