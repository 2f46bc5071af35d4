// tap-proof [--wm NAME] [--presses N] [--rate N] [--kills N] [--stops N] [--long-stops N] [--longest SECONDS]
//           [--late SECONDS] [--rounds N] [--samples N] [--idle SECONDS] [--seed N] --subject PROGRAM
//           [PART…]: what the tap promises, measured with real programs in front.
//
// --configuration N tries random keys with one set of shortcuts only. --replay KEYS types with it the keys
// that a run printed, and finds the shortest list that still differs.
//
// Prints a row a measurement and fails when one is beyond its limit. The parts: keys, delays, neighbours,
// kills, stops, late, disturbances, idle.
#include "Stage.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace {

using namespace velorin::tap;

const std::vector<std::pair<std::string, void (*)(Stage&)>> parts{{"idle", measureIdle},
                                                                  {"delays", measureDelays},
                                                                  {"neighbours", measureNeighbours},
                                                                  {"kills", measureKills},
                                                                  {"stops", measureStops},
                                                                  {"stops", measureLongStops},
                                                                  {"late", measureLateServer},
                                                                  {"disturbances", measureDisturbances},
                                                                  {"keys", measureRandomKeys}};

Options optionsOf(int count, char** arguments, std::vector<std::string>& chosen) {
    Options options;
    const std::map<std::string, int*> numbers{
        {"--rate", &options.rate},           {"--kills", &options.kills},
        {"--stops", &options.stops},         {"--long-stops", &options.longStops},
        {"--longest", &options.longestStop}, {"--late", &options.lateSeconds},
        {"--rounds", &options.rounds},       {"--samples", &options.samples},
        {"--idle", &options.idleSeconds},    {"--configuration", &options.configuration}};
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        if (!word.starts_with("--")) {
            chosen.push_back(word);
            continue;
        }
        const std::string value = i + 1 < count ? arguments[++i] : "";
        if (word == "--wm")
            options.windowManager = value;
        else if (word == "--subject")
            options.subject = value;
        else if (word == "--presses")
            options.presses = std::stol(value);
        else if (word == "--replay")
            options.replay = value;
        else if (word == "--seed")
            options.seed = static_cast<unsigned>(std::stoul(value));
        else
            *numbers.at(word) = std::stoi(value);
    }
    return options;
}

} // namespace

int main(int count, char** arguments) try {
    std::vector<std::string> chosen;
    const auto options = optionsOf(count, arguments, chosen);
    std::printf("under %s\n", options.windowManager.c_str());
    Stage stage(options);
    if (!options.replay.empty())
        replayKeys(stage);
    for (const auto& [name, measure] : parts)
        if ((chosen.empty() && options.replay.empty()) || std::ranges::find(chosen, name) != chosen.end())
            measure(stage);
    return stage.report.isGood() ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "tap-proof: %s\n", error.what());
    return 1;
}
