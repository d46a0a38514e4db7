#ifndef KVX3D_TESTS_HOST_CHECKS_FAULTS_H
#define KVX3D_TESTS_HOST_CHECKS_FAULTS_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_checks/fault.h"
#include "plain/samples/block_host.h"

/// A small sound mesh: 400 background cells with ids 1..400, 160 component cells with ids 401..560.
/// Wall faces 1..40 are the walls of the background, 41..120 the inner and outer boundary of the
/// annulus.
inline AnnulusShape SmallAnnulus() {
    AnnulusShape shape;
    shape.n = 5;
    shape.around = 40;
    shape.across = 4;
    shape.depth = 0.2;
    return shape;
}

/// The rules of the faults, in their order.
inline std::vector<kvx3d::checks::Rule> RulesOf(const std::vector<kvx3d::checks::Fault>& faults) {
    std::vector<kvx3d::checks::Rule> rules;
    for (const kvx3d::checks::Fault& fault : faults) {
        rules.push_back(fault.rule);
    }
    return rules;
}

/// All texts, one per line.
inline std::string TextsOf(const std::vector<kvx3d::checks::Fault>& faults) {
    std::string text;
    for (const kvx3d::checks::Fault& fault : faults) {
        text += std::string(Name(fault.rule)) + ": " + Text(fault) + "\n";
    }
    return text;
}

/// Expects one fault of this rule whose text contains all the words.
inline void ExpectFault(const std::vector<kvx3d::checks::Fault>& faults, kvx3d::checks::Rule rule,
                        const std::vector<std::string>& words) {
    int n = 0;
    for (const kvx3d::checks::Fault& fault : faults) {
        if (fault.rule != rule) {
            continue;
        }
        ++n;
        for (const std::string& word : words) {
            EXPECT_NE(Text(fault).find(word), std::string::npos) << word << "\n" << Text(fault);
        }
    }
    EXPECT_EQ(n, 1) << Name(rule) << "\n" << TextsOf(faults);
}

/// Test name of a case that has a `name`.
template <class Case>
std::string NameOfCase(const testing::TestParamInfo<Case>& given) {
    return given.param.name;
}

#endif
