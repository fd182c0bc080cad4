#pragma once

#include "script/ScriptControl.h"
#include "skin/ObjectDispatch.h"
#include "skin/SkinHost.h"

#include <QSet>

#include <optional>

namespace skin
{

/// A position as the description gives it. Compiled when it is first laid out, unless it is a plain number.
class Expression
{
public:
    Expression() = default;
    explicit Expression(QString text);
    [[nodiscard]] const QString& text() const { return m_text; }

private:
    friend class Bridge;
    enum class Kind { Number, NotYetCompiled, Function, Text };
    QString m_text;
    Kind m_kind = Kind::Number;
    double m_number = 0;
    std::u16string m_function; ///< the function of the engine that answers the expression
};

/// The one path between a skin and its script.
class Bridge
{
public:
    /// @param host outlives the bridge
    /// @param scriptHost answers what scripts ask the user; may be null
    Bridge(SkinHost& host, script::Host* scriptHost);

    [[nodiscard]] ScriptObjects& objects() { return m_objects; }
    /// The object that scripts know as "Player"; its members are known without the name as well.
    void setPlayerObject(script::Ref<script::Dispatch> player) { m_player = std::move(player); }

    /// Drops everything that a script has made, and sets the engine up for a skin.
    /// @returns what failed: an unknown language. The engine is then set up for its own one.
    std::optional<QString> begin(const QString& language);
    void addObject(const QString& name, QObject* object);
    /// @returns what failed, with its line in the file
    std::optional<QString> addCode(const QString& code);
    void reset();

    enum class Outcome { Done, Failed };
    /// How often a statement runs by itself, and so how often its failure is written down.
    enum class Repetition { Event, Timer };
    /// Runs a statement that the user has typed. Works without a skin as well.
    /// @throws base::Failure with the engine's number, source and description
    void ExecuteStatement(const QString& statement);
    /// Runs a statement; an empty one does nothing. A failure is written to the journal.
    Outcome RunScript(const QString& statement, Repetition repetition = Repetition::Event);
    /// @returns the number; 0 for an expression that fails or is empty; nothing for a value that is none
    std::optional<double> EvalScript(const QString& expression);
    /// The same for an expression that is asked again and again.
    std::optional<double> evaluate(Expression& expression);

private:
    std::optional<double> toNumber(const script::Result<script::Value>& value);
    void compile(Expression& expression);

    SkinHost& m_host;
    ScriptObjects m_objects; // before the engine, whose values refer to it
    script::Ref<script::Dispatch> m_player;
    script::ScriptControl m_engine;
    QSet<QString> m_hanging; ///< statements and expressions that ran out of time, and are not run again
    QString m_lastTimerError;
    bool m_begun = false; ///< the engine knows the player
    int m_functions = 0;
};

} // namespace skin
