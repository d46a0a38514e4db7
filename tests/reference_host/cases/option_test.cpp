#include "reference_host/cases/option.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference_host/cases/common_options.h"

namespace {

using host::Option;
using host::Range;
using testing::ElementsAre;
using testing::EndsWith;

const host::OptionNames names = {"table.key", "--key", "help"};

/// What a set of values is refused with; empty if they are accepted.
std::string RefusalOf(const Option& option, const std::vector<std::string>& values) {
    try {
        option.assign(values);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

TEST(OptionRange, IncludesItsEnds) {
    double field = 0.0;
    const Option option = NumberOption(names, field, Range::Between(0.01, 0.999));

    EXPECT_EQ(RefusalOf(option, {"0.01"}), "");
    EXPECT_EQ(RefusalOf(option, {"0.999"}), "");
    EXPECT_EQ(field, 0.999);
    EXPECT_EQ(RefusalOf(option, {"0.009"}), "must be at least 0.01, not 0.009");
    EXPECT_EQ(RefusalOf(option, {"1"}), "must be at most 0.999, not 1");
    EXPECT_EQ(field, 0.999);
    EXPECT_EQ(option.limits, "0.01 to 0.999");
}

TEST(OptionRange, AboveZeroExcludesZero) {
    double field = 1.0;
    const Option option = NumberOption(names, field, Range::AboveZero());

    EXPECT_EQ(RefusalOf(option, {"0"}), "must be above 0, not 0");
    EXPECT_EQ(RefusalOf(option, {"1e-300"}), "");
    EXPECT_EQ(option.limits, "above 0");
}

TEST(OptionRange, AtLeastHasNoUpperEnd) {
    int field = 7;
    const Option option = IntegerOption(names, field, Range::AtLeast(1));

    EXPECT_EQ(RefusalOf(option, {"0"}), "must be at least 1, not 0");
    EXPECT_EQ(RefusalOf(option, {"2147483647"}), "");
    EXPECT_EQ(option.limits, "at least 1");
}

TEST(OptionRange, LargeLimitsAreWrittenOut) {
    int field = 1;

    EXPECT_EQ(IntegerOption(names, field, Range::Between(1, 1000000)).limits, "1 to 1000000");
    EXPECT_EQ(IntegerOption(names, field, Range::Any()).limits, "");
}

TEST(OptionValues, MustBeWholeTexts) {
    int integer = 7;
    double number = 7.0;
    const Option whole = IntegerOption(names, integer, Range::Any());
    const Option real = NumberOption(names, number, Range::Any());

    for (const char* text : {"", "ten", "10x", "1.5", " 1", "99999999999"}) {
        EXPECT_EQ(RefusalOf(whole, {text}),
                  std::string("must be an integer, not \"") + text + "\"");
    }
    for (const char* text : {"", "ten", "10x", "inf", "nan", "1e999"}) {
        EXPECT_EQ(RefusalOf(real, {text}), std::string("must be a number, not \"") + text + "\"");
    }
    EXPECT_EQ(integer, 7);
    EXPECT_EQ(number, 7.0);
}

TEST(OptionValues, AreShownOnOneLineInMessages) {
    int field = 7;

    EXPECT_EQ(RefusalOf(IntegerOption(names, field, Range::Any()), {"1\n2"}),
              "must be an integer, not \"1 2\"");
}

TEST(OptionValues, OfAListReplaceTheListTogether) {
    std::vector<int> field = {1, 2, 3};
    const Option option = IntegersOption(names, field, Range::Between(1, 9));
    EXPECT_EQ(option.shown, "1,2,3");

    EXPECT_EQ(RefusalOf(option, {"5", "0"}), "must be at least 1, not 0");
    EXPECT_THAT(field, ElementsAre(1, 2, 3));
    EXPECT_EQ(RefusalOf(option, {"5", "4"}), "");
    EXPECT_THAT(field, ElementsAre(5, 4));
}

TEST(OptionValues, OfAFlagAreTrueAndFalse) {
    bool field = false;
    const Option option = FlagOption(names, field);

    EXPECT_EQ(RefusalOf(option, {"true"}), "");
    EXPECT_TRUE(field);
    EXPECT_EQ(RefusalOf(option, {"yes"}), "must be true or false, not \"yes\"");
    EXPECT_EQ(RefusalOf(option, {"false"}), "");
    EXPECT_FALSE(field);
}

TEST(OptionValues, OfATextAreNotEmpty) {
    std::string field = "a";
    const Option option = TextOption(names, field);

    EXPECT_EQ(RefusalOf(option, {""}), "must not be empty");
    EXPECT_EQ(RefusalOf(option, {"b"}), "");
    EXPECT_EQ(field, "b");
}

TEST(OptionValues, OfAChoiceAreItsNames) {
    const host::Choices<int> choices = {{"one", 1}, {"two", 2}};
    int field = 1;
    const Option option = host::ChoiceOption<int>(names, field, choices, "one");

    EXPECT_EQ(option.limits, "one of one, two");
    EXPECT_EQ(RefusalOf(option, {"three"}), "must be one of one, two, not \"three\"");
    EXPECT_EQ(RefusalOf(option, {"two"}), "");
    EXPECT_EQ(field, 2);
}

TEST(SchemesOption, TakesAllAsEveryScheme) {
    std::vector<host::Scheme> field = {host::Scheme::Quick};
    const Option option = host::SchemesOption(field);

    option.assign({"lud", "all"});

    EXPECT_EQ(field.size(), 8u);
}

TEST(SchemesOption, RefusesAnUnknownSchemeBesideAll) {
    std::vector<host::Scheme> field = {host::Scheme::Quick};
    const Option option = host::SchemesOption(field);

    EXPECT_THAT(RefusalOf(option, {"all", "weno"}), EndsWith("not \"weno\""));
    EXPECT_THAT(field, ElementsAre(host::Scheme::Quick));
}

}  // namespace
