#include "swfc/source/Handlers.h"
#include "swfc/source/MovieBuilder.h"

namespace swfc::source
{
namespace
{

using output::Tag;

} // namespace

void MovieBuilder::buttonState(const Element& element, output::BitWriter& out)
{
    Attributes attributes(element, m_diagnostics);
    const Character* character = lookUp(element, attributes.required("id"));
    const std::string on = attributes.text("on", "up over down hit");
    std::uint32_t states = 0;
    std::size_t at = 0;
    while ((at = on.find_first_not_of(' ', at)) != std::string::npos) {
        const std::size_t end = std::min(on.find(' ', at), on.size());
        const std::string word = on.substr(at, end - at);
        const std::uint32_t state = word == "up"     ? 1
                                    : word == "over" ? 2
                                    : word == "down" ? 4
                                    : word == "hit"  ? 8
                                                     : 0;
        if (state == 0)
            attributes.error("expected up, over, down or hit in on of <state>, found '" + word + "'");
        states |= state;
        at = end;
    }
    const int depth = attributes.integer("depth", 1, 1, 16383);
    Placement placed;
    placement(attributes, placed);
    const int blend = attributes.choice("blend", {"", "normal", "layer", "multiply", "screen", "lighten",
                                                  "darken", "difference", "add", "subtract", "invert",
                                                  "alpha", "erase", "overlay", "hardlight"});
    const auto used = filters(element);
    if (blend > 0 || !used.empty()) need(8, element, "filters and blend modes");
    out.u8(states | (blend > 0 ? 0x20U : 0U) | (used.empty() ? 0U : 0x10U));
    out.u16(character == nullptr ? 0 : character->id);
    out.u16(static_cast<std::uint32_t>(depth));
    writeMatrix(out, placed.toMatrix());
    writeColorTransform(out, placed.color);
    if (!used.empty()) writeFilters(out, used);
    if (blend > 0) out.u8(static_cast<std::uint32_t>(blend));
}

void MovieBuilder::buttonSound(const Element& element, std::map<int, std::vector<std::uint8_t>>& sounds)
{
    Attributes attributes(element, m_diagnostics);
    const int when = attributes.choice("on", {"rollOut", "rollOver", "press", "release"});
    const Character* sound = lookUp(element, attributes.required("sound"), CharacterKind::Sound);
    const output::SoundCue cue = soundCue(attributes);
    if (sound == nullptr) return;
    output::BitWriter out;
    out.u16(sound->id);
    writeSoundCue(out, cue);
    sounds[when] = out.bytes();
}

void MovieBuilder::buttonElement(const Element& element)
{
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Button);
    const bool menu = attributes.flag("menu");
    output::BitWriter records;
    std::vector<std::uint8_t> actions;
    std::map<int, std::vector<std::uint8_t>> sounds;
    for (const auto& child : element.children) {
        if (child->name == "state") {
            buttonState(*child, records);
        } else if (child->name == "sound") {
            buttonSound(*child, sounds);
        } else if (child->name == "script") {
            const Attributes none(*child, m_diagnostics);
            if (!needOlderScript(*child, "handlers of buttons")) continue;
            actionscript::ScriptContext context = scriptContext();
            if (!actions.empty()) error(*child, "expected one <script> in <button>");
            actions = encodeButtonHandlers(actionscript::compileHandlers(scriptText(*child), context), menu,
                                           m_diagnostics);
        } else {
            error(*child, "expected <state>, <sound> or <script> in <button>, found <" + child->name + ">");
        }
    }
    if (!id) return;
    records.u8(0);
    constexpr std::size_t kOffsetBytes = 2;
    if (records.size() + kOffsetBytes > 65535) error(element, "expected less than 64 KB of states");
    output::BitWriter out;
    out.u16(*id);
    out.u8(menu ? 1 : 0);
    out.u16(actions.empty() ? 0 : static_cast<std::uint32_t>(records.size() + kOffsetBytes));
    out.append(records.bytes());
    out.append(actions);
    definitions().add(Tag::DefineButton2, out);
    if (!sounds.empty()) {
        output::BitWriter cues;
        cues.u16(*id);
        for (int i = 0; i < 4; ++i) {
            const auto cue = sounds.find(i);
            if (cue == sounds.end())
                cues.u16(0);
            else
                cues.append(cue->second);
        }
        definitions().add(Tag::DefineButtonSound, cues);
    }
    scale9(attributes, *id);
}

} // namespace swfc::source
