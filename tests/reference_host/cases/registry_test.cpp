#include "reference_host/cases/registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace {

using testing::StartsWith;

TEST(Registry, FindsEachCaseByItsName) {
    std::set<std::string> names;
    for (const host::CaseEntry& entry : host::AllCases()) {
        EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
        EXPECT_EQ(host::FindCase(entry.name), &entry);
        EXPECT_FALSE(entry.summary.empty()) << entry.name;
    }
    EXPECT_EQ(host::FindCase("fly"), nullptr);
}

TEST(Registry, NamesTheCasesInOrder) {
    EXPECT_THAT(host::CaseNames(),
                StartsWith("cylinder, sphere, cavity, heat, mms, nonmatching, "));
}

TEST(Registry, OptionsOfACaseHaveDistinctNames) {
    for (const host::CaseEntry& entry : host::AllCases()) {
        const std::unique_ptr<host::Case> made = entry.make();
        const host::CaseOptions options = made->Options();
        std::set<std::string> names;
        for (const host::Option& option : options.List()) {
            EXPECT_TRUE(names.insert(option.name).second) << option.name;
            EXPECT_TRUE(names.insert(option.shortForm).second) << option.shortForm;
            EXPECT_THAT(option.shortForm, StartsWith("--"));
            EXPECT_FALSE(option.help.empty()) << option.name;
        }
    }
}

TEST(Registry, MakesIndependentCases) {
    const host::CaseEntry& entry = *host::FindCase("heat");
    const std::unique_ptr<host::Case> first = entry.make();
    const std::unique_ptr<host::Case> second = entry.make();

    first->Options().Set("solver.steps", {"77"}, "--steps");

    EXPECT_EQ(first->Options().Find("solver.steps")->shown, "77");
    EXPECT_EQ(second->Options().Find("solver.steps")->shown, "12");
}

}  // namespace
