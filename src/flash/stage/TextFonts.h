#pragma once

#include "flash/render/FontFace.h"
#include "flash/render/TextLayout.h"
#include "flash/stage/Services.h"

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace flash::stage
{

class Stage;

/// The faces of a stage's text fields, made once each: fonts of its movies by name and style, and fonts of
/// the machine.
class TextFonts
{
public:
    explicit TextFonts(Stage& stage) : m_stage(stage) {}
    /// A font of the movie's dictionary. @returns null when there is none of that name and style
    render::FontFacePtr embedded(const MoviePtr& movie, const std::string& name, bool bold, bool italic);
    /// By its number. @returns null when that is no font
    render::FontFacePtr embedded(const MoviePtr& movie, std::uint16_t fontId);
    /// Lets the fields of all movies have a font, as long as its movie is there.
    void share(const MoviePtr& movie, std::uint16_t fontId) { m_shared.emplace_back(movie, fontId); }
    [[nodiscard]] bool hasShared() const { return !m_shared.empty(); }
    /// One of those. @returns null when there is none of that name and style
    render::FontFacePtr shared(const std::string& name, bool bold, bool italic);
    render::FontFacePtr device(const std::string& name, bool bold, bool italic);
    /// A font of the machine; where it has none of that name, that of the movie, as far as its letters go.
    render::FontFacePtr device(const MoviePtr& movie, const std::string& name, bool bold, bool italic);
    /// The families that the machine has. UTF-8.
    [[nodiscard]] static std::vector<std::string> installed();

private:
    struct PerMovie {
        std::weak_ptr<const swf::Movie> movie;
        std::map<std::string, std::uint16_t> fontByKey;
        std::map<std::string, render::FontFacePtr> inPlaceOfDevice;
        std::unordered_map<std::uint16_t, render::FontFacePtr> faces;
    };
    PerMovie& of(const MoviePtr& movie);
    std::unordered_map<const swf::Movie*, PerMovie> m_movies;
    std::vector<std::pair<std::weak_ptr<const swf::Movie>, std::uint16_t>> m_shared;
    Stage& m_stage; // which owns this
    render::DeviceFonts m_device;
};

} // namespace flash::stage
