// Members of objects, and assignments to them and to elements.

#include "script/vbscript/Convert.h"
#include "script/vbscript/Engine.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Reference.h"

namespace script::vbscript
{

std::u16string Engine::siteText(const MemberSite& site)
{
    const std::u16string& member = m_names.spelling(site.name);
    return site.object ? m_names.spelling(*site.object) + u"." + member : member;
}

Result<Dispatch*> Engine::objectOf(const Value& value, const MemberSite& site)
{
    const Value& resolved = value.resolved();
    const std::u16string subject = site.object ? m_names.spelling(*site.object) : std::u16string();
    if (!resolved.isObject()) {
        if (!subject.empty()) return fault(error::kObjectRequired, subject);
        return fault(error::kObjectRequired,
                     resolved.isEmpty() ? m_names.spelling(site.name) : quoted(resolved));
    }
    if (!resolved.asObject()) return fault(error::kObjectNotSet, subject);
    return resolved.asObject();
}

Result<const ClassMember*> Engine::instanceMember(Instance& object, MemberSite& site)
{
    if (site.layout != object.info) {
        const auto found = object.info->members.find(site.name);
        if (found == object.info->members.end()) return fault(error::kNoSuchMember, siteText(site));
        site.layout = object.info;
        site.member = &found->second;
    }
    return site.member;
}

// The number of the site's member, which is asked for once for objects of one layout.
Result<void> Engine::findMember(const Dispatch& object, MemberSite& site)
{
    const void* layout = object.layout();
    if (layout && layout == site.layout) return {};
    const auto id = object.memberId(m_names.spelling(site.name));
    if (!id) return fault(error::kNoSuchMember, siteText(site));
    site.id = *id;
    site.layout = layout;
    return {};
}

/// The object of a script's class before the dot, where the site has met its class before; else null.
Instance* Engine::knownInstance(const Value& holder, const MemberSite& site)
{
    const Value& value = holder.resolved();
    if (!value.isObject() || !value.asObject() || value.asObject()->kind() != Dispatch::Kind::Instance)
        return nullptr;
    auto* object = static_cast<Instance*>(value.asObject());
    return site.layout == object->info ? object : nullptr;
}

Result<void> Engine::callMember(MemberSite& site, std::size_t count, std::uint8_t flags)
{
    Value* bottom = m_sp - count - 1;
    const Value& holder = bottom->resolved();
    if (!holder.isObject() || !holder.asObject()) {
        auto failed = objectOf(holder, site);
        return Failed(std::move(failed).error());
    }
    const Ref<Dispatch> object(holder.asObject());
    Result<void> called;
    if (object->kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(*object);
        const ClassMember* member = TRY_RESULT(instanceMember(instance, site));
        called = callInstance(instance, *member, count, flags, bottom);
    } else {
        CHECK_RESULT(findMember(*object, site));
        called = callDispatch(*object, site.id, count, flags, bottom);
    }
    if (!called) return withSubject(Failed(std::move(called).error()), siteText(site));
    return {};
}

Result<void> Engine::callInstance(Instance& object, const ClassMember& member, std::size_t count,
                                  std::uint8_t flags, Value* result)
{
    const bool inside = frame().function->owner == object.info;
    if (member.field >= 0) {
        Value& field = object.fields[static_cast<std::size_t>(member.field)];
        const Symbol name = object.info->fields[static_cast<std::size_t>(member.field)].name;
        if (member.isPrivate && !inside) return fault(error::kNoSuchMember, m_names.spelling(name));
        if (count > 0) return callVariable(field, name, count, flags, result);
        finishCall(result, field);
        return {};
    }
    Function* function = member.call ? member.call : member.get;
    if (!function || (function->isPrivate && !inside)) return fault(error::kNoSuchMember);
    if (function == member.get && function->byReference.empty() && count > 0) {
        // The arguments index what the property answers.
        Value answer = TRY_RESULT(call(*function, &object, {}));
        return callVariable(answer, function->name, count, flags, result);
    }
    return pushFrame(*function, count, result, Ref<Instance>(&object), false);
}

// object, arguments..., value ->; what lies from `bottom` on goes as well
Result<void> Engine::putMember(MemberSite& site, std::size_t count, std::uint8_t flags, Value* bottom)
{
    Value* holder = m_sp - count - 2;
    Dispatch* found = TRY_RESULT(objectOf(*holder, site));
    const Ref<Dispatch> object(found);
    if (object->kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(*object);
        const ClassMember* member = TRY_RESULT(instanceMember(instance, site));
        return putInstance(instance, *member, site.name, count, flags, bottom);
    }
    CHECK_RESULT(findMember(*object, site));
    dereference(holder + 1, count + 1);
    const bool isSet = (flags & kSet) != 0;
    if (isSet && !m_sp[-1].isObject()) return fault(error::kObjectRequired);
    const auto access = isSet ? Dispatch::Access::PutRef : Dispatch::Access::Put;
    auto put = object->invokeIn(m_locale->id, site.id, access, Arguments(holder + 1, count + 1));
    if (!put) return withSubject(Failed(std::move(put).error()), siteText(site));
    dropTo(bottom);
    return {};
}

Result<void> Engine::putInstance(Instance& object, const ClassMember& member, Symbol name, std::size_t count,
                                 std::uint8_t flags, Value* bottom)
{
    const bool inside = frame().function->owner == object.info;
    if ((flags & kSet) != 0 && !m_sp[-1].isObject()) return fault(error::kObjectRequired, quoted(m_sp[-1]));
    if (member.field >= 0) {
        if (member.isPrivate && !inside) return fault(error::kNoSuchMember, m_names.spelling(name));
        Value& field = object.fields[static_cast<std::size_t>(member.field)];
        if (count > 0) return putIndexed(field, name, count, flags, bottom);
        CHECK_RESULT(store(field, pop(), flags));
        dropTo(bottom);
        return {};
    }
    // Property Let takes an object as it is; what becomes of it is its own affair.
    Function* function = (flags & kSet) != 0 ? member.set : member.let;
    if (!function && (flags & kSet) == 0 && m_sp[-1].isObject()) function = member.set;
    if (!function && member.get && member.get->byReference.empty() && count > 0) {
        // object.Items(1) = 2, where Items answers an array or a collection
        Value answer = TRY_RESULT(call(*member.get, &object, {}));
        return putIndexed(answer, name, count, flags, bottom);
    }
    if (!function || (function->isPrivate && !inside)) {
        return fault(member.get ? error::kWrongArguments : error::kNoSuchMember, m_names.spelling(name));
    }
    return pushFrame(*function, count + 1, bottom, Ref<Instance>(&object), true);
}

// arguments..., value -> ; what lies from `bottom` on goes as well
Result<void> Engine::putIndexed(Value& base, Symbol name, std::size_t count, std::uint8_t flags,
                                Value* bottom)
{
    Value& target = base.resolved();
    if (target.isArray()) {
        auto found = element(*target.writableArray(), m_sp - count - 1, count);
        if (!found) return named(Failed(std::move(found).error()), name);
        Value value = pop();
        // Fetching a default value may run code; the element is looked up again afterwards.
        if ((flags & kSet) == 0 && value.isObject()) {
            value = TRY_RESULT(plain(value));
            if (!target.isArray()) return fault(error::kTypeMismatch, m_names.spelling(name));
            found = element(*target.writableArray(), m_sp - count, count);
            if (!found) return named(Failed(std::move(found).error()), name);
        }
        CHECK_RESULT(store(**found, std::move(value), flags));
        dropTo(bottom);
        return {};
    }
    if (!target.isObject()) return fault(error::kTypeMismatch, m_names.spelling(name));
    if (!target.asObject()) return fault(error::kObjectNotSet, m_names.spelling(name));
    const Ref<Dispatch> object(target.asObject());
    dereference(m_sp - count - 1, count + 1);
    if (object->kind() == Dispatch::Kind::Instance) {
        auto& instance = static_cast<Instance&>(*object);
        const auto own = instance.info->defaultMember;
        if (!own) return fault(error::kNoSuchMember, m_names.spelling(name));
        return putInstance(instance, instance.info->members.find(*own)->second, *own, count, flags, bottom);
    }
    const auto access = (flags & kSet) != 0 ? Dispatch::Access::PutRef : Dispatch::Access::Put;
    auto put = object->invokeIn(m_locale->id, Dispatch::kDefaultMember, access,
                                Arguments(m_sp - count - 1, count + 1));
    if (!put) return named(Failed(std::move(put).error()), name);
    dropTo(bottom);
    return {};
}

// arguments..., value -> ; what lies from `bottom` on goes as well
Result<void> Engine::putGlobal(Symbol name, std::size_t count, std::uint8_t flags, Value* bottom)
{
    Global& found = *m_globals[name];
    if (found.kind == Global::Kind::Undefined) {
        if (Value* declared = declaredHere(name)) return putIndexed(*declared, name, count, flags, bottom);
        resolveHostMember(name, found);
    }
    switch (found.kind) {
    case Global::Kind::Variable:
    case Global::Kind::HostObject: return putIndexed(found.value, name, count, flags, bottom);
    case Global::Kind::HostMember:
    case Global::Kind::Intrinsic: {
        // Left = 10 cannot mean the function either.
        const auto [host, id] = found.kind == Global::Kind::Intrinsic
                                    ? hostMember(name)
                                    : std::pair(Ref<Dispatch>(found.value.asObject()), found.member);
        if (!host) return fault(error::kIllegalAssignment, m_names.spelling(name));
        dereference(m_sp - count - 1, count + 1);
        const auto access = (flags & kSet) != 0 ? Dispatch::Access::PutRef : Dispatch::Access::Put;
        auto put = host->invokeIn(m_locale->id, id, access, Arguments(m_sp - count - 1, count + 1));
        if (!put) return named(Failed(std::move(put).error()), name);
        dropTo(bottom);
        return {};
    }
    case Global::Kind::Undefined:
        if (frame().function->optionExplicit) return fault(error::kUndefinedVariable, m_names.spelling(name));
        return fault(error::kTypeMismatch, m_names.spelling(name));
    default: return fault(error::kIllegalAssignment, m_names.spelling(name));
    }
}

} // namespace script::vbscript
