// What the report says of real files, and of files with faults.
#include "step/CStepFileReader.h"

#include "support/StepFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace {

using OrvexTest::DataFile;
using OrvexTest::ScratchFile;
using testing::ElementsAre;
using testing::IsEmpty;

Orvex::StepReadReport ReportOf(const QString& path, bool isPlain = false)
{
  CStepFileReader reader;
  Orvex::StepReadOptions options;
  options.collectReport = true;
  reader.SetReadOptions(options);
  reader.SetInputFileName(path);
  isPlain ? reader.TryReadStepsMapNew() : reader.ReadSynchronously();
  return reader.GetReadReport();
}

// "#12 MANIFOLD_SOLID_BREP: nothing came out"
std::vector<std::string> LossesIn(const Orvex::StepReadReport& report)
{
  std::vector<std::string> losses;
  for (const auto& [id, type, outcome] : report.losses) {
    std::ostringstream text;
    text << '#' << id << ' ' << type << ": " << outcome;
    losses.push_back(text.str());
  }
  return losses;
}

double MillimetresPer(const std::string& unit)
{
  static const std::map<std::string, double> known{
    {"millimetre", 1.0}, {"centimetre", 10.0}, {"metre", 1000.0}, {"inch", 25.4}};
  return known.at(unit);
}

TEST(StepReadReport, AgreesWithTheFactsOfRealFiles)
{
  ORVEX_NEEDS_TEST_DATA();
  const auto files = OrvexTest::ReadableFiles();
  ASSERT_GE(files.size(), 5U);
  for (const OrvexTest::FileFacts& file : files) {
    SCOPED_TRACE(file.file);
    const Orvex::StepReadReport report = ReportOf(DataFile(file.file));
    const std::map<std::string, int> found{{"roots", report.roots},
                                           {"free_shapes", report.freeShapes},
                                           {"assemblies", report.assemblies},
                                           {"parts", report.parts},
                                           {"components", report.components},
                                           {"named", report.namedProducts},
                                           {"comp_named", report.namedComponents},
                                           {"colors", static_cast<int>(report.colors.size())},
                                           {"entities", report.entities},
                                           {"error_entities", report.entitiesInError},
                                           {"solids_tshape", report.solidsOut},
                                           {"faces_tshape", report.facesOut}};
    for (const auto& [name, value] : found)
      EXPECT_EQ(value, file.numbers.at(name)) << name;
    EXPECT_EQ(report.schema, file.schema);
    EXPECT_EQ(report.lengthUnit, file.lengthUnit);
    EXPECT_DOUBLE_EQ(report.lengthUnitInMillimetres, MillimetresPer(file.lengthUnit));
    if (file.file.starts_with("derived-"))
      continue;
    EXPECT_THAT(LossesIn(report), IsEmpty()) << "sound files, however many entities are in error";
    EXPECT_EQ(report.solidsInFile, report.solidsOut);
    EXPECT_EQ(report.facesInFile, report.facesOut);
  }
}

TEST(StepReadReport, ADanglingReferenceShowsTheFaceAndTheSolidThatItCosts)
{
  ORVEX_NEEDS_TEST_DATA();
  for (const bool isPlain : {false, true}) {
    const auto report = ReportOf(DataFile("derived-one-dangling-surface.stp"), isPlain);
    EXPECT_THAT(LossesIn(report), ElementsAre("#11 MANIFOLD_SOLID_BREP: came out as an open shell",
                                              "#55 ADVANCED_FACE: nothing came out"));
    EXPECT_EQ(std::tuple(report.solidsInFile, report.solidsOut), std::tuple(1, 0));
    EXPECT_EQ(std::tuple(report.facesInFile, report.facesOut), std::tuple(120, 119));
    const auto complaint = std::ranges::find_if(
      report.messages, [](const Orvex::StepMessage& message) { return message.entityId == 55; });
    ASSERT_NE(complaint, report.messages.end());
    EXPECT_EQ(complaint->entityType, "ADVANCED_FACE");
    EXPECT_TRUE(complaint->isFailure);
    EXPECT_FALSE(complaint->duringTransfer);
  }
}

std::string IdOf(const std::string& text, const std::string& entityType)
{
  const auto at = text.find(" = " + entityType + "(");
  const auto begin = text.rfind('#', at);
  return text.substr(begin, at - begin);
}

std::string AsLastItem(const std::string& id)
{
  return std::string(",").append(id).append(")");
}

TEST(StepReadReport, AReferenceOfTheWrongTypeShowsTheSolidThatItCosts)
{
  const ScratchFile file("two.step");
  OrvexTest::WriteFreeShapes(file, {{"a", OrvexTest::Box(1)}, {"b", OrvexTest::Box(2)}});
  EXPECT_THAT(LossesIn(ReportOf(file.Path())), IsEmpty());

  const std::string text = file.Content();
  const std::string solid = IdOf(text, "MANIFOLD_SOLID_BREP");
  OrvexTest::ReplaceInFile(file, AsLastItem(solid), AsLastItem(IdOf(text, "PLANE")));
  const Orvex::StepReadReport report = ReportOf(file.Path());
  EXPECT_EQ(std::tuple(report.solidsInFile, report.solidsOut), std::tuple(2, 1));
  EXPECT_THAT(LossesIn(report),
              testing::Contains(solid + " MANIFOLD_SOLID_BREP: nothing came out"));
  EXPECT_EQ(report.losses.size(), 7U) << "the solid and its six faces";
}

TEST(StepReadReport, IsEmptyUnlessAskedForAndTellsColors)
{
  const ScratchFile file("bolts.step");
  OrvexTest::WriteBoltAssembly(file);
  CStepFileReader reader;
  reader.SetInputFileName(file.Path());
  EXPECT_TRUE(reader.ReadSynchronously());
  EXPECT_FALSE(reader.GetReadReport().collected);
  EXPECT_EQ(reader.GetReadReport().entities, 0);
  EXPECT_THAT(ReportOf(file.Path()).colors, ElementsAre(Orvex::StepColor{1.0, 0.0, 0.0}));
}

} // namespace
