// How long a user waits for a page: from its file to the picture of its first frame, scripts run.

#include "flash/Engine.h"
#include "flash/stage/Stage.h"

#include <QImage>

#include <benchmark/benchmark.h>

namespace
{

class Silent : public flash::stage::HostEvents
{
};

void open(benchmark::State& state, const char* address, bool keepsEngine)
{
    Silent host;
    auto engine = std::make_unique<flash::Engine>(host, flash::Engine::Options{});
    for (auto _ : state) {
        if (!keepsEngine) engine = std::make_unique<flash::Engine>(host, flash::Engine::Options{});
        if (!engine->open(std::string(GADGETS_DIR) + address)) state.SkipWithError("cannot be opened");
        QImage image(engine->stage().view().width(), engine->stage().view().height(),
                     QImage::Format_ARGB32_Premultiplied);
        engine->render(image, {image.rect()});
        benchmark::DoNotOptimize(image.bits());
    }
}

constexpr const char* kWelcome = "/welcome.swf?version=Zorvex 1.2.435&error=&noanim=True";
constexpr const char* kBrowse =
    "/browse.swf?Folder=/m/&TotalPages=9&curPage=2&noanim=True&shot1_ItemName=..&shot1_ItemType=%33"
    "&shot2_ItemName=long_name_of_a_folder_with_movies&shot2_ItemType=%33"
    "&shot3_ItemName=long_name_of_a_movie_3.swf&shot3_ItemType=%31"
    "&shot4_ItemName=long_name_of_a_movie_4.swf&shot4_ItemType=%31"
    "&shot5_ItemName=long_name_of_a_movie_5.swf&shot5_ItemType=%31"
    "&shot6_ItemName=long_name_of_a_movie_6.swf&shot6_ItemType=%31"
    "&shot7_ItemName=long_name_of_a_movie_7.swf&shot7_ItemType=%31"
    "&shot8_ItemName=long_name_of_a_movie_8.swf&shot8_ItemType=%31";

} // namespace

BENCHMARK_CAPTURE(open, welcome, kWelcome, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(open, browse_turned, kBrowse, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(open, sound, "/sound.swf?volume=50&pan=0", true)->Unit(benchmark::kMillisecond);
