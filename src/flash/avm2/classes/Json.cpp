#include "flash/avm2/classes/Library.h"

#include <charconv>

namespace flash::avm2::classes
{

namespace
{

constexpr int kDeepest = 400;

class Reader
{
public:
    Reader(Vm& vm, std::u16string_view text, Value reviver) : m_vm(vm), m_text(text), m_reviver(reviver) {}
    Value run()
    {
        skip();
        const Value value = read(0);
        skip();
        if (m_at < m_text.size()) fail();
        return revive(value, Value::null(), Value(m_vm.common().empty.string()));
    }

private:
    [[noreturn]] void fail() { m_vm.throwError(ErrorClass::Syntax, 1132, "Invalid JSON parse input."); }
    void skip()
    {
        while (m_at < m_text.size() && (m_text[m_at] == u' ' || m_text[m_at] == u'\t' ||
                                        m_text[m_at] == u'\n' || m_text[m_at] == u'\r'))
            ++m_at;
    }
    bool take(char16_t unit)
    {
        skip();
        if (m_at >= m_text.size() || m_text[m_at] != unit) return false;
        ++m_at;
        return true;
    }
    bool word(std::u16string_view expected)
    {
        if (m_text.substr(m_at, expected.size()) != expected) return false;
        m_at += expected.size();
        return true;
    }
    Value revive(Value value, Value, Value key)
    {
        if (m_reviver.isNullish()) return value;
        return m_vm.call(m_reviver, Value(), {key, value});
    }
    Value read(int depth)
    {
        if (depth > kDeepest) fail();
        m_vm.check();
        skip();
        if (m_at >= m_text.size()) fail();
        switch (m_text[m_at]) {
        case u'{': return readObject(depth);
        case u'[': return readArray(depth);
        case u'"': return Value(m_vm.string(readString()));
        case u't':
            if (word(u"true")) return true;
            fail();
        case u'f':
            if (word(u"false")) return false;
            fail();
        case u'n':
            if (word(u"null")) return Value::null();
            fail();
        default: return readNumber();
        }
    }
    Value readObject(int depth)
    {
        ++m_at;
        Object* made = m_vm.newObject();
        if (take(u'}')) return made;
        do {
            skip();
            if (m_at >= m_text.size() || m_text[m_at] != u'"') fail();
            const Name name = m_vm.name(readString());
            if (!take(u':')) fail();
            Value value = read(depth + 1);
            value = revive(value, Value(made), Value(name.string()));
            if (!value.isUndefined()) made->table().set(name, value);
        } while (take(u','));
        if (!take(u'}')) fail();
        return made;
    }
    Value readArray(int depth)
    {
        ++m_at;
        auto* made = static_cast<ArrayObject*>(m_vm.newArray());
        if (take(u']')) return made;
        do {
            Value value = read(depth + 1);
            value = revive(value, Value(made), Value(m_vm.names().fromIndex(made->length()).string()));
            made->push(m_vm, value);
        } while (take(u','));
        if (!take(u']')) fail();
        return made;
    }
    std::u16string readString()
    {
        std::u16string text;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            const char16_t unit = m_text[m_at];
            if (unit == u'"') {
                ++m_at;
                return text;
            }
            if (unit < 0x20) fail();
            if (unit != u'\\') {
                text += unit;
                continue;
            }
            if (++m_at >= m_text.size()) fail();
            switch (m_text[m_at]) {
            case u'b': text += u'\b'; break;
            case u'f': text += u'\f'; break;
            case u'n': text += u'\n'; break;
            case u'r': text += u'\r'; break;
            case u't': text += u'\t'; break;
            case u'"':
            case u'\\':
            case u'/': text += m_text[m_at]; break;
            case u'u': {
                unsigned value = 0;
                for (int i = 0; i < 4; ++i) {
                    if (++m_at >= m_text.size()) fail();
                    const char16_t digit = m_text[m_at];
                    const int worth = digit >= u'0' && digit <= u'9' ? digit - u'0'
                                      : (digit | 0x20) >= u'a' && (digit | 0x20) <= u'f'
                                          ? (digit | 0x20) - u'a' + 10
                                          : -1;
                    if (worth < 0) fail();
                    value = value * 16 + static_cast<unsigned>(worth);
                }
                text += static_cast<char16_t>(value);
                break;
            }
            default: fail();
            }
        }
        fail();
    }
    Value readNumber()
    {
        std::string digits;
        while (m_at < m_text.size() && m_text[m_at] < 0x80 &&
               std::string_view("+-.eE0123456789").find(static_cast<char>(m_text[m_at])) !=
                   std::string_view::npos)
            digits += static_cast<char>(m_text[m_at++]);
        double value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const std::size_t first = !digits.empty() && digits[0] == '-' ? 1 : 0;
        const bool leadsZero = digits.size() > first + 1 && digits[first] == '0' &&
                               digits[first + 1] >= '0' && digits[first + 1] <= '9';
        if (digits.empty() || error == std::errc::invalid_argument || end != digits.data() + digits.size() ||
            leadsZero || digits.back() == '.')
            fail();
        return value;
    }

    Vm& m_vm;
    std::u16string_view m_text;
    Value m_reviver;
    std::size_t m_at = 0;
};

class Writer
{
public:
    Writer(Vm& vm, Value replacer, std::u16string gap)
        : m_vm(vm), m_replacer(replacer), m_gap(std::move(gap)), m_open(vm.heap())
    {
    }
    Value run(Value value)
    {
        Object* holder = m_vm.newObject();
        holder->table().set(m_vm.common().empty, value);
        if (!write(Value(holder), Value(m_vm.common().empty.string()), value, u"")) return {};
        return m_vm.string(std::move(m_out));
    }

private:
    void quote(std::u16string_view text)
    {
        m_out += u'"';
        for (const char16_t unit : text) {
            switch (unit) {
            case u'"': m_out += u"\\\""; break;
            case u'\\': m_out += u"\\\\"; break;
            case u'\b': m_out += u"\\b"; break;
            case u'\f': m_out += u"\\f"; break;
            case u'\n': m_out += u"\\n"; break;
            case u'\r': m_out += u"\\r"; break;
            case u'\t': m_out += u"\\t"; break;
            default:
                if (unit < 0x20) {
                    m_out += u"\\u00";
                    m_out += u"0123456789abcdef"[unit >> 4U];
                    m_out += u"0123456789abcdef"[unit & 15U];
                } else {
                    m_out += unit;
                }
            }
        }
        m_out += u'"';
    }
    bool write(Value holder, Value key, Value value, const std::u16string& indent)
    {
        m_vm.check();
        if (value.isObject() && value.object()->isXml()) {
            // Names of its own are those of its elements.
            const Value function = m_vm.getPublic(Value(value.object()->proto()), "toJSON");
            if (isFunction(function)) value = m_vm.call(function, value, {key});
        } else if (value.isObject() && m_vm.has(value, m_vm.publicName(m_vm.common().toJSON))) {
            const Value function = m_vm.getPublic(value, "toJSON");
            if (isFunction(function))
                value = m_vm.callProperty(value, m_vm.publicName(m_vm.common().toJSON), {&key, 1});
        }
        if (isFunction(m_replacer)) value = m_vm.call(m_replacer, holder, {key, value});
        switch (value.type()) {
        case Value::Type::Undefined: return false;
        case Value::Type::Null: m_out += u"null"; return true;
        case Value::Type::Boolean: m_out += value.boolean() ? u"true" : u"false"; return true;
        case Value::Type::Number:
            m_out += std::isfinite(value.number()) ? numberText(value.number()) : u"null";
            return true;
        case Value::Type::String: quote(value.string()->view()); return true;
        case Value::Type::Object: break;
        }
        if (value.object()->isCallable() && as<ClassObject>(value) == nullptr) return false;
        for (const Value open : m_open) {
            if (open.bits() == value.bits())
                m_vm.throwError(ErrorClass::Type, 1129,
                                "Cyclic structure cannot be converted to JSON string.");
        }
        if (m_open.size() > kDeepest) m_vm.throwError(ErrorClass::Error, 1023, "Stack overflow occurred.");
        m_open.push_back(value);
        const std::u16string inner = indent + m_gap;
        if (as<ArrayObject>(value) != nullptr || as<VectorObject>(value) != nullptr)
            writeList(value, indent, inner);
        else
            writeObject(value, indent, inner);
        m_open->pop_back();
        return true;
    }
    void line(const std::u16string& indent)
    {
        if (!m_gap.empty()) m_out += u'\n' + indent;
    }
    void writeList(Value list, const std::u16string& indent, const std::u16string& inner)
    {
        m_out += u'[';
        const std::uint32_t length = m_vm.toUint(m_vm.getPublic(list, "length"));
        for (std::uint32_t i = 0; i < length; ++i) {
            if (i > 0) m_out += u',';
            line(inner);
            const Value index(m_vm.names().fromIndex(i).string());
            const Value value =
                m_vm.get(list, m_vm.runtimeName(Multiname::of({}, m_vm.publicNs()), static_cast<double>(i)));
            if (!write(list, index, value, inner)) m_out += u"null";
        }
        if (length > 0) line(indent);
        m_out += u']';
    }
    void member(Value object, Name name, bool& first, const std::u16string& inner)
    {
        const std::size_t before = m_out.size();
        if (!first) m_out += u',';
        line(inner);
        quote(name.view());
        m_out += m_gap.empty() ? u":" : u": ";
        if (write(object, Value(name.string()), m_vm.get(object, m_vm.publicName(name)), inner))
            first = false;
        else
            m_out.resize(before);
    }
    void writeObject(Value object, const std::u16string& indent, const std::u16string& inner)
    {
        m_out += u'{';
        bool first = true;
        RootedList<Name> names(m_vm.heap());
        if (auto* list = as<ArrayObject>(m_replacer)) {
            for (std::uint32_t i = 0; i < list->length(); ++i)
                names.push_back(m_vm.names().intern(m_vm.toString(list->at(m_vm, i))));
        } else {
            for (const Traits::Entry& entry : object.object()->traits()->entries()) {
                const bool reads = entry.binding.kind == Binding::Kind::Slot ||
                                   entry.binding.kind == Binding::Kind::Const ||
                                   (entry.binding.kind == Binding::Kind::Accessor && entry.binding.id >= 0);
                if (reads && entry.ns->isPublic()) names.push_back(entry.name);
            }
            for (std::uint32_t at = 0; (at = object.object()->nextIndex(m_vm, at)) != 0;)
                names.push_back(m_vm.names().intern(m_vm.toString(object.object()->nextName(m_vm, at))));
        }
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (m_vm.has(object, m_vm.publicName(names[i]))) member(object, names[i], first, inner);
        }
        if (!first) line(indent);
        m_out += u'}';
    }

    Vm& m_vm;
    Value m_replacer;
    std::u16string m_gap, m_out;
    RootedList<Value> m_open;
};

Value parse(Call& call)
{
    if (call.arg(0).isNull()) call.vm.throwError(ErrorClass::Syntax, 1132, "Invalid JSON parse input.");
    const std::u16string text(call.vm.text(call.arg(0)));
    return Reader(call.vm, text, call.arg(1)).run();
}

Value stringify(Call& call)
{
    const Value replacer = call.arg(1);
    if (call.has(1) && !replacer.isNull() && !isFunction(replacer) && as<ArrayObject>(replacer) == nullptr)
        call.vm.throwError(
            ErrorClass::Type, 1131,
            "Replacer argument to JSON stringifier must be an array or a two parameter function.");
    std::u16string gap;
    if (call.arg(2).isNumber())
        gap.assign(static_cast<std::size_t>(std::clamp(call.arg(2).number(), 0.0, 10.0)), u' ');
    else if (call.arg(2).isString())
        gap = call.vm.text(call.arg(2)).substr(0, 10);
    return Writer(call.vm, replacer, std::move(gap)).run(call.arg(0));
}

constexpr NativeMember kMembers[] = {
    {"parse", Kind::Static, &parse, 1, 2},
    {"stringify", Kind::Static, &stringify, 1, 3},
};

} // namespace

constinit const NativeClass kJson{.package = {},
                                  .name = "JSON",
                                  .base = {},
                                  .flags = NativeClass::Sealed | NativeClass::Final | NativeClass::Abstract,
                                  .members = kMembers,
                                  .since = 13};

} // namespace flash::avm2::classes
