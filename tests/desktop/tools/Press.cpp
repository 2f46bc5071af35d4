// press COMMAND…: what the user of a private desktop does with keyboard and mouse.
//
//     press down KEY        press up KEY        press tap KEY
//     press click X Y BUTTON [TIMES]
//     press serve           reads such commands from standard input, one a line
//
// Served commands are answered by a line each: "done" and the time at which the server had taken
// the event, in seconds of the monotonic clock, or "error" and a sentence.
#include "UserDevice.h"

#include <cstdio>
#include <ctime>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using velorin::tools::UserDevice;

double now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void click(UserDevice& user, std::istream& words) {
    int x = 0;
    int y = 0;
    int button = 0;
    if (!(words >> x >> y >> button))
        throw std::runtime_error("click wants X Y BUTTON");
    int times = 0;
    if (!(words >> times))
        times = 1;
    user.move(x, y);
    for (int click = 0; click < times; ++click) {
        user.button(button, true);
        user.button(button, false);
    }
}

void perform(UserDevice& user, std::istream& words) {
    std::string verb;
    words >> verb;
    if (verb == "click")
        return click(user, words);
    std::string key;
    if (!(words >> key) || (verb != "down" && verb != "up" && verb != "tap"))
        throw std::runtime_error("there is no command " + verb + " with these words");
    if (verb != "up")
        user.key(key, true);
    if (verb != "down")
        user.key(key, false);
}

void serve(UserDevice& user) {
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        try {
            perform(user, words);
            std::printf("done %.4f\n", now());
        } catch (const std::runtime_error& error) {
            std::printf("error %s\n", error.what());
        }
        std::fflush(stdout);
    }
}

} // namespace

int main(int count, char** arguments) try {
    std::stringstream words;
    for (int index = 1; index < count; ++index)
        words << arguments[index] << ' ';
    UserDevice user;
    if (words.str() == "serve ")
        serve(user);
    else
        perform(user, words);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "press: %s\n", error.what());
    return 1;
}
