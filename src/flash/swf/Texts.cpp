#include "flash/swf/Texts.h"

#include "base/ByteReader.h"

#include <algorithm>
#include <string_view>
#include <variant>

namespace flash::swf
{
namespace
{

// A hint needs no more than this.
constexpr std::size_t kEnoughBytes = 64 << 10;

class Collector
{
public:
    void take(std::string_view text)
    {
        if (!text.empty() && m_texts.size() + text.size() < kEnoughBytes) (m_texts += text) += '\n';
    }

    void take(ActionBlock block)
    {
        base::ByteReader reader(block.bytes);
        constexpr std::uint8_t kFirstLong = 0x80, kPool = 0x88, kPush = 0x96;
        while (const auto code = reader.u8()) {
            if (*code < kFirstLong) continue;
            const std::size_t length = reader.u16().value_or(0);
            const base::Bytes rest = reader.rest();
            const base::Bytes payload = rest.first(std::min(length, rest.size()));
            reader = base::ByteReader(rest.subspan(payload.size()));
            if (*code == kPool || *code == kPush) takeRuns(payload);
        }
    }

    void take(const Timeline& timeline)
    {
        for (const Frame& frame : timeline.frames) {
            take(frame.label);
            for (const ControlTag& tag : frame.tags) {
                if (const auto* actions = std::get_if<DoAction>(&tag)) take(actions->actions);
                const auto* place = std::get_if<PlaceObject>(&tag);
                if (place == nullptr) continue;
                for (const ClipAction& action : place->clipActions) take(action.actions);
            }
        }
    }

    std::string texts() && { return std::move(m_texts); }

private:
    /// The texts of a payload end in zeros, and so does every number between them, sooner or later: what has
    /// bytes that no text has is none.
    void takeRuns(base::Bytes payload)
    {
        for (std::size_t start = 0; start < payload.size();) {
            const auto end =
                std::find(payload.begin() + static_cast<std::ptrdiff_t>(start), payload.end(), 0);
            std::string run(payload.begin() + static_cast<std::ptrdiff_t>(start), end);
            start += run.size() + 1;
            const auto isControl = [](char c) {
                const auto byte = static_cast<unsigned char>(c);
                return byte < 0x20 && c != '\t' && c != '\n' && c != '\r';
            };
            // The count of a pool or the type of an operand stands before the text.
            const auto last = std::find_if(run.rbegin(), run.rend(), isControl).base();
            run.erase(run.begin(), last);
            constexpr std::size_t kMin = 3; // shorter ones may be numbers
            if (run.size() >= kMin && end != payload.end()) take(std::string_view(run));
        }
    }

    std::string m_texts;
};

} // namespace

std::string textsOf(const Movie& movie)
{
    Collector collector;
    collector.take(movie.timeline);
    for (const auto& [id, character] : movie.characters) {
        if (const auto* field = std::get_if<EditText>(&character->data)) {
            collector.take(field->initialText);
            collector.take(field->variableName);
        }
        if (const auto* sprite = std::get_if<Sprite>(&character->data); sprite && sprite->timeline)
            collector.take(*sprite->timeline);
        if (const auto* button = std::get_if<Button>(&character->data))
            for (const ButtonAction& action : button->actions) collector.take(action.actions);
    }
    return std::move(collector).texts();
}

} // namespace flash::swf
