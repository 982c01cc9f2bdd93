#include <gtest/gtest.h>

#include "nle/nle_adjust_color_effect.h"

namespace Lumvane {
namespace {

TEST(NLEFilterParams, StripsTheSchemeOnlyFromPaths) {
  for (const auto& [type, text, stored] : {std::tuple{5, "file:/a", "file:/a"},
                                           {6, "file:/a", "a"},
                                           {6, "a", "a"},
                                           {6, "x file:/y", "x y"},
                                           {6, "file:/file:/a", "file:/a"},
                                           {6, "File:/a", "File:/a"}}) {
    NLEFilterParams parameter;
    parameter.type = type;
    parameter.SetValue({3, text, 9});
    NLEFilterValue value;
    parameter.GetValue(value);
    EXPECT_EQ(value.text, stored);
    EXPECT_EQ(value.number, 3u);
    EXPECT_EQ(value.type, type);
    EXPECT_EQ(parameter.value.type, 9);
  }
}

TEST(NLEAdjustColorEffect, KeepsParametersByTheirExactNames) {
  NLEAdjustColorEffect effect(nullptr);
  NLEFilterValue value = {42, "as it was", 3};
  EXPECT_FALSE(effect.GetParameter("gain", value));
  EXPECT_EQ(value.text, "as it was");
  for (const auto& [name, number] : {std::pair{"gain", 1u}, {"Gain", 2u}, {"", 3u}, {"gain", 4u}}) {
    EXPECT_TRUE(effect.SetParameter(name, {number, "file:/four", 8}));
  }
  EXPECT_EQ(effect.params.size(), 3u);
  for (const auto& [name, number] : {std::pair{"gain", 4u}, {"Gain", 2u}, {"", 3u}}) {
    EXPECT_TRUE(effect.GetParameter(name, value));
    EXPECT_EQ(value.number, number);
    EXPECT_EQ(value.text, "file:/four");
    EXPECT_EQ(value.type, 5);
    EXPECT_EQ(effect.params[name]->key, name);
    EXPECT_EQ(effect.params[name]->value.type, 8);
  }
}

}  // namespace
}  // namespace Lumvane
