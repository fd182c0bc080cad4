#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/render/Paragraph.h"
#include "flash/stage/TextLine.h"

#include <memory>
#include <vector>

// flash.text.engine: what texts are made of, how it looks, and the lines that come of it.
namespace flash::avm2::textengine
{

/// A property whose values are some names.
struct Choice {
    std::string_view parameter;
    std::span<const std::string_view> names;
    [[nodiscard]] bool holds(std::u16string_view name) const;
};
/// @throws 2007 for null, 2008 for what is none of them
Value choiceArg(Call& call, const Choice& choice);
template <class T, std::size_t index, const Choice& choice>
Value setChoice(Call& call)
{
    const Value value = choiceArg(call, choice);
    classes::selfAs<T>(call, T::kClass).change(call).fields[index] = value;
    return {};
}
template <class T, std::size_t index, FieldType type>
Value setOpen(Call& call)
{
    const Value value = converted(call.vm, call.arg(0), type);
    classes::selfAs<T>(call, T::kClass).change(call).fields[index] = value;
    return {};
}
extern const Choice kTextRotation, kLineRotation, kDominantBaseline, kAlignmentBaseline, kLineJustification;

[[noreturn]] void throwInvalid(Vm& vm);    ///< 2004
[[noreturn]] void throwOutOfRange(Vm& vm); ///< 2006

struct FontDescriptionTag {
    static constexpr const char* kClass = "flash.text.engine.FontDescription";
};
enum FontField : std::size_t {
    FontName,
    FontWeight,
    FontPosture,
    FontLookup,
    FontRendering,
    FontHinting,
    FontFields
};
/// Once something shows with it, it is locked.
class FontDescriptionObject final : public FieldsOf<Object, FontFields, FontDescriptionTag>
{
public:
    using FieldsOf::FieldsOf;
    /// Itself, where it may be changed. @throws 2185
    FontDescriptionObject& change(Call& call);
    bool isLocked = false;
};

struct ElementFormatTag {
    static constexpr const char* kClass = "flash.text.engine.ElementFormat";
};
enum FormatField : std::size_t {
    FormatFont,
    FormatSize,
    FormatColor,
    FormatAlpha,
    FormatRotation,
    FormatDominant,
    FormatAlignment,
    FormatShift,
    FormatKerning,
    FormatTrackingRight,
    FormatTrackingLeft,
    FormatLocale,
    FormatBreaks,
    FormatDigitCase,
    FormatDigitWidth,
    FormatLigatures,
    FormatCase,
    FormatFields
};
class ElementFormatObject final : public FieldsOf<Object, FormatFields, ElementFormatTag>
{
public:
    using FieldsOf::FieldsOf;
    /// @throws 2184
    ElementFormatObject& change(Call& call);
    bool isLocked = false;
};
/// The face that a description asks for; null when there is none.
render::FontFacePtr faceOf(Vm& vm, FontDescriptionObject* font);
/// How a format has text look. @param format null: as formats are made
render::ParagraphRun runOf(Vm& vm, ElementFormatObject* format);
render::Baseline baselineOf(std::u16string_view name);

class BlockObject;

/// A text, a picture or a group of both.
class ElementObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    enum class Kind : std::uint8_t { Text, Graphic, Group };
    ElementObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override;
    [[nodiscard]] std::size_t length() const;
    /// Where it begins in its block or, in none, in its outermost group.
    [[nodiscard]] std::size_t begin() const;
    [[nodiscard]] const ElementObject* top() const;
    [[nodiscard]] BlockObject* textBlock() const { return top()->block; }
    void appendText(std::u16string& to) const;
    /// Lines that show it from here on are out of date.
    void changed();
    /// What is in it that has no parts, in order.
    template <class Visit>
    void forLeaves(Visit&& visit)
    {
        if (kind != Kind::Group) return visit(*this);
        for (ElementObject* child : children) child->forLeaves(visit);
    }
    /// How many levels of groups there are below it.
    [[nodiscard]] int depth() const;

    Kind kind = Kind::Text;
    Value format = Value::null(), mirror = Value::null(), rotation, userData = Value::null();
    std::u16string text;
    bool hasText = false; ///< else null was given
    Value graphic = Value::null();
    double width = 15, height = 15; ///< of a picture, pixels
    TracedList<ElementObject*> children;
    ElementObject* group = nullptr;
    BlockObject* block = nullptr; ///< whose content it is
};
/// @throws 1034
ElementObject& elementSelf(Call& call);
/// Sets what all elements have. @param first of the arguments: format, mirror and rotation
void constructElement(Call& call, std::uint32_t first);
Value constructGroup(Call& call);
std::span<const NativeMember> groupMembers();
/// What stands for a picture in the text.
constexpr char16_t kGraphicCharacter = 0xFDEF;

struct JustifierTag {
    static constexpr const char* kClass = "flash.text.engine.TextJustifier";
};
enum JustifierField : std::size_t {
    JustifierLocale,
    JustifierLines,
    JustifierLetters,
    JustifierMinimum,
    JustifierOptimum,
    JustifierMaximum,
    JustifierStyle,
    JustifierTrailing,
    JustifierFields
};
/// Of both kinds.
class JustifierObject final : public FieldsOf<Object, JustifierFields, JustifierTag>
{
public:
    using FieldsOf::FieldsOf;
    JustifierObject& change(Call&) { return *this; }
    bool isEastAsian = false;
};
Value cloneJustifier(Vm& vm, const JustifierObject& from);
Value justifierFor(Vm& vm, std::u16string_view locale);
render::Justification justificationOf(Vm& vm, const JustifierObject* justifier);
std::vector<render::LineTabStop> tabStopsOf(Vm& vm, Value stops);

/// What lines are made of, and those that are.
class BlockObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    BlockObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override;
    /// The text as it is laid out; made when asked for.
    const render::Paragraph& paragraph(Vm& vm);
    /// Lines from a character on are out of date.
    void changed(std::size_t from);

    ElementObject* content = nullptr;
    Value tabStops = Value::null(), justifier = Value::null(), lineRotation, baselineZero,
          baselineFont = Value::null(), userData = Value::null(), result = Value::null();
    double baselineSize = 12;
    int bidiLevel = 0;
    bool scalesNonLinearly = true;
    DisplayObject *first = nullptr, *last = nullptr; ///< of its lines

private:
    std::unique_ptr<render::Paragraph> m_paragraph;
};

/// What a line keeps besides its node.
class LineState final : public Object
{
public:
    AVM2_NATIVE(Object)
    LineState(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override;
    /// The part that a character belongs to, and where it begins.
    struct Part {
        ElementObject* element = nullptr;
        std::size_t begin = 0, length = 0;
    };
    [[nodiscard]] const Part* partAt(std::size_t index) const;

    BlockObject* block = nullptr; ///< null: it has been released
    std::shared_ptr<const render::ComposedLine> line;
    swf::Matrix toNode; ///< of the line, which may lie along another axis
    DisplayObject *previous = nullptr, *next = nullptr;
    std::vector<Part, vm::TracedAllocator<Part>> parts;
    double specifiedWidth = 0;
    enum class Validity : std::uint8_t { Valid, PossiblyInvalid, Invalid, Own };
    Validity validity = Validity::Valid;
    bool isStatic = false; ///< no change of the text makes it invalid
    Value ownValidity;     ///< the name that a script has given it
    Value userData = Value::null(), regions = Value::null();
};
/// Null for what is no line.
LineState* lineStateOf(DisplayObject* object);
/// Whom events at a point of a line are told as well; null: nobody. @param local twips
DispatcherObject* mirrorAt(DisplayObject& line, swf::Point local);
/// Takes a line, and those up to another one, off its block's list.
void releaseLines(BlockObject& block, DisplayObject* from, DisplayObject* to);

std::span<const NativeClass> formatClasses();
std::span<const NativeClass> elementClasses();
std::span<const NativeClass> justifierClasses();
std::span<const NativeClass> blockClasses();
std::span<const NativeClass> lineClasses();

inline Value nameValue(Vm& vm, std::string_view name) { return Value(vm.name(name).string()); }
constexpr NativeClass engineConstants(std::string_view name, std::span<const NativeConstant> list)
{
    return constantsOf("flash.text.engine", name, list);
}

} // namespace flash::avm2::textengine
