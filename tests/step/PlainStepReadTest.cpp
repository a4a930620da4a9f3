// The plain way of CStepFileReader, and the importer that describes every sub-shape.
#include "step/CStepFileReader.h"
#include "step/StepFileImporterWithComplexProperty.h"

#include "support/StepFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using OrvexTest::Box;
using OrvexTest::ScratchFile;
using testing::ElementsAre;
using testing::StartsWith;

std::vector<std::string> NamesOf(const CStepFileReader& reader)
{
  std::vector<std::string> names;
  for (const auto& [name, shape] : reader.GetImportShapesMap())
    names.push_back(name);
  return names;
}

class PlainStepRead : public testing::Test
{
protected:
  PlainStepRead() : file("p.step")
  {
    OrvexTest::WriteFreeShapes(file, {{"a", Box(1)}, {"b", Box(2)}});
    reader.SetInputFileName(file.Path());
  }

  ScratchFile file;
  CStepFileReader reader;
};

TEST_F(PlainStepRead, NumbersGoOnThroughTheLifeOfTheProcess)
{
  EXPECT_TRUE(reader.TryReadStepsMapNew());
  const auto first = NamesOf(reader);
  CStepFileReader second;
  second.SetInputFileName(file.Path());
  EXPECT_TRUE(second.TryReadStepsMapNew());
  ASSERT_EQ(first.size(), 2U);
  const int number = std::stoi(first[0].substr(2));
  EXPECT_EQ(first[1], "p_" + std::to_string(number + 1));
  EXPECT_THAT(NamesOf(second),
              ElementsAre("p_" + std::to_string(number + 2), "p_" + std::to_string(number + 3)));
  EXPECT_TRUE(second.GetImportShapeDataList().empty()) << "this way fills the map only";
}

// Whether names are used is looked up at the start of a full read; here one that fails.
TEST_F(PlainStepRead, UsesObjectNamesOnceAFullReadHasSwitchedThemOn)
{
  OrvexTest::ReplaceInFile(file, "MANIFOLD_SOLID_BREP(''", "MANIFOLD_SOLID_BREP('body'");
  const auto namesAfterAFullRead = [this](const char* value) {
    setenv("ORVEX_STEP_READ_OBJECT_NAMES", value, 1);
    CStepFileReader next;
    next.SetInputFileName("/nowhere/x.step");
    EXPECT_FALSE(next.ReadSynchronously());
    next.SetInputFileName(file.Path());
    EXPECT_TRUE(next.TryReadStepsMapNew());
    return NamesOf(next);
  };
  EXPECT_THAT(namesAfterAFullRead("1"), testing::Not(testing::Contains(StartsWith("p_"))));
  EXPECT_THAT(namesAfterAFullRead("0"), testing::Each(StartsWith("p_")));
}

TEST_F(PlainStepRead, MembersOfNestedGroupsAreStoredOnRequest)
{
  OrvexTest::WriteBoltAssembly(file);
  const auto countWith = [this](const char* value) {
    setenv("ORVEX_STEP_READ_SUBGROUPS", value, 1);
    CStepFileReader next;
    next.SetInputFileName(file.Path());
    EXPECT_TRUE(next.TryReadStepsMapNew());
    return next.GetImportShapesMap().size();
  };
  EXPECT_EQ(countWith("0"), 3U) << "two pairs and a bolt";
  EXPECT_EQ(countWith("1"), 7U) << "and the two bolts of each pair";
}

TEST_F(PlainStepRead, AnEarlierTextStaysAndOtherwiseTheLackOfShapesIsTold)
{
  reader.SetInputFileName("/nowhere/x.step");
  EXPECT_FALSE(reader.TryReadStepsMapNew());
  EXPECT_EQ(reader.GetLastError(), "basic STEP reader returned no shapes");
  EXPECT_FALSE(reader.ReadSynchronously());
  EXPECT_FALSE(reader.TryReadStepsMapNew());
  EXPECT_EQ(reader.GetLastError(), "XCAF ReadFile failed");
}

// A root with the children pair, pair, bolt, where each pair has two bolts.
TEST(StepImporter, ChildrenCountOnFromTheirParentSoThatIndicesRepeat)
{
  const ScratchFile file("nested.step");
  OrvexTest::WriteBoltAssembly(file);
  Orvex::StepFileImporterWithComplexProperty importer;
  testing::internal::CaptureStdout();
  ASSERT_TRUE(importer.ImportFile(file.Path().toUtf8().constData()));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "what the kernel says goes to the log";
  std::vector<std::string> downToSolids;
  for (const auto& item : importer.GetAssemblyItems())
    if (item->shape.ShapeType() <= TopAbs_SOLID)
      downToSolids.push_back(item->name);
  EXPECT_THAT(downToSolids, ElementsAre("Shape_1", "Shape_2", "Shape_3", "Shape_4", "Shape_3",
                                        "Shape_4", "Shape_5", "Shape_4"));
}

TEST(StepImporter, DescribesThePlaceOfAShape)
{
  const ScratchFile file("placed.step");
  OrvexTest::WriteBoltAssembly(file);
  Orvex::StepFileImporterWithComplexProperty importer;
  ASSERT_TRUE(importer.ImportFile(file.Path().toUtf8().constData()));
  const auto& items = importer.GetAssemblyItems();
  const auto pair = std::ranges::find_if(items, [](const auto& item) {
    return item->position == std::array<double, 3>{100.0, 0.0, 0.0};
  });
  ASSERT_NE(pair, items.end());
  EXPECT_EQ((*pair)->axis, (std::array<double, 3>{0.0, 0.0, 1.0}));
  EXPECT_EQ((*pair)->info, "Shape: " + (*pair)->name +
                             "\nPosition: (100.000000, 0.000000, 0.000000)\n"
                             "Axis: (0.000000, 0.000000, 1.000000)\n"
                             "Angle: 0.000000\n"
                             "Transformation Matrix:\n"
                             "    1.000000     0.000000     0.000000   100.000000 \n"
                             "    0.000000     1.000000     0.000000     0.000000 \n"
                             "    0.000000     0.000000     1.000000     0.000000 \n");
  EXPECT_TRUE((*pair)->properties.empty());
}

TEST(StepImporter, FailsWithoutAFileAndAppendsOtherwise)
{
  const ScratchFile file("box.step");
  OrvexTest::WriteFreeShapes(file, {{"b", Box(1)}});
  Orvex::StepFileImporterWithComplexProperty importer;
  EXPECT_FALSE(importer.ImportFile("/nowhere/x.step"));
  EXPECT_TRUE(importer.ImportFile(file.Path().toUtf8().constData()));
  const std::size_t once = importer.GetAssemblyItems().size();
  EXPECT_EQ(once, 86U) << "solid, shell, 6 faces, 6 wires, 24 edges, 48 vertices";
  EXPECT_TRUE(importer.ImportFile(file.Path().toUtf8().constData()));
  EXPECT_EQ(importer.GetAssemblyItems().size(), 2 * once);
  EXPECT_TRUE(
    importer.GetUniqueShapes().at("Shape_1").IsSame(importer.GetAssemblyItems()[once]->shape))
    << "the last one of a name";
}

} // namespace
