// How far the time that a channel tells is from the picture beside it, with seeks and takes in between.
#include "bench/row.h"
#include "tests/support/driftwatch.h"

#include <QGuiApplication>

using namespace vantrel::test;

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    DriftWatch watch;
    if (!watch.start() || !watch.watch(15000) || watch.preview().readings < 50 ||
        watch.program().readings < 50) {
        std::fprintf(stderr, "a measurement could not be made\n");
        return 1;
    }
    // A ratio needs something to divide by: none apart counts as a hundredth of a frame.
    const auto frames = [](const DriftWatch::Channel& channel) {
        return std::max(0.01, double(channel.worst));
    };
    vantrel::bench::row("player/drift-preview", "the limit of 2 frames", frames(watch.preview()), 2, "frames",
                        1);
    vantrel::bench::row("player/drift-program", "the limit of 2 frames", frames(watch.program()), 2, "frames",
                        1);
    return 0;
}
