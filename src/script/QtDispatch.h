#pragma once

#include "script/Dispatch.h"

#include <QObject>
#include <QPointer>
#include <QVariant>

namespace script
{

/// Shows a QObject to scripts: its properties, signals apart its invokable methods and public slots, by name
/// without regard to case. Arguments convert to the parameters' types; those with default values may be left
/// out (the meta-object lists such a method once for each number of arguments). Texts and numbers convert by
/// the rules of scripts, in the calling script's locale. Values of the kinds below
/// cross the border: numbers, bool, QString, QDateTime, QVariantList (an array), QObject* (shown the same
/// way).
///
/// The object may go away before its dispatch; its members then report 91.
class QtDispatch final : public Dispatch
{
public:
    /// @param object not owned
    /// @param typeName what TypeName answers; the class's own name when empty
    explicit QtDispatch(QObject* object, std::u16string typeName = {});

    [[nodiscard]] std::u16string typeName() const override { return m_typeName; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    /// As in English.
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;
    Result<Value> invokeIn(int locale, MemberId member, Access access, Arguments arguments) override;
    [[nodiscard]] const void* layout() const override;
    [[nodiscard]] QObject* object() const { return m_object; }

private:
    [[nodiscard]] std::optional<MemberId> memberId(const QString& wanted, Qt::CaseSensitivity letters) const;
    Result<Value> call(int locale, const QByteArray& name, Arguments arguments);

    QPointer<QObject> m_object;
    const QMetaObject* m_class; // static data
    std::u16string m_typeName;
};

/// @errors 13 for values that have no counterpart
Result<QVariant> variantFromValue(const Value& value);
/// @errors 458 for types that scripts do not know
Result<Value> valueFromVariant(const QVariant& variant);

} // namespace script
