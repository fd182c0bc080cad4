#pragma once

#include "base/TextCode.h"
#include "flash/stage/ByMovie.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace flash::stage
{

class Stage;

/// What movies call their characters, what they take from each other, and the code of their texts.
class Linkage
{
public:
    explicit Linkage(Stage& stage) : m_stage(stage) {}
    Linkage(const Linkage&) = delete;
    Linkage& operator=(const Linkage&) = delete;

    /// The name a character was exported under; empty when none.
    [[nodiscard]] std::string linkageName(const MoviePtr& movie, std::uint16_t characterId);
    /// The character of a linkage name. Nothing when the movie exports no such name.
    [[nodiscard]] std::optional<std::uint16_t> exportedCharacter(const MoviePtr& movie,
                                                                 std::string_view name) const;
    /// A frame of a movie's main timeline comes up for the first time or again: names count from the frame on
    /// that exports them. Those of a movie that is only a library for others all count.
    void passFrame(const MoviePtr& movie, const swf::Frame& frame);
    /// Finds the characters that a movie imports from others, beside itself; those that cannot be had stay
    /// missing. Done once for a movie.
    void linkImports(const swf::Movie& movie, const std::string& url);

    /// A text of a file as UTF-8: before version 6 files hold the 8-bit code of their maker's system.
    [[nodiscard]] std::string textOf(const MoviePtr& movie, std::string_view bytes) const;
    /// What such files are read in; the system's own unless set.
    [[nodiscard]] const base::TextCode& textCode() const;
    /// To be called before a movie is opened. @param code null: the system's own
    void setTextCode(std::shared_ptr<const base::TextCode> code) { m_textCode = std::move(code); }

    void clear()
    {
        m_linkageNames.clear();
        m_passed.clear();
    }

private:
    /// @param librariesLeft how many may still be read, those that libraries import from included
    void linkImports(const swf::Movie& movie, const std::string& url, int& librariesLeft);

    Stage& m_stage;
    std::shared_ptr<const base::TextCode> m_textCode; // null: the system's own
    ByMovie<std::unordered_map<std::uint16_t, std::string>> m_linkageNames;
    using Exports = std::unordered_map<std::string, std::uint16_t>;
    ByMovie<Exports> m_passed; // of movies whose main timeline has been on the stage
};

} // namespace flash::stage
