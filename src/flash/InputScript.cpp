#include "flash/InputScript.h"

#include "base/Files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <map>

namespace flash
{

namespace
{

using stage::MouseButton;
using stage::Stage;
using stage::TextCommand;
using Scale = InputScript::Scale;
using Step = InputScript::Step;

constexpr std::uint64_t kMaxInputBytes = 64 << 20;
constexpr double kPixelsPerWheelLine = 40;

const std::map<QString, TextCommand>& textCommands()
{
    static const std::map<QString, TextCommand> commands = {
        {"MoveLeft", TextCommand::MoveLeft},
        {"MoveRight", TextCommand::MoveRight},
        {"MoveUp", TextCommand::MoveUp},
        {"MoveDown", TextCommand::MoveDown},
        {"MoveLeftWord", TextCommand::MoveLeftWord},
        {"MoveRightWord", TextCommand::MoveRightWord},
        {"MoveLeftLine", TextCommand::MoveLineStart},
        {"MoveRightLine", TextCommand::MoveLineEnd},
        {"MoveLeftDocument", TextCommand::MoveDocumentStart},
        {"MoveRightDocument", TextCommand::MoveDocumentEnd},
        {"SelectLeft", TextCommand::SelectLeft},
        {"SelectRight", TextCommand::SelectRight},
        {"SelectUp", TextCommand::SelectUp},
        {"SelectDown", TextCommand::SelectDown},
        {"SelectLeftWord", TextCommand::SelectLeftWord},
        {"SelectRightWord", TextCommand::SelectRightWord},
        {"SelectLeftLine", TextCommand::SelectLineStart},
        {"SelectRightLine", TextCommand::SelectLineEnd},
        {"SelectLeftDocument", TextCommand::SelectDocumentStart},
        {"SelectRightDocument", TextCommand::SelectDocumentEnd},
        {"SelectAll", TextCommand::SelectAll},
        {"Copy", TextCommand::Copy},
        {"Cut", TextCommand::Cut},
        {"Paste", TextCommand::Paste},
        {"Backspace", TextCommand::Backspace},
        {"BackspaceWord", TextCommand::BackspaceWord},
        {"Delete", TextCommand::Delete},
        {"DeleteWord", TextCommand::DeleteWord},
        {"Enter", TextCommand::Enter},
    };
    return commands;
}

MouseButton buttonOf(const QJsonObject& event)
{
    const QString name = event["btn"].toString();
    if (name == "Middle") return MouseButton::Middle;
    if (name == "Right") return MouseButton::Right;
    return MouseButton::Left;
}

// Letters come without the shift key, as on a keyboard; other codes that print stand for themselves.
char32_t characterOf(int keyCode)
{
    if (keyCode >= 'A' && keyCode <= 'Z') return static_cast<char32_t>(keyCode - 'A' + 'a');
    const bool printsOrControls = keyCode == 8 || keyCode == 9 || keyCode == 13 || keyCode == 27 ||
                                  keyCode == ' ' || (keyCode >= '0' && keyCode <= '9');
    return printsOrControls ? static_cast<char32_t>(keyCode) : 0;
}

/// A line of what a menu shows, as it stands among the traces.
std::string menuLine(const stage::MenuItem& item)
{
    constexpr const char* kKinds[] = {"",        "[cut]",        "[copy]",      "[paste]",
                                      "[clear]", "[select all]", "[open link]", "[copy link]"};
    return std::string("menu: ") + (item.separatorBefore ? "| " : "") + item.caption +
           kKinds[static_cast<std::size_t>(item.kind)] + (item.enabled ? "" : " (off)");
}

void openMenu(Stage& stage, const std::function<std::vector<stage::MenuItem>()>& open)
{
    const auto items = open();
    stage::HostEvents& host = stage.services().host;
    if (items.empty()) host.traceLine("menu: nothing");
    for (const stage::MenuItem& item : items) host.traceLine(menuLine(item));
}

/// @returns an empty step for what is no event.
Step stepOf(const QJsonObject& event, const std::function<void(std::string)>& setClipboard)
{
    const QString type = event["type"].toString();
    const QJsonArray position = event["pos"].toArray();
    const double x = position.at(0).toDouble(), y = position.at(1).toDouble();
    if (type == "MouseMove")
        return [=](Stage& stage, const Scale& scale) { stage.pointer().move(x * scale.x, y * scale.y); };
    if (type == "MouseDown") {
        const int clicks = event["index"].toInt(0) + 1;
        return [=, button = buttonOf(event)](Stage& stage, const Scale& scale) {
            stage.pointer().press(x * scale.x, y * scale.y, button, clicks);
        };
    }
    if (type == "MouseUp")
        return [=, button = buttonOf(event)](Stage& stage, const Scale& scale) {
            stage.pointer().release(x * scale.x, y * scale.y, button);
        };
    if (type == "MouseWheel") {
        const double lines = event.contains("lines") ? event["lines"].toDouble()
                                                     : event["pixels"].toDouble() / kPixelsPerWheelLine;
        return [=](Stage& stage, const Scale&) { stage.pointer().wheel(static_cast<int>(lines)); };
    }
    if (type == "OpenMenu" && position.isEmpty())
        return [](Stage& stage, const Scale&) {
            openMenu(stage, [&] { return stage.pointer().openFocusMenu(); });
        };
    if (type == "OpenMenu")
        return [=](Stage& stage, const Scale& scale) {
            openMenu(stage, [&] { return stage.pointer().openMenu(x * scale.x, y * scale.y); });
        };
    if (type == "ChooseMenuItem")
        return [item = event["index"].toInt()](Stage& stage, const Scale&) {
            stage.pointer().chooseMenuItem(static_cast<std::size_t>(item));
        };
    if (type == "KeyDown" || type == "KeyUp") {
        const int code = event["key_code"].toInt();
        if (type == "KeyUp")
            return [=](Stage& stage, const Scale&) { stage.keyboard().release(code, characterOf(code)); };
        return [=](Stage& stage, const Scale&) { stage.keyboard().press(code, characterOf(code)); };
    }
    if (type == "TextInput") {
        const QJsonValue value = event["codepoint"];
        const auto text = value.toString().toUcs4();
        const char32_t character = value.isString() ? (text.isEmpty() ? 0 : static_cast<char32_t>(text[0]))
                                                    : static_cast<char32_t>(value.toInt());
        return [=](Stage& stage, const Scale&) { stage.keyboard().type(character); };
    }
    if (type == "TextComposition") {
        const std::u16string text = event["text"].toString().toStdU16String();
        const auto caret = static_cast<std::size_t>(event["caret"].toInt(static_cast<int>(text.size())));
        return [=](Stage& stage, const Scale&) { stage.keyboard().compose(text, caret); };
    }
    if (type == "TextControl") {
        const auto found = textCommands().find(event["code"].toString());
        if (found == textCommands().end()) return {};
        return [command = found->second](Stage& stage, const Scale&) { stage.keyboard().command(command); };
    }
    if (type == "SetClipboardText") {
        return
            [=, text = event["text"].toString().toStdString()](Stage&, const Scale&) { setClipboard(text); };
    }
    // The movie is not told that its window has the keys again.
    if (type == "FocusGained") return [](Stage&, const Scale&) {};
    if (type == "FocusLost") return [](Stage& stage, const Scale&) { stage.keyboard().leave(); };
    return {};
}

} // namespace

base::Result<InputScript> InputScript::read(const std::filesystem::path& file,
                                            std::function<void(std::string)> setClipboard)
{
    const auto bytes = TRY_RESULT(base::readFile(file, kMaxInputBytes));
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                                        static_cast<qsizetype>(bytes.size())),
                                &error);
    if (!document.isArray()) {
        return base::fail(base::ErrorCode::Malformed,
                          file.string() + ": needs a JSON array of events; " +
                              error.errorString().toStdString(),
                          static_cast<std::size_t>(error.offset));
    }
    InputScript script;
    script.m_frames.emplace_back();
    for (const QJsonValue& value : document.array()) {
        const QJsonObject event = value.toObject();
        if (event["type"].toString() == "Wait") {
            script.m_frames.emplace_back();
            continue;
        }
        Step step = stepOf(event, setClipboard);
        if (!step) {
            const QByteArray text = QJsonDocument(event).toJson(QJsonDocument::Compact);
            return base::fail(base::ErrorCode::Malformed,
                              file.string() + ": unknown event " + text.toStdString());
        }
        script.m_frames.back().push_back(std::move(step));
    }
    return script;
}

QString InputScript::nameOf(TextCommand command)
{
    const auto& names = textCommands();
    return std::ranges::find(names, command, [](const auto& entry) { return entry.second; })->first;
}

void InputScript::playUpToWait(Stage& stage)
{
    if (m_next == m_frames.size()) return;
    for (const Step& step : m_frames[m_next]) step(stage, m_scale);
    ++m_next;
}

} // namespace flash
