// Random hosts: the host simulation driven by a seeded generator, checked
// after every step, and taken down at the end with nothing left alive.
#include "commands/HostSimulation.h"

#include <gtest/gtest.h>

#include <random>

TEST(HostRandom, HistoriesStayConsistentAndEverythingIsFreed)
{
    for (unsigned seed = 1; seed <= 12; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 rng(seed);
        hostsim::Host host([&rng](unsigned n) { return static_cast<unsigned>(rng() % n); });
        for (int step = 0; step < 400; ++step)
        {
            const std::string problem = host.Step();
            ASSERT_EQ(problem, "") << "step " << step;
        }
        ASSERT_EQ(host.Finish(), "");
    }
}
