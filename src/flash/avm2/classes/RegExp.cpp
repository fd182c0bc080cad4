#include "flash/avm2/classes/RegExp.h"

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

namespace flash::avm2::classes
{

struct RegExpObject::Compiled {
    pcre2_code* code = nullptr;
    pcre2_match_data* data = nullptr;
    pcre2_match_context* context = nullptr;
    std::vector<std::pair<std::u16string, int>> names;
    ~Compiled()
    {
        pcre2_match_data_free(data);
        pcre2_code_free(code);
        pcre2_match_context_free(context);
    }
};

RegExpObject::RegExpObject(Traits* traits, Object* proto) : Object(traits, proto) {}
RegExpObject::~RegExpObject() = default;

void RegExpObject::compile(std::u16string pattern, std::u16string_view flags)
{
    source = std::move(pattern);
    for (const char16_t flag : flags) {
        if (flag == u'g')
            isGlobal = true;
        else if (flag == u'i')
            ignoresCase = true;
        else if (flag == u'm')
            isMultiline = true;
        else if (flag == u's')
            dotsAll = true;
        else if (flag == u'x')
            isExtended = true;
    }
    std::uint32_t options =
        PCRE2_ALLOW_EMPTY_CLASS | PCRE2_ALT_BSUX | PCRE2_MATCH_UNSET_BACKREF | PCRE2_DOLLAR_ENDONLY;
    if (ignoresCase) options |= PCRE2_CASELESS;
    if (isMultiline) options |= PCRE2_MULTILINE;
    if (dotsAll) options |= PCRE2_DOTALL;
    if (isExtended) options |= PCRE2_EXTENDED;
    int error = 0;
    PCRE2_SIZE where = 0;
    m_compiled = std::make_unique<Compiled>();
    m_compiled->code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(source.data()), source.size(), options,
                                     &error, &where, nullptr);
    if (m_compiled->code == nullptr) return;
    m_compiled->data = pcre2_match_data_create_from_pattern(m_compiled->code, nullptr);
    m_compiled->context = pcre2_match_context_create(nullptr);
    constexpr std::uint32_t kMaxSteps = 5'000'000;
    pcre2_set_match_limit(m_compiled->context, kMaxSteps);
    std::uint32_t count = 0, size = 0;
    pcre2_pattern_info(m_compiled->code, PCRE2_INFO_NAMECOUNT, &count);
    pcre2_pattern_info(m_compiled->code, PCRE2_INFO_NAMEENTRYSIZE, &size);
    PCRE2_SPTR table = nullptr;
    pcre2_pattern_info(m_compiled->code, PCRE2_INFO_NAMETABLE, &table);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto* entry = reinterpret_cast<const char16_t*>(table + static_cast<std::size_t>(i) * size);
        m_compiled->names.emplace_back(std::u16string(entry + 1), entry[0]);
    }
}

RegExpObject::Groups RegExpObject::find(Vm& vm, std::u16string_view text, std::size_t from)
{
    Groups groups;
    vm.check();
    if (!m_compiled || m_compiled->code == nullptr || from > text.size()) return groups;
    const int count = pcre2_match(m_compiled->code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(),
                                  from, 0, m_compiled->data, m_compiled->context);
    if (count == PCRE2_ERROR_MATCHLIMIT) {
        // That took as long as many other things do.
        constexpr int kChecks = 400;
        for (int i = 0; i < kChecks; ++i) vm.check();
    }
    if (count <= 0) return groups;
    const PCRE2_SIZE* ends = pcre2_get_ovector_pointer(m_compiled->data);
    const std::uint32_t pairs = pcre2_get_ovector_count(m_compiled->data);
    for (std::uint32_t i = 0; i < pairs; ++i) {
        if (ends[2 * i] == PCRE2_UNSET || static_cast<int>(i) >= count)
            groups.emplace_back(-1, -1);
        else
            groups.emplace_back(static_cast<int>(ends[2 * i]), static_cast<int>(ends[2 * i + 1]));
    }
    // \K may set the start behind the end.
    if (groups[0].first > groups[0].second) groups.clear();
    return groups;
}

namespace
{

Value part(Vm& vm, std::u16string_view text, std::pair<int, int> group)
{
    if (group.first < 0) return {};
    return vm.string(text.substr(static_cast<std::size_t>(group.first),
                                 static_cast<std::size_t>(group.second - group.first)));
}

} // namespace

Value RegExpObject::resultOf(Vm& vm, const std::u16string& text, const Groups& groups)
{
    auto* result = static_cast<ArrayObject*>(vm.newArray());
    for (const auto& group : groups) result->push(vm, part(vm, text, group));
    vm.setPublic(Value(result), "index", static_cast<double>(groups[0].first));
    vm.setPublic(Value(result), "input", Value(vm.string(text)));
    for (const auto& [name, number] : m_compiled->names) {
        const Value named = static_cast<std::size_t>(number) < groups.size()
                                ? part(vm, text, groups[static_cast<std::size_t>(number)])
                                : Value();
        vm.set(Value(result), vm.publicName(vm.name(name)),
               named.isUndefined() ? Value(vm.common().empty.string()) : named);
    }
    return result;
}

Value RegExpObject::exec(Vm& vm, const std::u16string& text)
{
    const double from = isGlobal ? lastIndex : 0;
    const Groups groups = from >= 0 && from <= static_cast<double>(text.size())
                              ? find(vm, text, static_cast<std::size_t>(from))
                              : Groups();
    if (groups.empty()) {
        if (isGlobal) lastIndex = 0;
        return Value::null();
    }
    if (isGlobal) lastIndex = groups[0].second + (groups[0].second == groups[0].first ? 1 : 0);
    return resultOf(vm, text, groups);
}

Value RegExpObject::match(Vm& vm, const std::u16string& text)
{
    if (!isGlobal) {
        const Groups groups = find(vm, text, 0);
        return groups.empty() ? Value::null() : resultOf(vm, text, groups);
    }
    auto* result = static_cast<ArrayObject*>(vm.newArray());
    std::size_t at = 0;
    while (at <= text.size()) {
        const Groups groups = find(vm, text, at);
        // Nothing, found at the end of a text that was something, is not counted.
        if (groups.empty() || (at > 0 && at == text.size())) break;
        result->push(vm, part(vm, text, groups[0]));
        at = static_cast<std::size_t>(groups[0].second) + (groups[0].first == groups[0].second ? 1 : 0);
    }
    lastIndex = 0;
    return result;
}

Value RegExpObject::search(Vm& vm, const std::u16string& text)
{
    const Groups groups = find(vm, text, 0);
    return groups.empty() ? -1 : groups[0].first;
}

std::u16string RegExpObject::expand(std::u16string_view pattern, std::u16string_view text,
                                    std::span<const std::pair<int, int>> groups)
{
    std::u16string result;
    const auto append = [&](std::size_t group) {
        if (groups[group].first >= 0)
            result += text.substr(static_cast<std::size_t>(groups[group].first),
                                  static_cast<std::size_t>(groups[group].second - groups[group].first));
    };
    const auto digit = [&](std::size_t at) {
        return at < pattern.size() && pattern[at] >= u'0' && pattern[at] <= u'9' ? pattern[at] - u'0' : -1;
    };
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'$' || i + 1 >= pattern.size()) {
            result += pattern[i];
            continue;
        }
        const char16_t next = pattern[i + 1];
        if (next == u'$') {
            result += u'$';
        } else if (next == u'&') {
            append(0);
        } else if (next == u'`') {
            result += text.substr(0, static_cast<std::size_t>(groups[0].first));
        } else if (next == u'\'') {
            result += text.substr(static_cast<std::size_t>(groups[0].second));
        } else if (digit(i + 1) >= 0) {
            int number = digit(i + 1);
            std::size_t length = 1;
            if (digit(i + 2) >= 0 && static_cast<std::size_t>(number * 10 + digit(i + 2)) < groups.size()) {
                number = number * 10 + digit(i + 2);
                length = 2;
            }
            if (number == 0 || static_cast<std::size_t>(number) >= groups.size()) {
                result += u'$';
                continue;
            }
            append(static_cast<std::size_t>(number));
            i += length;
            continue;
        } else {
            result += u'$';
            continue;
        }
        ++i;
    }
    return result;
}

Value RegExpObject::replace(Vm& vm, const std::u16string& text, Value with)
{
    const bool calls = isFunction(with);
    const std::u16string pattern = calls ? std::u16string() : std::u16string(vm.text(with));
    std::u16string result;
    std::size_t at = 0, copied = 0;
    while (at <= text.size()) {
        const Groups groups = find(vm, text, at);
        if (groups.empty()) break;
        const auto start = static_cast<std::size_t>(groups[0].first),
                   end = static_cast<std::size_t>(groups[0].second);
        result += std::u16string_view(text).substr(copied, start - copied);
        if (calls) {
            RootedList<Value> args(vm.heap());
            for (const auto& group : groups) args.push_back(part(vm, text, group));
            args.push_back(static_cast<double>(start));
            args.push_back(Value(vm.string(text)));
            result += vm.text(vm.call(with, Value(), std::span<const Value>(*args)));
        } else {
            result += expand(pattern, text, groups);
        }
        copied = end;
        at = end + (start == end ? 1 : 0);
        if (!isGlobal) break;
    }
    if (copied < text.size()) result += std::u16string_view(text).substr(copied);
    return vm.string(std::move(result));
}

Value RegExpObject::split(Vm& vm, const std::u16string& text, double limit)
{
    auto* result = static_cast<ArrayObject*>(vm.newArray());
    std::size_t at = 0, copied = 0;
    if (text.empty()) {
        if (find(vm, text, 0).empty()) result->push(vm, Value(vm.string(text)));
        return result;
    }
    if (limit == 0) return result;
    while (at < text.size()) {
        const Groups groups = find(vm, text, at);
        if (groups.empty()) break;
        const auto start = static_cast<std::size_t>(groups[0].first),
                   end = static_cast<std::size_t>(groups[0].second);
        // What matches nothing parts nothing.
        if (start == end) {
            at = start + 1;
            continue;
        }
        result->push(vm, Value(vm.string(text.substr(copied, start - copied))));
        if (result->length() >= limit) return result;
        // A limit that groups reach lets the rest follow.
        for (std::size_t i = 1; i < groups.size() && result->length() < limit; ++i)
            result->push(vm, part(vm, text, groups[i]));
        copied = at = end;
    }
    result->push(vm, Value(vm.string(text.substr(copied))));
    return result;
}

namespace
{

RegExpObject& self(Call& call) { return selfAs<RegExpObject>(call, "RegExp"); }

Value construct(Call& call)
{
    auto& made = self(call);
    if (auto* other = as<RegExpObject>(call.arg(0))) {
        if (call.has(1) && !call.arg(1).isUndefined())
            call.vm.throwError(ErrorClass::Type, 1100,
                               "Cannot supply flags when constructing one RegExp from another.");
        std::u16string flags;
        if (other->isGlobal) flags += u'g';
        if (other->ignoresCase) flags += u'i';
        if (other->isMultiline) flags += u'm';
        if (other->dotsAll) flags += u's';
        if (other->isExtended) flags += u'x';
        made.compile(other->source, flags);
        return {};
    }
    std::u16string source(call.arg(0).isUndefined() ? u"" : call.vm.text(call.arg(0)));
    made.compile(std::move(source),
                 call.has(1) && !call.arg(1).isUndefined() ? call.vm.text(call.arg(1)) : u"");
    return {};
}

Value convert(Call& call)
{
    if (as<RegExpObject>(call.arg(0)) != nullptr && call.arg(1).isUndefined()) return call.arg(0);
    return call.callee->construct(call.vm, call.rest(0));
}

Value exec(Call& call)
{
    auto& pattern = self(call);
    const std::u16string text(call.vm.text(call.arg(0)));
    return pattern.exec(call.vm, text);
}

Value test(Call& call) { return !exec(call).isNull(); }

Value toString(Call& call)
{
    auto* pattern = as<RegExpObject>(call.self);
    if (pattern == nullptr) {
        if (call.self.isObject() && call.self.object() == call.vm.classes().regExp->prototype)
            return call.vm.string(std::u16string(u"/(?:)/"));
        pattern = &self(call);
    }
    std::u16string text = u"/" + pattern->source + u"/";
    if (pattern->isGlobal) text += u'g';
    if (pattern->ignoresCase) text += u'i';
    if (pattern->isMultiline) text += u'm';
    if (pattern->dotsAll) text += u's';
    if (pattern->isExtended) text += u'x';
    return call.vm.string(std::move(text));
}

Value source(Call& call) { return call.vm.string(self(call).source); }
template <bool RegExpObject::*flag>
Value flagOf(Call& call)
{
    return self(call).*flag;
}
Value lastIndex(Call& call) { return self(call).lastIndex; }
Value setLastIndex(Call& call)
{
    self(call).lastIndex = call.vm.toInt(call.arg(0));
    return {};
}

constexpr NativeMember kMembers[] = {
    {"exec", Kind::As3, &exec, 0, 1},
    {"test", Kind::As3, &test, 0, 1},
    {"toString", Kind::Prototype, &toString, 0, -1},
    {"source", Kind::Getter, &source},
    {"global", Kind::Getter, &flagOf<&RegExpObject::isGlobal>},
    {"ignoreCase", Kind::Getter, &flagOf<&RegExpObject::ignoresCase>},
    {"multiline", Kind::Getter, &flagOf<&RegExpObject::isMultiline>},
    {"dotall", Kind::Getter, &flagOf<&RegExpObject::dotsAll>},
    {"extended", Kind::Getter, &flagOf<&RegExpObject::isExtended>},
    {"lastIndex", Kind::Getter, &lastIndex, 0, 0, &setLastIndex},
};
constexpr NativeConstant kLengthOne[] = {{"length", 1}};

} // namespace

constinit const NativeClass kRegExp{.package = {},
                                    .name = "RegExp",
                                    .base = {},
                                    .constructor = &construct,
                                    .minArguments = 0,
                                    .maxArguments = 2,
                                    .allocate = &allocateNative<RegExpObject>,
                                    .conversion = &convert,
                                    .members = kMembers,
                                    .constants = kLengthOne};

} // namespace flash::avm2::classes
