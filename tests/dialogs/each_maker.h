// Tests of dialogs that run with each maker there is: forms everywhere, windows where the platform has some.
//
//   class Chooser : public EachMaker { ... };
//   INSTANTIATE_TEST_SUITE_P(Makers, Chooser, EachMaker::all(), EachMaker::name);
//   TEST_P(Chooser, DoesThis) { script_.lines = {"press OK"}; ... }
#pragma once

#include <gtest/gtest.h>

#include "tests/dialogs/script_lines.h"

enum class Maker { forms, windows };

class EachMaker : public testing::TestWithParam<Maker> {
  public:
    static auto all() {
        std::vector<Maker> makers{Maker::forms};
        if (dialogs::useWindows(nullptr)) makers.push_back(Maker::windows);
        dialogs::useStandard();
        return testing::ValuesIn(makers);
    }
    static std::string name(const testing::TestParamInfo<Maker>& info) {
        return info.param == Maker::windows ? "Windows" : "Forms";
    }

  protected:
    void SetUp() override {
        if (GetParam() == Maker::forms)
            dialogs::useForms(script_);
        else
            ASSERT_TRUE(dialogs::useWindows(&script_));
    }
    void TearDown() override { dialogs::useStandard(); }

    ScriptLines script_;
};
