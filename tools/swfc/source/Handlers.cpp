#include "swfc/source/Handlers.h"

#include "swfc/output/BitWriter.h"

namespace swfc::source
{
namespace
{

struct EventInfo {
    const char* name;
    std::uint32_t clip;   // flag in a clip's handler; 0: clips do not have it
    std::uint32_t button; // conditions of a button's handler
    bool clipSyntax;      // onClipEvent, not on
    int clipSince;
    std::uint32_t menu; // conditions that buttons used as menu items have besides
};
// clang-format off
constexpr EventInfo kEvents[] = {
    // name            clip        button  onClipEvent since menu
    {"load",           1U << 0,    0,      true,       5,    0},
    {"enterFrame",     1U << 1,    0,      true,       5,    0},
    {"unload",         1U << 2,    0,      true,       5,    0},
    {"mouseMove",      1U << 3,    0,      true,       5,    0},
    {"mouseDown",      1U << 4,    0,      true,       5,    0},
    {"mouseUp",        1U << 5,    0,      true,       5,    0},
    {"keyDown",        1U << 6,    0,      true,       5,    0},
    {"keyUp",          1U << 7,    0,      true,       5,    0},
    {"data",           1U << 8,    0,      true,       5,    0},
    {"initialize",     1U << 9,    0,      true,       6,    0},
    {"construct",      1U << 18,   0,      true,       7,    0},
    {"press",          1U << 10,   4,      false,      6,    0},
    {"release",        1U << 11,   8,      false,      6,    0},
    {"releaseOutside", 1U << 12,   64,     false,      6,    0},
    {"rollOver",       1U << 13,   1,      false,      6,    0},
    {"rollOut",        1U << 14,   2,      false,      6,    0},
    {"dragOver",       1U << 15,   32,     false,      6,    128},
    {"dragOut",        1U << 16,   16,     false,      6,    256},
    {"keyPress",       1U << 17,   0,      false,      6,    0},
};
struct KeyName {
    const char* name;
    int code;
};
constexpr KeyName kKeys[] = {
    {"<Left>", 1}, {"<Right>", 2}, {"<Home>", 3}, {"<End>", 4}, {"<Insert>", 5}, {"<Delete>", 6},
    {"<Backspace>", 8}, {"<Enter>", 13}, {"<Up>", 14}, {"<Down>", 15}, {"<PageUp>", 16}, {"<PageDown>", 17},
    {"<Tab>", 18}, {"<Escape>", 19}, {"<Space>", 32},
};
// clang-format on

const EventInfo* eventNamed(const actionscript::CompiledHandler& handler, const std::string& name,
                            Diagnostics& diagnostics)
{
    std::string known;
    for (const EventInfo& event : kEvents) {
        if (event.clipSyntax != handler.clipEvent) continue;
        if (name == event.name) return &event;
        known += (known.empty() ? "" : ", ") + std::string(event.name);
    }
    diagnostics.error(handler.where, "expected one of the events " + known + ", found '" + name + "'");
    return nullptr;
}

int keyCode(const actionscript::CompiledHandler& handler, Diagnostics& diagnostics)
{
    for (const KeyName& key : kKeys) {
        if (handler.key == key.name) return key.code;
    }
    if (handler.key.size() == 1 && handler.key[0] >= 32 && handler.key[0] < 127) return handler.key[0];
    diagnostics.error(handler.where,
                      "expected a key such as \"<Left>\" or \"a\", found \"" + handler.key + "\"");
    return 0;
}

} // namespace

std::vector<std::uint8_t> encodeClipHandlers(const std::vector<actionscript::CompiledHandler>& handlers,
                                             int version, Diagnostics& diagnostics)
{
    output::BitWriter records;
    std::uint32_t all = 0;
    const auto flags = [&](output::BitWriter& out, std::uint32_t value) {
        version >= 6 ? out.u32(value) : out.u16(value);
    };
    for (const auto& handler : handlers) {
        std::uint32_t events = 0;
        for (const std::string& name : handler.events) {
            const EventInfo* event = eventNamed(handler, name, diagnostics);
            if (event == nullptr) continue;
            if (version < event->clipSince) {
                diagnostics.error(handler.where, "expected version " + std::to_string(event->clipSince) +
                                                     " or later for '" + name +
                                                     "' of a clip, found version " + std::to_string(version));
            }
            events |= event->clip;
        }
        const bool hasKey = !handler.key.empty();
        all |= events;
        flags(records, events);
        records.u32(static_cast<std::uint32_t>(handler.actions.size() + (hasKey ? 1 : 0)));
        if (hasKey) records.u8(static_cast<std::uint32_t>(keyCode(handler, diagnostics)));
        records.append(handler.actions);
    }
    output::BitWriter out;
    out.u16(0);
    flags(out, all);
    out.append(records.bytes());
    flags(out, 0);
    return std::move(out.bytes());
}

std::vector<std::uint8_t> encodeButtonHandlers(const std::vector<actionscript::CompiledHandler>& handlers,
                                               bool menu, Diagnostics& diagnostics)
{
    constexpr int kKeyShift = 9;
    constexpr std::size_t kHeaderBytes = 4;
    output::BitWriter out;
    for (std::size_t i = 0; i < handlers.size(); ++i) {
        const auto& handler = handlers[i];
        std::uint32_t conditions = 0;
        if (handler.clipEvent)
            diagnostics.error(handler.where, "expected 'on' in a button, found 'onClipEvent'");
        for (const std::string& name : handler.events) {
            if (handler.clipEvent) break;
            const EventInfo* event = eventNamed(handler, name, diagnostics);
            if (event != nullptr) conditions |= event->button | (menu ? event->menu : 0);
        }
        if (!handler.key.empty())
            conditions |= static_cast<std::uint32_t>(keyCode(handler, diagnostics)) << kKeyShift;
        const bool last = i + 1 == handlers.size();
        const std::size_t size = handler.actions.size() + kHeaderBytes;
        if (size > 65535) diagnostics.error(handler.where, "expected a handler of less than 64 KB of code");
        out.u16(last ? 0 : static_cast<std::uint32_t>(size));
        out.u16(conditions);
        out.append(handler.actions);
    }
    return std::move(out.bytes());
}

} // namespace swfc::source
