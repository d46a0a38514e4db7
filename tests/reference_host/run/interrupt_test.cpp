#include "reference_host/run/interrupt.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

using host::Interrupt;

TEST(InterruptSignal, FirstOneIsOnlyRecorded) {
    const Interrupt interrupt;
    EXPECT_FALSE(interrupt.Requested());

    std::raise(SIGINT);

    EXPECT_TRUE(interrupt.Requested());
}

TEST(InterruptSignal, SecondOneEndsTheProgram) {
    EXPECT_EXIT(
        {
            const Interrupt interrupt;
            std::raise(SIGINT);
            std::raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptSignal, HandlerIsRestored) {
    { const Interrupt interrupt; }

    EXPECT_EXIT(std::raise(SIGINT), testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptSignal, IsForgottenInTheNextRun) {
    {
        const Interrupt interrupt;
        std::raise(SIGINT);
    }

    EXPECT_FALSE(Interrupt().Requested());
}

}  // namespace
