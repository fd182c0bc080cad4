#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/stage/TextFonts.h"

#include <algorithm>
#include <tuple>

// Fonts as scripts see them, and the lists of constants around texts.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

class FontObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    FontObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    stage::MoviePtr movie; ///< null: none, or one of the machine
    std::uint16_t id = 0;
    std::string deviceName;
    [[nodiscard]] const swf::Font* font() const
    {
        const swf::Character* character = movie ? movie->character(id) : nullptr;
        return character != nullptr ? std::get_if<swf::Font>(&character->data) : nullptr;
    }
};
FontObject& self(Call& call) { return selfAs<FontObject>(call, "flash.text.Font"); }

Value construct(Call& call)
{
    auto& made = self(call);
    made.id = Player::of(call.vm).characterOf(made.traits()->cls, made.movie);
    return {};
}
Value fontName(Call& call)
{
    auto& object = self(call);
    if (const swf::Font* font = object.font()) {
        // Old files end the name with a zero.
        std::string_view name = font->name;
        return Value(call.vm.string(name.substr(0, name.find('\0'))));
    }
    return object.deviceName.empty() ? Value::null()
                                     : Value(call.vm.string(std::string_view(object.deviceName)));
}
Value fontStyle(Call& call)
{
    const swf::Font* font = self(call).font();
    if (font == nullptr)
        return self(call).deviceName.empty() ? Value::null() : Value(call.vm.name("regular").string());
    return Value(call.vm
                     .name(font->bold && font->italic ? "boldItalic"
                           : font->bold               ? "bold"
                           : font->italic             ? "italic"
                                                      : "regular")
                     .string());
}
Value fontType(Call& call)
{
    if (self(call).font() != nullptr) return Value(call.vm.name("embedded").string());
    return self(call).deviceName.empty() ? Value::null() : Value(call.vm.name("device").string());
}
Value hasGlyphs(Call& call)
{
    const swf::Font* font = self(call).font();
    if (font == nullptr) return false;
    return std::ranges::all_of(call.vm.text(call.arg(0)),
                               [&](char16_t unit) { return font->glyphByCode.contains(unit); });
}

Value enumerateFonts(Call& call)
{
    Vm& vm = call.vm;
    auto* list = static_cast<ArrayObject*>(vm.newArray());
    ClassObject* cls = vm.nativeClass("flash.text::Font");
    const auto add = [&](const stage::MoviePtr& movie, std::uint16_t id, const std::string& device) {
        auto* font = as<FontObject>(Value(vm.instantiate(cls)));
        font->movie = movie;
        font->id = id;
        font->deviceName = device;
        list->push(vm, Value(font));
    };
    for (const auto& [movie, id] : Player::of(vm).fontsSeenFrom(vm.currentDomain())) add(movie, id, {});
    if (call.has(0) && vm.toBoolean(call.arg(0))) {
        for (const std::string& name : stage::TextFonts::installed()) add(nullptr, 0, name);
    }
    return Value(list);
}
Value registerFont(Call& call)
{
    auto* cls = as<ClassObject>(call.arg(0));
    if (cls == nullptr) throwNullParameter(call.vm, "font");
    bool isFont = false;
    for (const ClassObject* at = cls; at != nullptr; at = at->base)
        isFont = isFont || at == call.vm.nativeClass("flash.text::Font");
    if (!isFont)
        call.vm.throwError(ErrorClass::Argument, 1508, "The value specified for argument font is invalid.");
    stage::MoviePtr movie;
    const std::uint16_t id = Player::of(call.vm).characterOf(cls, movie);
    if (id != 0) Player::of(call.vm).registerFont(movie, id);
    return {};
}

constexpr NativeMember kFont[] = {
    {"enumerateFonts", Kind::Static, &enumerateFonts, 0, 1},
    {"registerFont", Kind::Static, &registerFont, 1, 1},
    {"fontName", Kind::Getter, &fontName, 0, 0, nullptr, "String"},
    {"fontStyle", Kind::Getter, &fontStyle, 0, 0, nullptr, "String"},
    {"fontType", Kind::Getter, &fontType, 0, 0, nullptr, "String"},
    {"hasGlyphs", Kind::Method, &hasGlyphs, 1, 1},
};

Value assignSlots(Call& call)
{
    Object& object = *call.self.object();
    for (std::uint32_t i = 0; i < call.count && i < object.slotCount(); ++i)
        call.vm.setSlotTyped(object, i, call.args[i]);
    return {};
}

using C = NativeConstant;
constexpr C kAntiAlias[] = {{"ADVANCED", 0, "advanced"}, {"NORMAL", 0, "normal"}};
constexpr C kStyles[] = {{"BOLD", 0, "bold"},
                         {"BOLD_ITALIC", 0, "boldItalic"},
                         {"ITALIC", 0, "italic"},
                         {"REGULAR", 0, "regular"}};
constexpr C kTypes[] = {
    {"DEVICE", 0, "device"}, {"EMBEDDED", 0, "embedded"}, {"EMBEDDED_CFF", 0, "embeddedCFF"}};
constexpr C kGridFits[] = {{"NONE", 0, "none"}, {"PIXEL", 0, "pixel"}, {"SUBPIXEL", 0, "subpixel"}};
constexpr C kColors[] = {{"DARK_COLOR", 0, "dark"}, {"LIGHT_COLOR", 0, "light"}};
constexpr C kDisplays[] = {{"BLOCK", 0, "block"}, {"INLINE", 0, "inline"}};
constexpr C kDisplayModes[] = {{"CRT", 0, "crt"}, {"DEFAULT", 0, "default"}, {"LCD", 0, "lcd"}};
constexpr C kInteractions[] = {{"NORMAL", 0, "normal"}, {"SELECTION", 0, "selection"}};
constexpr C kAligns[] = {{"CENTER", 0, "center"}, {"END", 0, "end"},     {"JUSTIFY", 0, "justify"},
                         {"LEFT", 0, "left"},     {"RIGHT", 0, "right"}, {"START", 0, "start"}};
constexpr C kAutoSizes[] = {
    {"CENTER", 0, "center"}, {"LEFT", 0, "left"}, {"NONE", 0, "none"}, {"RIGHT", 0, "right"}};
constexpr C kFieldTypes[] = {{"DYNAMIC", 0, "dynamic"}, {"INPUT", 0, "input"}};

constexpr NativeClass record(std::string_view name, std::int8_t arguments, std::string_view slots)
{
    return {.package = "flash.text",
            .name = name,
            .base = {},
            .constructor = &assignSlots,
            .minArguments = arguments,
            .maxArguments = arguments,
            .slots = slots};
}

constexpr NativeClass kClasses[] = {
    {.package = "flash.text",
     .name = "Font",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<FontObject>,
     .members = kFont},
    record("TextLineMetrics", 6,
           "x:Number width:Number height:Number ascent:Number descent:Number leading:Number"),
    record("TextRun", 3, "beginIndex:int endIndex:int textFormat:*"),
    record("CSMSettings", 3, "fontSize:Number insideCutoff:Number outsideCutoff:Number"),
    constantsOf("flash.text", "AntiAliasType", kAntiAlias),
    constantsOf("flash.text", "FontStyle", kStyles),
    constantsOf("flash.text", "FontType", kTypes),
    constantsOf("flash.text", "GridFitType", kGridFits),
    constantsOf("flash.text", "TextColorType", kColors),
    constantsOf("flash.text", "TextFormatDisplay", kDisplays),
    constantsOf("flash.text", "TextDisplayMode", kDisplayModes),
    constantsOf("flash.text", "TextInteractionMode", kInteractions),
    constantsOf("flash.text", "TextFormatAlign", kAligns),
    constantsOf("flash.text", "TextFieldAutoSize", kAutoSizes),
    constantsOf("flash.text", "TextFieldType", kFieldTypes),
};

} // namespace

std::vector<std::pair<stage::MoviePtr, std::uint16_t>> Player::fontsSeenFrom(const Domain* domain) const
{
    std::vector<std::pair<stage::MoviePtr, std::uint16_t>> result;
    for (const auto& loaded : m_movies) {
        if (loaded->domain != domain) continue;
        for (const auto& [id, cls] : loaded->symbols) {
            const swf::Character* character = loaded->movie->character(id);
            if (character != nullptr && std::holds_alternative<swf::Font>(character->data))
                result.emplace_back(loaded->movie, id);
        }
    }
    result.insert(result.end(), m_registeredFonts.begin(), m_registeredFonts.end());
    return result;
}

void Player::registerFont(const stage::MoviePtr& movie, std::uint16_t id)
{
    constexpr std::size_t kMaxFonts = 1000;
    const auto faceOf = [](const auto& entry) {
        const auto& font = std::get<swf::Font>(entry.first->character(entry.second)->data);
        return std::tuple(std::string_view(font.name), font.bold, font.italic);
    };
    const std::pair entry(movie, id);
    const swf::Character* character = movie->character(id);
    if (character == nullptr || !std::holds_alternative<swf::Font>(character->data)) return;
    // Of two with one name and style the first stays.
    if (m_registeredFonts.size() >= kMaxFonts ||
        std::ranges::find(m_registeredFonts, faceOf(entry), faceOf) != m_registeredFonts.end())
        return;
    m_registeredFonts.push_back(entry);
    m_stage->textFonts().share(movie, id);
}

NativeLibrary fontLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
