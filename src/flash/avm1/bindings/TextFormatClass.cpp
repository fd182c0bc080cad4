#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/TextFormatObject.h"
#include "flash/avm1/classes/ClassTable.h"
#include "flash/stage/TextFonts.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;
using Align = swf::EditText::Align;
using Format = stage::PartialTextFormat;

/// How the genuine player makes whole numbers of what scripts set: up to version 7 like everywhere else in
/// scripts; from 8 on by the processor's own conversion, whose answer to everything it cannot express is the
/// smallest number.
int wholeNumber(Vm& vm, double number)
{
    if (vm.version() < 8) return toInt32(number);
    constexpr double kMin = -2147483648.0, kMax = 2147483647.0;
    if (!(number >= kMin && number <= kMax)) return static_cast<int>(kMin);
    return static_cast<int>(number);
}

/// Every setter asks its argument for two numbers and a text, whichever it then takes: scripts see valueOf
/// called twice and toString once. Numbers are the first one before version 8 and the second from then on.
struct Taken {
    explicit Taken(Call& call)
        : first(toNumber(call.vm, call.arg(0))), second(toNumber(call.vm, call.arg(0))),
          text(toText(call.vm, call.arg(0)))
    {
    }
    [[nodiscard]] double number(const Vm& vm) const { return vm.version() < 8 ? first : second; }
    double first, second;
    std::u16string text;
};

// ---- one getter and one setter for each kind of attribute -------------------------------------------------

template <auto Member>
Value getFlag(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const std::optional<bool>& flag = self->format.*Member;
    return flag ? Value(*flag) : Value::null();
}
template <auto Member>
Value setFlag(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken asked(call);
    if (call.arg(0).isNullish())
        (self->format.*Member).reset();
    else
        self->format.*Member = toBoolean(call.vm, call.arg(0));
    return {};
}

template <auto Member>
Value getText(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const auto& text = self->format.*Member;
    if (!text) return Value::null();
    if constexpr (std::is_same_v<std::decay_t<decltype(*text)>, std::string>)
        return StageBinding::of(call).utf8(*text);
    else
        return call.vm.string(*text);
}
template <auto Member>
Value setText(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken taken(call);
    auto& text = self->format.*Member;
    if (call.arg(0).isNullish()) {
        text.reset();
        return {};
    }
    if constexpr (std::is_same_v<std::decay_t<decltype(*text)>, std::string>)
        text = StageBinding::toUtf8(taken.text);
    else
        text = taken.text;
    return {};
}

enum class Range { Signed, SignedFrom8, NeverNegative };

template <auto Member>
Value getLength(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const std::optional<double>& length = self->format.*Member;
    return length ? Value(*length / kTwips) : Value::null();
}
template <auto Member, Range range>
Value setLength(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken taken(call);
    if (call.arg(0).isNullish()) {
        (self->format.*Member).reset();
        return {};
    }
    const double number = taken.number(call.vm);
    int pixels = 0;
    const bool clamped =
        range == Range::NeverNegative || (range == Range::SignedFrom8 && call.vm.version() < 8);
    if (!clamped || number > 0 || call.vm.version() < 8) pixels = wholeNumber(call.vm, number);
    if (clamped && call.vm.version() < 8) pixels = std::max(pixels, 0);
    self->format.*Member = pixels * kTwips;
    return {};
}

Value setLetterSpacing(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken taken(call);
    if (call.arg(0).isNullish())
        self->format.letterSpacing.reset();
    else
        self->format.letterSpacing = taken.number(call.vm) * kTwips;
    return {};
}

Value getColor(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    if (!self->format.color) return Value::null();
    const swf::Rgba c = *self->format.color;
    return Value(static_cast<double>(static_cast<std::uint32_t>(c.a) << 24 | c.r << 16 | c.g << 8 | c.b));
}
Value setColor(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken taken(call);
    if (call.arg(0).isNullish()) {
        self->format.color.reset();
        return {};
    }
    const std::uint32_t value = toUint32(taken.first);
    self->format.color =
        swf::Rgba{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
                  static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 24)};
    return {};
}

constexpr std::string_view kAlignNames[] = {"left", "right", "center", "justify"};

Value getAlign(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    if (!self->format.align) return Value::null();
    return call.vm.string(kAlignNames[static_cast<std::size_t>(*self->format.align)]);
}
Value setAlign(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken taken(call);
    // What is no alignment changes nothing.
    const std::u16string name = AtomTable::fold(taken.text);
    if (name == u"left") self->format.align = Align::Left;
    if (name == u"right") self->format.align = Align::Right;
    if (name == u"center") self->format.align = Align::Center;
    if (name == u"justify") self->format.align = Align::Justify;
    return {};
}

constexpr std::string_view kDisplayNames[] = {"block", "inline", "none"};

Value getDisplay(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    return self ? Value(call.vm.string(kDisplayNames[static_cast<std::size_t>(self->display)])) : Value();
}
Value setDisplay(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken asked(call);
    // The text is asked for once more.
    const std::u16string name = AtomTable::fold(textArg(call, 0));
    self->display = name == u"none"     ? TextFormatObject::Display::None
                    : name == u"inline" ? TextFormatObject::Display::Inline
                                        : TextFormatObject::Display::Block;
    return {};
}

Value getTabStops(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    if (!self->format.tabStops) return Value::null();
    RootedValues stops(call.vm.heap());
    for (const double stop : *self->format.tabStops) stops.push_back(stop / kTwips);
    return Value(call.vm.newArray(*stops));
}
Value setTabStops(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    const Taken asked(call);
    std::optional<std::vector<double>>& stops = self->format.tabStops;
    if (call.arg(0).isNullish()) {
        stops.reset();
        return {};
    }
    Vm& vm = call.vm;
    // Anything with a length will do; a text counts as so many stops that are no numbers.
    Object* list = call.arg(0).asObject();
    constexpr int kMaxStops = 4096;
    const int length = list                     ? toInt32(vm, list->get(vm, vm.common().length))
                       : call.arg(0).isString() ? static_cast<int>(call.arg(0).string()->length())
                                                : 0;
    if (length <= 0) {
        if (stops) stops->clear();
        return {};
    }
    std::vector<double> taken;
    for (int i = 0; i < std::min(length, kMaxStops); ++i) {
        const Value entry =
            list ? list->get(vm, vm.names().fromIndex(static_cast<std::uint32_t>(i))) : Value();
        taken.push_back(wholeNumber(vm, toNumber(vm, entry)) * kTwips);
    }
    stops = std::move(taken);
    return {};
}

// clang-format off
constexpr AccessorInfo kAccessors[] = {
    {"font",          0,       &getText<&Format::font>,           &setText<&Format::font>},
    {"size",          0,       &getLength<&Format::size>,         &setLength<&Format::size, Range::Signed>},
    {"color",         0,       &getColor,                         &setColor},
    {"bold",          0,       &getFlag<&Format::bold>,           &setFlag<&Format::bold>},
    {"italic",        0,       &getFlag<&Format::italic>,         &setFlag<&Format::italic>},
    {"underline",     0,       &getFlag<&Format::underline>,      &setFlag<&Format::underline>},
    {"url",           0,       &getText<&Format::url>,            &setText<&Format::url>},
    {"target",        0,       &getText<&Format::target>,         &setText<&Format::target>},
    {"align",         0,       &getAlign,                         &setAlign},
    {"leftMargin",    0,       &getLength<&Format::leftMargin>,   &setLength<&Format::leftMargin, Range::NeverNegative>},
    {"rightMargin",   0,       &getLength<&Format::rightMargin>,  &setLength<&Format::rightMargin, Range::NeverNegative>},
    {"indent",        0,       &getLength<&Format::indent>,       &setLength<&Format::indent, Range::SignedFrom8>},
    {"leading",       0,       &getLength<&Format::leading>,      &setLength<&Format::leading, Range::SignedFrom8>},
    {"blockIndent",   0,       &getLength<&Format::blockIndent>,  &setLength<&Format::blockIndent, Range::SignedFrom8>},
    {"tabStops",      0,       &getTabStops,                      &setTabStops},
    {"bullet",        0,       &getFlag<&Format::bullet>,         &setFlag<&Format::bullet>},
    {"display",       0,       &getDisplay,                       &setDisplay},
    {"kerning",       kFrom8,  &getFlag<&Format::kerning>,        &setFlag<&Format::kerning>},
    {"letterSpacing", kFrom8,  &getLength<&Format::letterSpacing>, &setLetterSpacing},
};
// clang-format on

/// How many of the accessors the constructor takes as arguments, in their order.
constexpr std::size_t kConstructorArguments = 13;

class ExtentFonts final : public render::FontSource
{
public:
    explicit ExtentFonts(stage::Stage& stage) : m_stage(stage) {}
    render::FontFacePtr face(const render::TextStyle& style) override
    {
        return m_stage.textFonts().device(m_stage.movie(), style.font, style.bold, style.italic);
    }

private:
    stage::Stage& m_stage;
};

Value getTextExtent(Call& call)
{
    auto* self = call.native<TextFormatObject>();
    if (!self) return {};
    stage::TextFormat format;
    format.style.font = "Times New Roman";
    self->forText().applyTo(format);
    const std::u16string text = textArg(call, 0);
    render::TextOptions options;
    options.wordWrap = call.count() > 1 && !call.arg(1).isUndefined();
    const double fieldWidth = options.wordWrap ? numberArg(call, 1) : 0;
    options.width = std::max(0.0, fieldWidth * kTwips - 2 * render::kTextGutter);
    options.autoSize = !options.wordWrap;
    ExtentFonts fonts(StageBinding::of(call).stage());
    const render::TextLayout layout(text, {{text.size(), format.style}}, options, fonts);
    const auto pixels = [](double twips) { return std::round(twips / kTwips); };
    const render::LayoutLine& line = layout.lines().front();
    const double ascent = pixels(line.ascent), descent = pixels(line.descent);
    const double width = std::trunc(layout.width() / kTwips);
    const double height = text.empty() ? 0 : (ascent + descent) * static_cast<double>(layout.lines().size());
    constexpr double kGutters = 2 * render::kTextGutter / kTwips;
    Object* extent = call.vm.newObject(nullptr);
    extent->define(call.vm, "ascent", Value(ascent));
    extent->define(call.vm, "descent", Value(descent));
    extent->define(call.vm, "width", Value(width));
    extent->define(call.vm, "height", Value(height));
    extent->define(call.vm, "textFieldHeight", Value(height + kGutters));
    extent->define(call.vm, "textFieldWidth", Value(options.wordWrap ? fieldWidth : width + kGutters));
    return Value(extent);
}

// The prototype gets its properties with the first object of the class.
void definePrototype(Vm& vm)
{
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("TextFormat"))).asObject();
    Object* prototype = constructor ? vm.prototypeOf(constructor) : nullptr;
    if (!prototype || prototype->hasPlain(vm, vm.name(std::string_view("align")))) return;
    for (const AccessorInfo& accessor : kAccessors) {
        if ((accessor.flags & kFrom8) != 0 && vm.version() < 8) continue;
        prototype->defineAccessor(vm, vm.name(std::string_view(accessor.name)),
                                  vm.newFunction(accessor.getter), vm.newFunction(accessor.setter),
                                  accessor.flags);
    }
}

TextFormatObject& makeTextFormat(Vm& vm, Object& object)
{
    definePrototype(vm);
    // A function without any property, not even those that all functions have.
    Function* extent = vm.newFunction(&getTextExtent);
    extent->changeFlags(vm, Name(), 0, kHidden | kVersionMask);
    extent->deletePlain(vm, vm.common().constructor);
    extent->deletePlain(vm, vm.common().proto);
    object.define(vm, "getTextExtent", Value(extent));
    return object.attachNew<TextFormatObject>();
}

Value construct(Call& call)
{
    Object* object = call.self.asObject();
    if (!object || !call.isConstruct) return {};
    makeTextFormat(call.vm, *object);
    for (std::size_t i = 0; i < std::min(call.count(), kConstructorArguments); ++i) {
        Call set{call.vm, call.self, call.args.subspan(i, 1), call.callee};
        kAccessors[i].setter(set);
    }
    return {};
}

} // namespace

stage::PartialTextFormat TextFormatObject::forText() const
{
    stage::PartialTextFormat taken = format;
    if (taken.color) taken.color->a = 255;
    // Sizes that no text can have would only take the layout's time.
    constexpr double kMaxPixels = 2500;
    const auto bound = [](std::optional<double>& length, double least) {
        if (!length) return;
        *length = std::isnan(*length) ? 0 : std::clamp(*length, least, kMaxPixels * kTwips);
    };
    bound(taken.size, 0);
    for (auto* length : {&taken.letterSpacing, &taken.leftMargin, &taken.rightMargin, &taken.indent,
                         &taken.blockIndent, &taken.leading})
        bound(*length, -kMaxPixels * kTwips);
    return taken;
}

Object* makeTextFormat(Vm& vm, const stage::PartialTextFormat& format)
{
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("TextFormat"))).asObject();
    Object* object = vm.newObject(constructor ? vm.prototypeOf(constructor) : nullptr);
    TextFormatObject& native = makeTextFormat(vm, *object);
    native.format = format;
    if (native.format.color) native.format.color->a = 0;
    return object;
}

void installTextFormat(StageBinding& binding) { binding.vm().defineClass("TextFormat", &construct); }

} // namespace flash::avm1
