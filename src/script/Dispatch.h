#pragma once

#include "base/Result.h"
#include "script/Value.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>

namespace script
{

/// Why an operation of a script failed. The numbers are VBScript's (see vbscript/Errors.h).
struct Fault final : Counted {
    int number = 0;
    std::u16string subject;     ///< what it was about; shown behind the description: Type mismatch: 'subject'
    std::u16string description; ///< replaces the number's own text
    std::u16string source;      ///< replaces the engine's own name
    std::u16string helpFile = {};
    int helpContext = 0;
    int line = 0; ///< 1-based, 0 while unknown
    int column = 0;
    bool uncatchable = false; ///< ends the script past every On Error Resume Next
};

// Faults are rare and large; results stay small.
template <class T>
using Result = tl::expected<T, Ref<Fault>>;
using Failed = tl::unexpected<Ref<Fault>>;

/// @param subject see Fault::subject
Failed fault(int number, std::u16string_view subject = {});

using Arguments = std::span<const Value>;

/// Hands out the members of a collection for For Each.
class Enumerator : public Counted
{
public:
    /// @returns nothing after the last element
    virtual Result<std::optional<Value>> next() = 0;
};

/// How an object shows its members to scripts, by name without regard to case.
class Dispatch : public Counted
{
public:
    using MemberId = int;
    /// The member meant by the object's own name: x = obj, obj(1).
    static constexpr MemberId kDefaultMember = 0;

    enum class Access {
        Get,       ///< the value of a property
        Call,      ///< obj.Name args: the result is not used
        GetOrCall, ///< in an expression, where obj.Name(1) may be a property with an index or a method
        Put,       ///< obj.Name = value; the value is the last argument
        PutRef,    ///< Set obj.Name = value
    };

    /// What the engine knows of an object without asking it: its own kinds take shorter ways.
    enum class Kind : std::uint8_t { Foreign, Instance, FunctionReference };
    [[nodiscard]] Kind kind() const { return m_kind; }

    /// What TypeName answers.
    [[nodiscard]] virtual std::u16string typeName() const = 0;
    /// @returns nothing when there is no such member
    [[nodiscard]] virtual std::optional<MemberId> memberId(std::u16string_view name) const = 0;
    /// @errors 438 for a member that does not exist or lacks this access, 450 for a wrong number of
    /// arguments,
    ///         13 for an argument of a wrong type, and whatever the member itself reports
    virtual Result<Value> invoke(MemberId member, Access access, Arguments arguments) = 0;
    /// What scripts call: the same for a locale (1033, 1049), in which an object that converts between texts
    /// and numbers reads and writes them.
    virtual Result<Value> invokeIn([[maybe_unused]] int locale, MemberId member, Access access,
                                   Arguments arguments)
    {
        return invoke(member, access, arguments);
    }
    /// Whether the member may change its arguments: variables handed over by reference then hold what
    /// invokeByReference leaves in their places.
    [[nodiscard]] virtual bool writesArguments([[maybe_unused]] MemberId member) const { return false; }
    virtual Result<Value> invokeByReference(int locale, MemberId member, Access access,
                                            std::span<Value> arguments)
    {
        return invokeIn(locale, member, access, arguments);
    }
    /// @returns null when the object is no collection
    [[nodiscard]] virtual Ref<Enumerator> enumerate() { return nullptr; }
    /// Objects that answer the same non-null address answer the same ids to the same names for as long as
    /// the engine lives, which lets a call site look a name up once.
    [[nodiscard]] virtual const void* layout() const { return nullptr; }

protected:
    explicit Dispatch(Kind kind = Kind::Foreign) : m_kind(kind) {}

private:
    const Kind m_kind;
};

/// An object made of functions: what a host writes when it has no class of its own to show.
class HostObject : public Dispatch
{
public:
    using Getter = std::function<Result<Value>()>;
    using Setter = std::function<Result<void>(const Value&)>;
    using Method = std::function<Result<Value>(Arguments)>;
    using WritingMethod = std::function<Result<Value>(std::span<Value>)>;

    explicit HostObject(std::u16string typeName);
    void property(std::u16string_view name, Getter get, Setter set = {});
    /// Any number of arguments reaches the function, which checks them.
    void method(std::u16string_view name, Method method);
    /// The same for one that changes its arguments.
    void writingMethod(std::u16string_view name, WritingMethod method);
    void collection(std::function<Ref<Enumerator>()> enumerate) { m_enumerate = std::move(enumerate); }

    [[nodiscard]] std::u16string typeName() const override { return m_typeName; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;
    [[nodiscard]] bool writesArguments(MemberId member) const override;
    Result<Value> invokeByReference(int locale, MemberId member, Access access,
                                    std::span<Value> arguments) override;
    [[nodiscard]] Ref<Enumerator> enumerate() override { return m_enumerate ? m_enumerate() : nullptr; }
    [[nodiscard]] const void* layout() const override { return m_layout; }

private:
    struct Member {
        std::u16string name;
        Getter get;
        Setter set;
        Method call;
        WritingMethod write;
    };
    void add(Member member);
    [[nodiscard]] const Member* member(MemberId id) const;

    const void*
        m_layout; // no address but a number that no other object has, and no earlier state of this one
    std::u16string m_typeName;
    std::unordered_map<std::u16string, MemberId> m_ids;
    std::deque<Member> m_members; // a member that runs may add others
    std::function<Ref<Enumerator>()> m_enumerate;
};

/// Walks values that were collected beforehand.
class ListEnumerator final : public Enumerator
{
public:
    explicit ListEnumerator(std::vector<Value> values) : m_values(std::move(values)) {}
    Result<std::optional<Value>> next() override
    {
        if (m_next == m_values.size()) return std::optional<Value>();
        return std::optional<Value>(m_values[m_next++]);
    }

private:
    std::vector<Value> m_values;
    std::size_t m_next = 0;
};

} // namespace script
