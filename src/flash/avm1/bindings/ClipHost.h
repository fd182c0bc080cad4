#pragma once

#include "flash/avm1/interpreter/Host.h"
#include "flash/stage/Stage.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flash::avm1
{

class StageBinding;

/// The stage as the script machine knows it: its clips by their objects, and what the machine's actions ask
/// of them.
class ClipHost final : public Host
{
public:
    explicit ClipHost(StageBinding& binding) : m_binding(binding) {}

    /// The same random numbers again.
    void restart(std::uint32_t randomSeed) { m_random = randomSeed; }

    // ---- Host ----
    [[nodiscard]] StageBinding* binding() override { return &m_binding; }
    [[nodiscard]] const base::TextCode& textCode() const override;
    void trace(std::u16string_view text) override;
    void log(std::string_view text) override;
    void reportError(std::u16string_view text) override;
    [[nodiscard]] bool isOfLaterPlayers() const override;
    double timeMs() override;
    double wallClockMs() override;
    std::uint32_t random() override;
    double realTimeMs() override;
    bool isClip(Object* object) override;
    bool isStageObject(Object* object) override;
    Object* parent(Object* clip) override;
    Object* root(Object* clip) override;
    Object* level(int number) override;
    Object* child(Object* clip, std::u16string_view name, bool caseSensitive) override;
    std::u16string targetPath(Object* object) override;
    int movieVersion(Object* clip) override;
    Value property(Object* clip, int index) override;
    void setProperty(Object* clip, int index, Value value) override;
    void gotoFrame(Object* clip, int frame, bool play) override;
    bool gotoLabel(Object* clip, std::u16string_view label, bool play) override;
    void play(Object* clip) override;
    void stop(Object* clip) override;
    void nextFrame(Object* clip) override;
    void previousFrame(Object* clip) override;
    std::optional<int> frameByLabel(Object* clip, std::u16string_view label) override;
    bool isFrameLoaded(Object* clip, int frame) override;
    void callFrame(Object* clip, int frame) override;
    void stopAllSounds() override;
    void toggleQuality() override;
    void cloneClip(Object* clip, std::u16string_view name, int depth) override;
    void removeClip(Object* clip) override;
    void startDrag(const DragRequest& request) override;
    void endDrag() override;
    void requestUrl(const UrlRequest& request) override;
    void fsCommand(std::u16string_view command, std::u16string_view argument) override;
    void updateAfterEvent() override;
    bool askToStopScript(double seconds) override;
    bool endsScripts() override;
    void scriptsEnded(std::string_view why) override;

    /// Sets `name=value&...` on an object; for LoadVars. Escapes are bytes of the 8-bit code or of UTF-8, as
    /// the text around them was read.
    void decodeVariables(Object* object, std::u16string_view text);
    /// The same of the bytes of a file; for loadVariables.
    void decodeVariables(Object* object, std::string_view bytes);
    /// The own enumerable variables of an object as texts, for sending.
    std::vector<std::pair<std::string, std::string>> collectVariables(Object* object);
    /// Properties by number; the names are `_x`, `_y`, ...
    Value propertyOf(stage::Node& node, int index);
    void setPropertyOf(stage::Node& node, int index, Value value);

private:
    enum class Coding : std::uint8_t { Codepage, Utf8 };
    void decodeVariables(Object* object, std::string_view text, Coding coding);
    [[nodiscard]] Vm& vm() const;
    [[nodiscard]] stage::Stage& stage() const;

    StageBinding& m_binding;
    std::uint32_t m_random = 1;
};

} // namespace flash::avm1
