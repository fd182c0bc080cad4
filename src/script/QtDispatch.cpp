#include "script/QtDispatch.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Errors.h"

#include <QDateTime>
#include <QMetaMethod>
#include <QMetaProperty>

#include <array>
#include <cmath>

namespace script
{

namespace
{

namespace error = vbscript::error;

constexpr int kMaxArguments = 10; // of QMetaMethod::invoke

// Properties have the odd, methods the even ids: the default member's id is no property's.
constexpr int kIdsPerMember = 2;

QString text(std::u16string_view view)
{
    return QString::fromUtf16(view.data(), static_cast<qsizetype>(view.size()));
}
std::u16string_view view(const QString& string)
{
    return {reinterpret_cast<const char16_t*>(string.utf16()), static_cast<std::size_t>(string.size())};
}

const QDateTime& dayZero()
{
    static const QDateTime zero(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
    return zero;
}

bool isCallable(const QMetaMethod& method)
{
    return method.access() == QMetaMethod::Public &&
           (method.methodType() == QMetaMethod::Method || method.methodType() == QMetaMethod::Slot);
}

} // namespace

Result<QVariant> variantFromValue(const Value& value)
{
    switch (value.type()) {
    case VarType::Empty:
    case VarType::Null: return QVariant();
    case VarType::Boolean: return QVariant(value.whole() != 0);
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long: return QVariant(value.whole());
    case VarType::Single:
    case VarType::Double: return QVariant(value.asReal());
    case VarType::Currency: return QVariant(static_cast<double>(value.tenThousandths()) / 10000.0);
    case VarType::String: return QVariant(text(value.text()));
    case VarType::Date: {
        const double days = std::trunc(value.asReal());
        const double time = std::fabs(value.asReal() - days);
        const QDateTime utc =
            dayZero().addDays(static_cast<qint64>(days)).addMSecs(qRound64(time * 86400000.0));
        return QVariant(QDateTime(utc.date(), utc.time()));
    }
    case VarType::Array: {
        if (value.asArray()->bounds.size() > 1) return fault(error::kTypeMismatch);
        QVariantList list;
        for (const Value& element : value.asArray()->elements)
            list.append(TRY_RESULT(variantFromValue(element)));
        return QVariant(list);
    }
    case VarType::Object: {
        if (!value.asObject()) return QVariant::fromValue(static_cast<QObject*>(nullptr));
        if (auto* shown = dynamic_cast<QtDispatch*>(value.asObject()))
            return QVariant::fromValue(shown->object());
        return fault(error::kTypeMismatch);
    }
    default: return fault(error::kTypeMismatch);
    }
}

Result<Value> valueFromVariant(const QVariant& variant)
{
    switch (variant.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Void: return Value();
    case QMetaType::Bool: return Value::boolean(variant.toBool());
    case QMetaType::UChar: return Value::byte(static_cast<std::uint8_t>(variant.toUInt()));
    case QMetaType::Short: return Value::integer(static_cast<std::int16_t>(variant.toInt()));
    case QMetaType::Int:
    case QMetaType::Long: // 64 bits here, but it stands for the script's Long where it fits
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::ULong: {
        bool ok = false;
        const qlonglong number = variant.toLongLong(&ok);
        if (!ok || number > INT32_MAX || number < INT32_MIN) return Value::real(variant.toDouble());
        return Value::longInteger(static_cast<std::int32_t>(number));
    }
    case QMetaType::Float: return Value::single(variant.toFloat());
    case QMetaType::Double: return Value::real(variant.toDouble());
    case QMetaType::QString:
    case QMetaType::QChar:
    case QMetaType::QByteArray:
    case QMetaType::QUrl: return Value::string(view(variant.toString()));
    case QMetaType::QDate:
    case QMetaType::QDateTime: {
        const QDateTime local = variant.toDateTime();
        const QDateTime utc(local.date(), local.time(), Qt::UTC);
        const double days = static_cast<double>(dayZero().daysTo(utc));
        const double time = utc.time().msecsSinceStartOfDay() / 86400000.0;
        return Value::date(days < 0 ? days - time : days + time);
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        std::vector<Value> elements;
        for (const QVariant& element : variant.toList())
            elements.push_back(TRY_RESULT(valueFromVariant(element)));
        return Value::array(std::move(elements));
    }
    default: break;
    }
    if (variant.canConvert<QObject*>()) {
        auto* object = variant.value<QObject*>();
        return object ? Value::object(new QtDispatch(object)) : Value::object(nullptr);
    }
    // Enumerations and flags are numbers to a script.
    if ((variant.metaType().flags() & QMetaType::IsEnumeration) != 0)
        return Value::longInteger(variant.toInt());
    return fault(error::kUnknownType, view(QString::fromLatin1(variant.typeName())));
}

namespace
{

// Whole numbers beyond 32 bits pass through Double, as they do in scripts.
Result<QVariant> wholeNumber(const Value& value, const vbscript::Locale& locale)
{
    const double number = vbscript::roundHalfEven(TRY_RESULT(vbscript::toDouble(value, locale)));
    constexpr double kLimit = 9.2e18;
    if (!(std::fabs(number) < kLimit)) return fault(error::kOverflow);
    return QVariant(static_cast<qlonglong>(number));
}

Result<QVariant> convertedByScriptRules(const Value& value, QMetaType type, const vbscript::Locale& locale)
{
    switch (type.id()) {
    case QMetaType::Bool: return QVariant(TRY_RESULT(vbscript::toBoolean(value, locale)));
    case QMetaType::Float:
    case QMetaType::Double: return QVariant(TRY_RESULT(vbscript::toDouble(value, locale)));
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return wholeNumber(value, locale);
    case QMetaType::QString: return QVariant(text(TRY_RESULT(vbscript::toText(value, locale))));
    default: return variantFromValue(value);
    }
}

// Empty and Null stand for the neutral value of any type.
Result<QVariant> converted(const Value& value, QMetaType type, int localeId)
{
    if (value.isEmpty() || value.isNull()) return QVariant(type);
    const vbscript::Locale* locale = vbscript::Locale::byId(localeId);
    QVariant result =
        TRY_RESULT(convertedByScriptRules(value, type, locale ? *locale : vbscript::Locale::english()));
    if (result.metaType() == type) return result;
    const bool isWhole = result.typeId() == QMetaType::LongLong;
    const qlonglong number = isWhole ? result.toLongLong() : 0;
    if (!result.convert(type)) return fault(error::kTypeMismatch);
    // Qt cuts a number that does not fit.
    if (isWhole && result.toLongLong() != number) return fault(error::kOverflow);
    return result;
}

} // namespace

QtDispatch::QtDispatch(QObject* object, std::u16string typeName)
    : m_object(object), m_class(object->metaObject()), m_typeName(std::move(typeName))
{
    if (m_typeName.empty()) m_typeName = view(QString::fromLatin1(m_class->className()));
}

const void* QtDispatch::layout() const { return m_class; }

std::optional<Dispatch::MemberId> QtDispatch::memberId(std::u16string_view name) const
{
    // A name as it is written in the class goes before one that differs in case only: a window's own
    // FullScreen is not the toolkit's fullScreen.
    const QString wanted = text(name);
    if (const auto exact = memberId(wanted, Qt::CaseSensitive)) return exact;
    return memberId(wanted, Qt::CaseInsensitive);
}

std::optional<Dispatch::MemberId> QtDispatch::memberId(const QString& wanted,
                                                       Qt::CaseSensitivity letters) const
{
    for (int i = m_class->propertyCount() - 1; i >= 0; --i) {
        if (wanted.compare(QLatin1String(m_class->property(i).name()), letters) == 0) {
            return i * kIdsPerMember + 1;
        }
    }
    // The latest method of that name; call() looks for the one that takes the given arguments.
    for (int i = m_class->methodCount() - 1; i >= 0; --i) {
        const QMetaMethod method = m_class->method(i);
        if (isCallable(method) && wanted.compare(QLatin1String(method.name()), letters) == 0) {
            return i * kIdsPerMember + 2;
        }
    }
    return std::nullopt;
}

Result<Value> QtDispatch::invoke(MemberId member, Access access, Arguments arguments)
{
    return invokeIn(vbscript::Locale::english().id, member, access, arguments);
}

Result<Value> QtDispatch::invokeIn(int locale, MemberId member, Access access, Arguments arguments)
{
    if (!m_object) return fault(error::kObjectNotSet);
    const bool puts = access == Access::Put || access == Access::PutRef;
    if (member == kDefaultMember) return fault(error::kNoSuchMember);
    if (member % kIdsPerMember == 0) {
        if (puts) return fault(error::kNoSuchMember);
        return call(locale, m_class->method(member / kIdsPerMember - 1).name(), arguments);
    }
    const QMetaProperty property = m_class->property(member / kIdsPerMember);
    if (!puts) {
        if (!arguments.empty()) {
            // obj.List(2): the index goes into what the property holds.
            const Value held = TRY_RESULT(valueFromVariant(property.read(m_object)));
            if (!held.isArray() || arguments.size() != 1 || !arguments[0].isWhole())
                return fault(error::kWrongArguments);
            const auto& elements = held.asArray()->elements;
            const std::int32_t index = arguments[0].whole();
            if (index < 0 || static_cast<std::size_t>(index) >= elements.size())
                return fault(error::kSubscript);
            return elements[static_cast<std::size_t>(index)];
        }
        return valueFromVariant(property.read(m_object));
    }
    if (arguments.size() != 1) return fault(error::kWrongArguments);
    if (!property.isWritable()) return fault(error::kNoSuchMember);
    const bool asItIs = property.metaType().id() == QMetaType::QVariant || property.isEnumType();
    const QVariant value = TRY_RESULT(asItIs ? variantFromValue(arguments[0])
                                             : converted(arguments[0], property.metaType(), locale));
    if (!property.write(m_object, value)) return fault(error::kTypeMismatch);
    return Value();
}

// Of the methods of that name the first one, from the most derived class on, whose parameters take the
// arguments.
Result<Value> QtDispatch::call(int locale, const QByteArray& name, Arguments arguments)
{
    bool countFits = false;
    for (int i = m_class->methodCount() - 1; i >= 0; --i) {
        const QMetaMethod method = m_class->method(i);
        const auto count = static_cast<int>(arguments.size());
        if (!isCallable(method) || method.name().compare(name, Qt::CaseInsensitive) != 0) continue;
        if (method.parameterCount() != count || count > kMaxArguments) continue;
        countFits = true;
        std::array<QVariant, kMaxArguments> values;
        std::array<QGenericArgument, kMaxArguments> generic;
        bool converts = true;
        for (int k = 0; k < count && converts; ++k) {
            const auto index = static_cast<std::size_t>(k);
            const QMetaType type = method.parameterMetaType(k);
            const bool asItIs = type.id() == QMetaType::QVariant;
            auto value =
                asItIs ? variantFromValue(arguments[index]) : converted(arguments[index], type, locale);
            converts = value.has_value();
            if (!converts) break;
            values[index] = std::move(*value);
            generic[index] = asItIs ? QGenericArgument("QVariant", &values[index])
                                    : QGenericArgument(type.name(), values[index].constData());
        }
        if (!converts) continue;
        const QMetaType type = method.returnMetaType();
        QVariant result =
            type.id() == QMetaType::Void || type.id() == QMetaType::QVariant ? QVariant() : QVariant(type);
        const QGenericReturnArgument answer = type.id() == QMetaType::Void ? QGenericReturnArgument()
                                              : type.id() == QMetaType::QVariant
                                                  ? QGenericReturnArgument("QVariant", &result)
                                                  : QGenericReturnArgument(type.name(), result.data());
        const bool called =
            method.invoke(m_object, Qt::DirectConnection, answer, generic[0], generic[1], generic[2],
                          generic[3], generic[4], generic[5], generic[6], generic[7], generic[8], generic[9]);
        if (!called) return fault(error::kTypeMismatch);
        return valueFromVariant(result);
    }
    return fault(countFits ? error::kTypeMismatch : error::kWrongArguments);
}

} // namespace script
