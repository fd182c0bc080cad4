#include "skin/ObjectDispatch.h"

#include "base/Failure.h"

#include <QMetaMethod>
#include <QMetaProperty>

#include <cmath>

namespace skin
{
namespace
{

QString text(std::u16string_view view)
{
    return QString::fromUtf16(view.data(), static_cast<qsizetype>(view.size()));
}

} // namespace

/// The ids of a class's members by name, lower case.
class ScriptObjects::Table
{
public:
    explicit Table(QObject* example)
    {
        const script::Ref<script::QtDispatch> plain(new script::QtDispatch(example));
        const auto add = [&](const char* name) {
            if (*name < 'A' || *name > 'Z') return;
            const QString key = QString::fromLatin1(name).toLower();
            if (const auto id = plain->memberId(QString::fromLatin1(name).toStdU16String()))
                ids.insert(key, *id);
        };
        const QMetaObject& type = *example->metaObject();
        for (int i = 0; i < type.propertyCount(); ++i) add(type.property(i).name());
        for (int i = 0; i < type.methodCount(); ++i) add(type.method(i).name().constData());
    }
    QHash<QString, int> ids;
};

class ScriptObjects::Shown final : public script::Dispatch
{
public:
    Shown(ScriptObjects& objects, QObject* object, QObject* behind, FindMember member,
          const QString& typeName)
        : m_objects(objects), m_findMember(std::move(member)), m_typeName(typeName.toStdU16String())
    {
        m_parts.push_back({object, script::make<script::QtDispatch>(object), &objects.tableOf(object)});
        if (behind != nullptr)
            m_parts.push_back({behind, script::make<script::QtDispatch>(behind), &objects.tableOf(behind)});
        const QMetaObject& type = *object->metaObject();
        const int named = type.indexOfClassInfo(kScriptName);
        if (m_typeName.empty() && named >= 0)
            m_typeName = QString::fromUtf8(type.classInfo(named).value()).toStdU16String();
        if (m_typeName.empty()) m_typeName = m_parts[0].dispatch->typeName();
    }

    [[nodiscard]] QObject* object() const { return m_parts[0].object; }
    [[nodiscard]] std::u16string typeName() const override { return m_typeName; }

    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override
    {
        const QString key = text(name).toLower();
        for (std::size_t i = 0; i < m_parts.size(); ++i)
            if (const auto found = m_parts[i].table->ids.constFind(key);
                found != m_parts[i].table->ids.cend())
                return static_cast<MemberId>(i) * kPartIds + *found;
        if (!m_findMember) return std::nullopt;
        if (const auto known = m_memberIds.constFind(key); known != m_memberIds.cend()) return *known;
        QObject* member = m_findMember(key);
        if (member == nullptr) {
            // The name of a control array: its elements are members of that name and a number.
            if (key.isEmpty() || m_findMember(key + '0') == nullptr) return std::nullopt;
            m_arrays.push_back(key);
            return *m_memberIds.insert(key, kArrayIds + static_cast<MemberId>(m_arrays.size() - 1));
        }
        m_members.push_back(member);
        return *m_memberIds.insert(key, kMemberIds + static_cast<MemberId>(m_members.size() - 1));
    }

    script::Result<script::Value> invoke(MemberId member, Access access, script::Arguments arguments) override
    {
        const bool puts = access == Access::Put || access == Access::PutRef;
        if (member >= kArrayIds)
            return elementOf(m_arrays.at(static_cast<std::size_t>(member - kArrayIds)), puts, arguments);
        if (member >= kMemberIds) {
            if (puts) return script::fault(kNoSuchMember);
            return show(m_members.at(static_cast<std::size_t>(member - kMemberIds)));
        }
        if (member == kDefaultMember) {
            // A label by itself stands for its text.
            const auto caption = m_parts[0].table->ids.constFind("caption");
            if (caption == m_parts[0].table->ids.cend()) return script::fault(kNoSuchMember);
            return m_parts[0].dispatch->invoke(*caption, access, arguments);
        }
        std::vector<script::Value> plain;
        plain.reserve(arguments.size());
        for (const script::Value& argument : arguments) {
            const auto* shown = argument.isObject() ? dynamic_cast<Shown*>(argument.asObject()) : nullptr;
            plain.push_back(
                shown == nullptr ? argument : script::Value::object(new script::QtDispatch(shown->object())));
        }
        const script::Ref<script::Dispatch> kept(this); // a method may unload the skin that holds us
        script::Ref<script::QtDispatch> part =
            m_parts.at(static_cast<std::size_t>(member / kPartIds)).dispatch;
        auto result = guarded([&] { return part->invoke(member % kPartIds, access, plain); });
        if (!result || !result->isObject() || result->asObject() == nullptr) return result;
        if (auto* raw = dynamic_cast<script::QtDispatch*>(result->asObject())) return show(raw->object());
        return result;
    }

    // An object with members of its own shares its ids with no other.
    [[nodiscard]] const void* layout() const override
    {
        if (m_parts.size() == 1 && !m_findMember) return m_parts[0].table;
        return this;
    }

private:
    static constexpr const char* kScriptName = "ScriptName"; ///< what TypeName answers for a class
    static constexpr int kPartIds = 1 << 16;
    static constexpr int kMemberIds = 1 << 24;
    static constexpr int kArrayIds = 1 << 25;
    static constexpr int kNoSuchMember = 438;
    static constexpr int kWrongArguments = 450;
    static constexpr int kNoSuchElement = 340;

    struct Part {
        QPointer<QObject> object;
        script::Ref<script::QtDispatch> dispatch;
        const Table* table;
    };

    /// A failing procedure of the player is an error of the statement that called it.
    template <class Call>
    static script::Result<script::Value> guarded(Call call)
    {
        try {
            return call();
        } catch (const base::Failure& failure) {
            auto failed = script::fault(failure.number());
            failed.value()->description = QString::fromStdString(failure.description()).toStdU16String();
            failed.value()->source = QString::fromStdString(failure.source()).toStdU16String();
            return failed;
        }
    }

    script::Result<script::Value> elementOf(const QString& array, bool puts, script::Arguments arguments)
    {
        if (puts) return script::fault(kNoSuchMember);
        if (arguments.size() != 1) return script::fault(kWrongArguments);
        const auto index = script::variantFromValue(arguments[0]);
        if (!index) return tl::make_unexpected(index.error());
        bool isNumber = false;
        const int number = static_cast<int>(std::nearbyint(index->toDouble(&isNumber)));
        QObject* element = isNumber && number >= 0 ? m_findMember(array + QString::number(number)) : nullptr;
        if (element == nullptr) return script::fault(kNoSuchElement);
        return show(element);
    }

    script::Value show(QObject* object) { return script::Value::object(m_objects.dispatchOf(object).get()); }

    ScriptObjects& m_objects; // outlives the engine, and so every script value
    std::vector<Part> m_parts;
    FindMember m_findMember;
    mutable std::vector<QPointer<QObject>> m_members;
    mutable std::vector<QString> m_arrays;        // names of control arrays, lower case
    mutable QHash<QString, MemberId> m_memberIds; // of m_members and m_arrays
    std::u16string m_typeName;
};

ScriptObjects::ScriptObjects() = default;
ScriptObjects::~ScriptObjects() = default;

const ScriptObjects::Table& ScriptObjects::tableOf(QObject* object)
{
    const QMetaObject* type = object->metaObject();
    for (const auto& [known, table] : m_tables)
        if (known == type) return *table;
    m_tables.emplace_back(type, std::make_unique<Table>(object));
    return *m_tables.back().second;
}

script::Ref<script::Dispatch> ScriptObjects::dispatchOf(QObject* object)
{
    if (object == nullptr) return nullptr;
    const auto known = m_shown.constFind(object);
    if (known != m_shown.cend() && (*known)->object() == object) return *known;
    return add(object, nullptr, {});
}

script::Ref<script::Dispatch> ScriptObjects::add(QObject* object, QObject* behind, FindMember member,
                                                 const QString& typeName)
{
    const auto shown = script::make<Shown>(*this, object, behind, std::move(member), typeName);
    m_shown.insert(object, shown);
    return shown;
}

void ScriptObjects::prune()
{
    m_shown.removeIf([](const auto& entry) { return entry.value()->object() == nullptr; });
}

} // namespace skin
