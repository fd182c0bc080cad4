#pragma once

#include "script/ScriptControl.h"
#include "skin/ObjectDispatch.h"
#include "skin/SkinHost.h"

#include <QElapsedTimer>
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
class Bridge : private script::Host
{
public:
    /// So many questions (MsgBox, InputBox) may one call put to the user; then the call is ended.
    static constexpr int kMaxQuestions = 20;
    /// So many may come from what runs by itself, all in all.
    static constexpr int kMaxUnprompted = 3;

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
    /// Whose file a script is: errors of a library say so behind their line.
    enum class Source { Skin, Library };
    /// Names of the script files, for what is said of mistakes in them.
    void setFiles(const QString& script, const QString& library)
    {
        m_scriptFile = script;
        m_libraryFile = library;
    }
    /// @returns what failed, with its line in the file
    std::optional<QString> addCode(const QString& code, Source source = Source::Skin);
    void reset();

    /// Whether a statement or an expression is running: what would take its ground away has to wait.
    [[nodiscard]] bool isRunning() const { return m_depth > 0; }

    /// Whether what runs was set off by no act of the user's: a layout, a tick, another movie. It has no
    /// business with the user then.
    [[nodiscard]] bool runsByItself() const { return m_depth > 0 && m_passes > 0; }
    /// From here to endPass() all calls together have the time of one pass. One within another is part of it.
    void beginPass();
    /// @returns whether the calls of the pass have used up their time; for the outermost one only
    bool endPass();
    /// Whether they have used it up already. What is left of the pass is not run.
    [[nodiscard]] bool hasOverrun() const { return m_passes > 0 && m_passMs > kPassMs; }

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
    /// A window that does not answer for longer has hung, as far as its user can tell.
    static constexpr double kCallMs = 4000, kPassMs = 2000;
    /// One call of the engine, maybe inside another.
    class Call;

    int messageBox(const std::u16string& text, int buttons, const std::u16string& title) override;
    std::optional<std::u16string> inputBox(const std::u16string& text, const std::u16string& title,
                                           const std::u16string& preset) override;
    bool continueAfterTimeout() override;
    /// @returns whether the call may put one question more
    bool mayAsk();
    /// Nothing runs any more once the program ends, or a pass has used up its time.
    [[nodiscard]] bool isOver() const;
    /// Adds what has passed to the times.
    void count();

    std::optional<double> toNumber(const script::Result<script::Value>& value);
    void compile(Expression& expression);

    SkinHost& m_host;
    script::Host* m_scriptHost;
    ScriptObjects m_objects; // before the engine, whose values refer to it
    script::Ref<script::Dispatch> m_player;
    script::ScriptControl m_engine;
    QSet<QString> m_hanging; ///< statements and expressions that ran out of time, and are not run again
    QString m_lastTimerError;
    bool m_begun = false; ///< the engine knows the player
    int m_functions = 0;
    int m_depth = 0; ///< calls of the engine, one inside another
    int m_questions = 0, m_unprompted = 0;
    bool m_isEnding = false; ///< the call at hand is to end
    int m_passes = 0;
    double m_passMs = 0, m_callMs = 0; ///< that scripts have run, without what they waited for the user
    QElapsedTimer m_since;             ///< when that was counted last
    QString m_scriptFile, m_libraryFile;
};

} // namespace skin
