#include "reference_host/app/help.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/reference_host/app/read_command.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Help, IsNotAnError) {
    for (const char* word : {"--help", "-h"}) {
        const host::Command command = Read({word});

        EXPECT_EQ(command.chosen, nullptr);
        EXPECT_EQ(command.help, host::ProgramHelp());
    }
    EXPECT_EQ(Read({"run", "--help"}).help, host::ProgramHelp());
}

TEST(Help, ListsAllCases) {
    for (const host::CaseEntry& entry : host::AllCases()) {
        EXPECT_THAT(host::ProgramHelp(), HasSubstr("  " + entry.name + " "));
        EXPECT_THAT(host::ProgramHelp(), HasSubstr(entry.summary));
    }
}

TEST(Help, OfACaseListsEveryOptionWithBothNames) {
    for (const host::CaseEntry& entry : host::AllCases()) {
        const std::string help = Read({entry.name, "--help"}).help;
        const std::unique_ptr<host::Case> made = entry.make();
        const host::CaseOptions options = made->Options();
        for (const host::Option& option : options.List()) {
            EXPECT_THAT(help, HasSubstr("  " + option.name + " (" + option.shortForm + ")\n"))
                << entry.name;
            EXPECT_THAT(help, HasSubstr(option.help)) << entry.name;
        }
        EXPECT_THAT(help, HasSubstr("  parameters.NAME (--set NAME=VALUE)\n"));
    }
}

TEST(Help, ShowsDefaultsAndLimits) {
    const std::string help = Read({"cylinder", "--help"}).help;

    EXPECT_THAT(help, HasSubstr("      integer, 1 to 1000000; default 2000\n"));
    EXPECT_THAT(help, HasSubstr("      number, 0.01 to 0.999\n"));
    EXPECT_THAT(help, HasSubstr("      number, above 0; default 20\n"));
    EXPECT_THAT(help, HasSubstr("      one of upwind-cells, upwind, central, lud, quick, hybrid; "
                                "default lud\n"));
    EXPECT_THAT(Read({"mms", "--help"}).help,
                HasSubstr("      all, or some of laplace, diffusion"));
}

TEST(Help, ShowsWhatTheOtherWordsSet) {
    const std::string help =
        Read({"cylinder", "solver.iterations=77", "--set", "n=5", "--set", "ro=1.5", "--help"})
            .help;

    EXPECT_THAT(help, HasSubstr("      integer, 1 to 1000000; set to 77\n"));
    EXPECT_THAT(help, HasSubstr("      number; set to n = 5, ro = 1.5\n"));
}

TEST(Help, NamesTheCaseFilesOfOtherCasesWhereTheyAreRead) {
    EXPECT_THAT(Read({"dump", "--help"}).help, HasSubstr("reference_host dump FILE.toml"));
    EXPECT_THAT(Read({"heat", "--help"}).help, Not(HasSubstr("heat FILE.toml")));
}

}  // namespace
