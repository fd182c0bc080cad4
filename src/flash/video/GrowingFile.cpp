#include "flash/video/GrowingFile.h"

namespace flash::video
{
namespace
{

/// Goes with the pointer to the file wherever that goes.
struct Carrier {
    FileBytes file;
    std::shared_ptr<Growth> growth;
    void operator()(const std::vector<std::uint8_t>*) { file.reset(); }
};

} // namespace

FileBytes growing(FileBytes file, std::shared_ptr<Growth> growth)
{
    const std::vector<std::uint8_t>* bytes = file.get();
    return {bytes, Carrier{std::move(file), std::move(growth)}};
}

std::shared_ptr<Growth> growthOf(const FileBytes& file)
{
    const auto* carrier = std::get_deleter<Carrier>(file);
    return carrier != nullptr ? carrier->growth : nullptr;
}

} // namespace flash::video
