#include "reference_host/run/picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::EndsWith;

TEST(DrawingCommand, QuotesEachArgumentForTheShell) {
    const std::string command =
        host::DrawingCommand("draw.py", {"two words", "it's", "$HOME; exit 1"});

    EXPECT_THAT(command, EndsWith("/draw.py' 'two words' 'it'\\''s' '$HOME; exit 1'"));
}

TEST(Draw, SaysWhetherTheCommandSucceeded) {
    EXPECT_TRUE(host::Draw("true"));
    EXPECT_FALSE(host::Draw("false"));
    EXPECT_FALSE(host::Draw(host::DrawingCommand("no_such_script.py", {})));
}

}  // namespace
