#include "support/ReferenceWalk.h"
#include "support/Sanitized.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <set>

namespace {

using OrvexTest::DrilledBlock;

// The names are the truth of the walk: each is known and stands for one edge or face only.
TEST(ReferenceWalk, NamesAreUnique)
{
  const DrilledBlock block(DrilledBlock::kStart);
  for (const auto& names : {block.faceNames, block.edgeNames}) {
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    for (const std::string& name : names)
      EXPECT_EQ(name.find("unknown"), std::string::npos) << name;
  }
  EXPECT_EQ(block.faceNames.size(), 10U);
  EXPECT_EQ(block.edgeNames.size(), 24U);
}

TEST(ReferenceWalk, MostReferencesSurviveAChangeOfDimensions)
{
  SCOPED_TRACE(OrvexTest::SeedNote());
  const auto still = OrvexTest::WalkOfReferences(3, 0.0, OrvexTest::Seed());
  EXPECT_EQ(still.edgesFound, still.edges);
  EXPECT_EQ(still.facesFound, still.faces);
  struct Case
  {
    double change, edges, faces;
  };
  for (const Case& wanted : {Case{0.05, 0.98, 0.99}, Case{0.2, 0.94, 0.97}}) {
    const auto share = OrvexTest::WalkOfReferences(OrvexTest::FewerIfSanitized(200, 60),
                                                   wanted.change, OrvexTest::Seed());
    std::printf("change up to %2.0f %%: %.4f of edges, %.4f of faces found again\n",
                100 * wanted.change, share.Edges(), share.Faces());
    EXPECT_GE(share.Edges(), wanted.edges);
    EXPECT_GE(share.Faces(), wanted.faces);
  }
}

} // namespace
