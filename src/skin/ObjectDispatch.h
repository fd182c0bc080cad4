#pragma once

#include "script/QtDispatch.h"

#include <QHash>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

namespace skin
{

/// Shows widgets to the scripts of a skin: of a QObject only what is named in PascalCase, the names that
/// scripts may know, so that no skin reaches the toolkit's own slots. The same object is always the same
/// dispatch.
class ScriptObjects
{
public:
    ScriptObjects();
    ~ScriptObjects();
    ScriptObjects(const ScriptObjects&) = delete;
    ScriptObjects& operator=(const ScriptObjects&) = delete;

    /// Finds an object that is a member by its name; null when there is none.
    using FindMember = std::function<QObject*(const QString& lowerCaseName)>;

    /// @returns null for null
    script::Ref<script::Dispatch> dispatchOf(QObject* object);
    /// Registers an object that has further members.
    /// @param behind  an object whose members are the object's own too, after its own ones; may be null
    /// @param member  may be empty; its answers must not change
    script::Ref<script::Dispatch> add(QObject* object, QObject* behind, FindMember member,
                                      const QString& typeName = {});
    /// Forgets objects that are gone.
    void prune();

private:
    class Table;
    class Shown;
    const Table& tableOf(QObject* object);

    std::vector<std::pair<const QMetaObject*, std::unique_ptr<Table>>> m_tables;
    QHash<QObject*, script::Ref<Shown>> m_shown;
};

} // namespace skin
