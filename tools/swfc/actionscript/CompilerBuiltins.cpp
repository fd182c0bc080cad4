#include "swfc/actionscript/Compiler.h"

#include <algorithm>

namespace swfc::actionscript
{
namespace
{

constexpr std::size_t kAnyNumber = 99;

struct SimpleBuiltin {
    std::string_view name;
    Action action;
    std::size_t arguments;
    bool producesValue;
    int since;
};
/// Functions that are one action over their arguments in order.
constexpr SimpleBuiltin kSimpleBuiltins[] = {
    {"play", Action::Play, 0, false, 4},
    {"stop", Action::Stop, 0, false, 4},
    {"nextFrame", Action::NextFrame, 0, false, 4},
    {"prevFrame", Action::PreviousFrame, 0, false, 4},
    {"toggleHighQuality", Action::ToggleQuality, 0, false, 4},
    {"stopAllSounds", Action::StopSounds, 0, false, 4},
    {"stopDrag", Action::EndDrag, 0, false, 4},
    {"trace", Action::Trace, 1, false, 4},
    {"getTimer", Action::GetTime, 0, true, 4},
    {"random", Action::RandomNumber, 1, true, 4},
    {"int", Action::ToInteger, 1, true, 4},
    {"length", Action::StringLength, 1, true, 4},
    {"substring", Action::StringExtract, 3, true, 4},
    {"mblength", Action::MbStringLength, 1, true, 4},
    {"mbsubstring", Action::MbStringExtract, 3, true, 4},
    {"ord", Action::CharToAscii, 1, true, 4},
    {"chr", Action::AsciiToChar, 1, true, 4},
    {"mbord", Action::MbCharToAscii, 1, true, 4},
    {"mbchr", Action::MbAsciiToChar, 1, true, 4},
    {"eval", Action::GetVariable, 1, true, 4},
    {"set", Action::SetVariable, 2, false, 4},
    {"removeMovieClip", Action::RemoveSprite, 1, false, 4},
    {"call", Action::Call, 1, false, 4},
    {"targetPath", Action::TargetPath, 1, true, 5},
    {"Number", Action::ToNumber, 1, true, 5},
    {"String", Action::ToString, 1, true, 5},
};

constexpr std::string_view kOtherBuiltins[] = {
    "gotoAndPlay",  "gotoAndStop",   "getURL",      "fscommand",          "loadMovie",
    "loadMovieNum", "loadVariables", "unloadMovie", "loadVariablesNum",   "unloadMovieNum",
    "getProperty",  "setProperty",   "startDrag",   "duplicateMovieClip", "getVersion",
};

constexpr std::string_view kProperties[] = {
    "_x",          "_y",     "_xscale",      "_yscale",    "_currentframe", "_totalframes",  "_alpha",
    "_visible",    "_width", "_height",      "_rotation",  "_target",       "_framesloaded", "_name",
    "_droptarget", "_url",   "_highquality", "_focusrect", "_soundbuftime", "_quality",      "_xmouse",
    "_ymouse",
};

/// Depths that scripts name count from here.
constexpr double kScriptDepthBase = 16384;

bool sameName(std::string_view a, std::string_view b, int version)
{
    if (version >= 7) return a == b;
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

} // namespace

std::optional<int> propertyNumber(std::string_view name, int version)
{
    const int known = version == 4 ? 19 : static_cast<int>(std::size(kProperties));
    for (int i = 0; i < known; ++i) {
        if (sameName(kProperties[i], name, version)) return i;
    }
    return {};
}

bool Compiler::countArguments(const Expr* call, std::size_t least, std::size_t most)
{
    const std::size_t count = call->list.size();
    if (count >= least && count <= most) return true;
    std::string wanted = std::to_string(least);
    if (most == kAnyNumber)
        wanted += " or more";
    else if (most != least)
        wanted += " to " + std::to_string(most);
    error(call->where, wanted + (wanted == "1" ? " argument" : " arguments") + " to '" + call->a->text +
                           "', found " + std::to_string(count));
    return false;
}

/// Functions that the player knows as actions. As methods (clip.play()) they are ordinary calls.
Compiler::Produced Compiler::builtin(const Expr* call, Wanted wanted)
{
    if (call->a->kind != ExprKind::Name) return Produced::NotBuiltin;
    const std::string& name = call->a->text;
    const auto is = [&](std::string_view known) { return sameName(name, known, m_version); };
    // A local function or a method of the class comes first.
    if (resolve(name).kind != Resolved::Kind::Variable) return Produced::NotBuiltin;
    for (const SimpleBuiltin& known : kSimpleBuiltins) {
        if (!is(known.name) || m_version < known.since) continue;
        if (!countArguments(call, known.arguments, known.arguments)) return Produced::Nothing;
        for (const Expr* argument : call->list) value(argument);
        m_asm.at(call->where);
        m_asm.op(known.action);
        return known.producesValue ? Produced::Value : Produced::Nothing;
    }
    const auto other = std::find_if(std::begin(kOtherBuiltins), std::end(kOtherBuiltins), is);
    if (other == std::end(kOtherBuiltins)) return Produced::NotBuiltin;
    if (*other == "gotoAndPlay") return gotoFrame(call, true);
    if (*other == "gotoAndStop") return gotoFrame(call, false);
    if (*other == "startDrag") return startDrag(call);
    if (*other == "getVersion") {
        if (!countArguments(call, 0, 0)) return Produced::Nothing;
        m_asm.push("/:$version");
        m_asm.op(Action::GetVariable);
        return Produced::Value;
    }
    if (*other == "getProperty" || *other == "setProperty") {
        const bool set = *other == "setProperty";
        if (!countArguments(call, set ? 3 : 2, set ? 3 : 2)) return Produced::Nothing;
        const Expr* property = call->list[1];
        const bool named = property->kind == ExprKind::Name || property->kind == ExprKind::String;
        const auto number = named ? propertyNumber(property->text, m_version) : std::nullopt;
        value(call->list[0]);
        if (number && m_version == 4)
            m_asm.push(std::to_string(*number));
        else if (number)
            m_asm.push(static_cast<double>(*number));
        else if (property->kind == ExprKind::Name)
            error(property->where, "a property such as _x, found '" + property->text + "'");
        else
            value(property);
        if (set) value(call->list[2]);
        m_asm.op(set ? Action::SetProperty : Action::GetProperty);
        return set ? Produced::Nothing : Produced::Value;
    }
    if (*other == "duplicateMovieClip") {
        if (!countArguments(call, 3, 3)) return Produced::Nothing;
        value(call->list[0]);
        value(call->list[1]);
        const Expr* depth = call->list[2];
        if (depth->kind == ExprKind::Number && m_version > 4) {
            m_asm.push(depth->number + kScriptDepthBase);
        } else {
            if (m_version == 4)
                m_asm.push(numberText(kScriptDepthBase));
            else
                m_asm.push(kScriptDepthBase);
            value(depth);
            m_asm.op(Action::Add);
        }
        m_asm.op(Action::CloneSprite);
        return Produced::Nothing;
    }
    static_cast<void>(wanted);
    return loadOrUnload(call, *other);
}

Compiler::Produced Compiler::gotoFrame(const Expr* call, bool play)
{
    if (!countArguments(call, 1, 2)) return Produced::Nothing;
    const Expr* frame = call->list.back(); // a scene may stand before it; movies have one
    if (frame->kind == ExprKind::Number && frame->number >= 1 && frame->number <= 65536) {
        m_asm.record(Action::GotoFrame, Assembler::Payload().u16(static_cast<int>(frame->number) - 1));
        if (play) m_asm.op(Action::Play);
    } else if (frame->kind == ExprKind::String) {
        m_asm.record(Action::GotoLabel, Assembler::Payload().text(frame->text));
        if (play) m_asm.op(Action::Play);
    } else {
        value(frame);
        m_asm.record(Action::GotoFrame2, Assembler::Payload().u8(play ? 1 : 0));
    }
    return Produced::Nothing;
}

/// @returns how variables are sent along: 0 not at all, 1 in the address, 2 as a document.
int Compiler::sendMethod(const Expr* call, std::size_t index)
{
    if (call->list.size() <= index) return 0;
    const Expr* method = call->list[index];
    if (method->kind == ExprKind::String && sameName(method->text, "GET", 6)) return 1;
    if (method->kind == ExprKind::String && sameName(method->text, "POST", 6)) return 2;
    error(method->where, "\"GET\" or \"POST\"");
    return 0;
}

void Compiler::levelName(const Expr* level)
{
    if (level->kind == ExprKind::Number) {
        m_asm.push("_level" + numberText(level->number));
        return;
    }
    m_asm.push("_level");
    value(level);
    m_asm.op(Action::StringAdd);
}

Compiler::Produced Compiler::loadOrUnload(const Expr* call, std::string_view name)
{
    constexpr int kTarget = 0x40, kVariables = 0x80;
    const auto& list = call->list;
    if (name == "fscommand") {
        if (!countArguments(call, 1, 2)) return Produced::Nothing;
        if (list[0]->kind == ExprKind::String) {
            m_asm.push("FSCommand:" + list[0]->text);
        } else {
            m_asm.push("FSCommand:");
            value(list[0]);
            m_asm.op(Action::StringAdd);
        }
        if (list.size() > 1)
            value(list[1]);
        else
            m_asm.push("");
        m_asm.record(Action::GetUrl2, Assembler::Payload().u8(0));
        return Produced::Nothing;
    }
    if (name == "getURL") {
        if (!countArguments(call, 1, 3)) return Produced::Nothing;
        const bool literal = list[0]->kind == ExprKind::String && list.size() < 3 &&
                             (list.size() < 2 || list[1]->kind == ExprKind::String);
        if (literal) {
            m_asm.record(Action::GetUrl,
                         Assembler::Payload().text(list[0]->text).text(list.size() > 1 ? list[1]->text : ""));
            return Produced::Nothing;
        }
        value(list[0]);
        if (list.size() > 1)
            value(list[1]);
        else
            m_asm.push("");
        m_asm.record(Action::GetUrl2, Assembler::Payload().u8(sendMethod(call, 2)));
        return Produced::Nothing;
    }
    const bool unload = name.starts_with("unload"), level = name.ends_with("Num");
    const bool variables = name.starts_with("loadVariables");
    if (!countArguments(call, unload ? 1 : 2, unload ? 1 : 3)) return Produced::Nothing;
    const Expr* target = list[unload ? 0 : 1];
    if (unload)
        m_asm.push("");
    else
        value(list[0]);
    const bool byLevel = level || target->kind == ExprKind::Number;
    if (byLevel)
        levelName(target);
    else
        value(target);
    const int flags =
        (variables ? kVariables : 0) | (byLevel ? 0 : kTarget) | (unload ? 0 : sendMethod(call, 2));
    m_asm.record(Action::GetUrl2, Assembler::Payload().u8(flags));
    return Produced::Nothing;
}

/// startDrag(target, lock, left, top, right, bottom)
Compiler::Produced Compiler::startDrag(const Expr* call)
{
    const auto& list = call->list;
    if (!countArguments(call, 1, 6)) return Produced::Nothing;
    if (list.size() > 2 && list.size() < 6) {
        error(call->where, "1, 2 or 6 arguments to 'startDrag', found " + std::to_string(list.size()));
        return Produced::Nothing;
    }
    const bool bounded = list.size() == 6;
    const auto flag = [&](bool on) {
        if (m_version == 4)
            m_asm.push(on ? "1" : "0");
        else
            m_asm.push(on ? 1.0 : 0.0);
    };
    if (bounded) {
        for (std::size_t i = 2; i < 6; ++i) value(list[i]);
    }
    flag(bounded);
    if (list.size() > 1)
        value(list[1]);
    else
        flag(false);
    value(list[0]);
    m_asm.op(Action::StartDrag);
    return Produced::Nothing;
}

} // namespace swfc::actionscript
