// Unions that keep their section: its faces, its labels, and the files that they leave behind.
#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"
#include "operations/OrvexGeometryOp.h"
#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <Standard_Failure.hxx>
#include <gp_Circ.hxx>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

using namespace OrvexTest;

namespace {

namespace fs = std::filesystem;
using Op = OrvexGeometryOp;

// A folder for the dumps of one test.
class DumpFolder
{
public:
  DumpFolder() : path(TemporaryPath("dumps"))
  {
    setenv("ORVEX_SIMULATION_DUMPS", path.c_str(), 1);
  }
  ~DumpFolder()
  {
    unsetenv("ORVEX_SIMULATION_DUMPS");
    fs::remove_all(path);
  }
  DumpFolder(const DumpFolder&) = delete;
  DumpFolder& operator=(const DumpFolder&) = delete;

  // Without the numbers of the runs, which go on through all tests of the process.
  std::multiset<std::string> Kinds() const
  {
    std::multiset<std::string> kinds;
    if (fs::exists(path))
      for (const auto& entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file())
          kinds.insert(
            entry.path().filename().string().substr(0, entry.path().filename().string().find('_')));
    return kinds;
  }

  std::set<fs::path> Files() const
  {
    std::set<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(path))
      if (entry.is_regular_file())
        files.insert(entry.path());
    return files;
  }

  const fs::path path;
};

const std::multiset<std::string> kOneRun = {"tool", "blank", "BoolResult"};

class SimulationUnion : public testing::Test
{
protected:
  DumpFolder dumps;
  TopoDS_Shape box = BoxAt(0, 0, 0), result;
  std::vector<TopoDS_Face> faces;
};

double AreaOf(const std::vector<TopoDS_Face>& faces)
{
  double area = 0;
  for (const TopoDS_Face& face : faces) {
    EXPECT_TRUE(BRepCheck_Analyzer(face).IsValid());
    area += OrvexTest::AreaOf(face);
  }
  return area;
}

TEST_F(SimulationUnion, GivesTheUnionTheFacesOfTheSectionAndTheDumps)
{
  struct Case
  {
    const char* name;
    TopoDS_Shape other;
    std::size_t faceCount;
    double faceArea;
    double volume;
  };
  const TopoDS_Shape peg = BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(5, 5, 5), gp::DZ()), 2, 12);
  for (const Case& row :
       {Case{"a drill: two discs", Drill(), 2, 8 * M_PI, 1000 + 8 * M_PI},
        Case{"a peg: a disc", peg, 1, 4 * M_PI, 1000 + 28 * M_PI},
        Case{"a beam: two squares", BRepPrimAPI_MakeBox(gp_Pnt(2, 2, -5), 3, 3, 20), 2, 18, 1090},
        Case{"touching: the common square", BoxAt(10, 2, 2, 5), 1, 25, 1125}}) {
    SCOPED_TRACE(row.name);
    faces.clear();
    EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &row.other, result, faces));
    EXPECT_NEAR(VolumeOf(result), row.volume, 1e-6);
    EXPECT_EQ(faces.size(), row.faceCount);
    EXPECT_NEAR(AreaOf(faces), row.faceArea, 1e-6);
    const auto kinds = dumps.Kinds();
    EXPECT_TRUE(std::includes(kinds.begin(), kinds.end(), kOneRun.begin(), kOneRun.end()));
  }
  EXPECT_EQ(dumps.Kinds().size(), 4 * kOneRun.size());
}

// Six edges in space: no surface of the operands bears them, so one is filled in.
TEST_F(SimulationUnion, ASectionInSpaceIsFilled)
{
  const TopoDS_Shape other = BoxAt(5, 5, 5);
  faces.push_back(TopoDS::Face(SquareAt(0, 0, 0)));
  EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &other, result, faces));
  ASSERT_EQ(faces.size(), 2U) << "appended";
  EXPECT_TRUE(BRepCheck_Analyzer(faces[1]).IsValid());
  // More than the shadow of the hexagon along the diagonal, less than the cube's half.
  const double shadow = 25 * std::sqrt(3.0);
  EXPECT_GT(OrvexTest::AreaOf(faces[1]), shadow);
  EXPECT_LT(OrvexTest::AreaOf(faces[1]), 75);
}

TEST_F(SimulationUnion, ShapesThatDoNotMeetAreFusedAndNotDumped)
{
  const TopoDS_Shape apart = BoxAt(50, 0, 0), none;
  EXPECT_FALSE(Op::PerformNoneRegularUniteForSimulation(&box, &apart, result, faces));
  EXPECT_NEAR(VolumeOf(result), 2000, 1e-6);
  result.Nullify();
  EXPECT_FALSE(Op::PerformNoneRegularUnite(&box, &apart, result, faces));
  EXPECT_NEAR(VolumeOf(result), 2000, 1e-6);
  for (const TopoDS_Shape* missing : {&none, static_cast<const TopoDS_Shape*>(nullptr)}) {
    result = box;
    EXPECT_FALSE(Op::PerformNoneRegularUniteForSimulation(&box, missing, result, faces));
    EXPECT_TRUE(result.IsNull());
    EXPECT_FALSE(Op::PerformNoneRegularUnite(missing, &box, result, faces));
    EXPECT_TRUE(Op::PerformNoneRegularUnite(&box, missing).IsNull());
  }
  EXPECT_TRUE(faces.empty());
  EXPECT_TRUE(dumps.Kinds().empty());
}

TEST_F(SimulationUnion, TheResultMayTakeThePlaceOfAnOperand)
{
  const TopoDS_Shape other = BoxAt(5, 5, 5);
  EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &other, box, faces));
  EXPECT_NEAR(VolumeOf(box), 1875, 1e-6);
  EXPECT_TRUE(Op::PerformNoneRegularUnite(&box, &other, box, faces));
  EXPECT_EQ(faces.size(), 1U) << "only the union for simulation gives faces";
}

TEST_F(SimulationUnion, ChainsPassOverFacesAndShells)
{
  const TopoDS_Shape shell = TopExp_Explorer(BoxAt(0, 0, 0), TopAbs_SHELL).Current();
  const TopoDS_Shape square = SquareAt(0, 0, 5), drill = Drill(), beam = BoxAt(10, 2, 2, 5);
  std::vector<TopoDS_Shape> one = {box}, thin = {box, shell, square}, two = {box, drill},
                            all = {box, square, drill, shell, TopoDS_Shape(), beam};
  result = square;
  EXPECT_FALSE(Op::ExeNonRegUniteWithInFace(one, faces, result));
  EXPECT_TRUE(result.IsSame(square));
  EXPECT_FALSE(Op::ExeNonRegUniteWithInFace(thin, faces, result));
  EXPECT_TRUE(result.IsNull());
  EXPECT_TRUE(dumps.Kinds().empty() && faces.empty());
  EXPECT_TRUE(Op::ExeNonRegUniteWithInFace(two, faces, result));
  EXPECT_EQ(dumps.Kinds(), kOneRun);
  EXPECT_EQ(faces.size(), 2U);
  faces.clear();
  EXPECT_TRUE(Op::ExeNonRegUniteWithInFace(all, faces, result));
  EXPECT_NEAR(VolumeOf(result), 1000 + 8 * M_PI + 125, 1e-6);
  EXPECT_EQ(faces.size(), 3U);
}

TEST_F(SimulationUnion, DumpsOfAnotherProcessStay)
{
  const TopoDS_Shape drill = Drill();
  // As in two processes that begin to count at the same number.
  std::set<fs::path> before;
  for (int process = 0; process < 3; ++process) {
    const pid_t child = fork();
    if (child == 0) {
      for (int run = 0; run < 2; ++run)
        Op::PerformNoneRegularUniteForSimulation(&box, &drill, result, faces);
      _exit(0);
    }
    std::map<fs::path, fs::file_time_type> times;
    for (const fs::path& file : before)
      times[file] = fs::last_write_time(file);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    const std::set<fs::path> after = dumps.Files();
    EXPECT_EQ(after.size(), before.size() + 6);
    for (const auto& [file, time] : times)
      EXPECT_EQ(fs::last_write_time(file), time);
    before = after;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(dumps.path), {}), 6 + 2);
}

TEST_F(SimulationUnion, AFolderThatCannotBeStopsNothing)
{
  setenv("ORVEX_SIMULATION_DUMPS", "/dev/null/nowhere", 1);
  const TopoDS_Shape drill = Drill();
  EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &drill, result, faces));
  EXPECT_NEAR(VolumeOf(result), 1000 + 8 * M_PI, 1e-6);
}

// --- The face on a label ---

TEST(SectionOnALabel, IsTheFaceOfTheSectionOrItsCopyWithoutACommand)
{
  const TestDocument document(10);
  const auto count = [] { return ShapeLabelMgr::GetAllShapes().size(); };
  const TopoDS_Shape box = BoxAt(0, 0, 0), pocket = BoxAt(2, 2, 5, 6), corner = BoxAt(5, 5, 5);
  const TopoDS_Shape face = Op::PerformNoneRegularUnite(&box, &pocket);
  ASSERT_FALSE(face.IsNull());
  EXPECT_EQ(face.ShapeType(), TopAbs_FACE);
  EXPECT_NEAR(OrvexTest::AreaOf(face), 36, 1e-6);
  const TDF_Label label = ShapeLabelMgr::GetInstance()->GetShapeLabel(face);
  ASSERT_FALSE(label.IsNull());
  EXPECT_EQ(Orvex::ValidTypeOf(label), Orvex::kTypeCompound);
  EXPECT_TRUE(Orvex::NameOf(label)->Search("compound") == 1);

  const TopoDS_Shape section = Op::PerformNoneRegularUnite(&box, &corner);
  ASSERT_FALSE(section.IsNull());
  EXPECT_EQ(section.ShapeType(), TopAbs_COMPOUND);
  EXPECT_NEAR(LengthOf(section), 6 * 5, 1e-6);
  EXPECT_EQ(count(), 2U);

  const TopoDS_Shape apart = BoxAt(50, 0, 0), touching = BoxAt(10, 10, 10);
  EXPECT_TRUE(Op::PerformNoneRegularUnite(&box, &apart).IsNull());
  EXPECT_THROW(Op::PerformNoneRegularUnite(&box, &touching), Standard_Failure) << "in a point";
  EXPECT_EQ(count(), 2U);
  EXPECT_FALSE(document.Doc()->HasOpenCommand());
  EXPECT_EQ(document.Doc()->GetAvailableUndos(), 0);
}

TEST(SectionOnALabel, WithoutADocumentThereIsTheFaceAlone)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0), pocket = BoxAt(2, 2, 5, 6);
  EXPECT_NEAR(OrvexTest::AreaOf(Op::PerformNoneRegularUnite(&box, &pocket)), 36, 1e-6);
}

// --- Faces of edges ---

TopoDS_Edge CircleAt(double x, double radius)
{
  return BRepBuilderAPI_MakeEdge(gp_Circ(gp_Ax2(gp_Pnt(x, 0, 0), gp::DZ()), radius));
}

TopoDS_Edge Line(double x1, double y1, double x2, double y2)
{
  return BRepBuilderAPI_MakeEdge(gp_Pnt(x1, y1, 0), gp_Pnt(x2, y2, 0));
}

double AreaSpannedBy(std::vector<TopoDS_Edge> edges, std::size_t faceCount)
{
  std::vector<TopoDS_Face> faces;
  Op::CreateFacesByEdgesWrapGroup(edges, faces);
  EXPECT_EQ(faces.size(), faceCount);
  return AreaOf(faces);
}

TEST(FacesOfEdges, LoopsComeTogetherWhateverTheirOrder)
{
  const TopoDS_Edge a = Line(0, 0, 6, 0), b = Line(6, 0, 6, 6), c = Line(6, 6, 0, 6),
                    d = Line(0, 6, 0, 0);
  const TopoDS_Edge bow[] = {Line(20, 0, 26, 6), Line(26, 6, 26, 0), Line(26, 0, 20, 6),
                             Line(20, 6, 20, 0)};
  EXPECT_NEAR(AreaSpannedBy({a, b, c, d}, 1), 36, 1e-9);
  EXPECT_NEAR(AreaSpannedBy({c, CircleAt(50, 1), a, d, CircleAt(60, 2), b}, 3), 36 + 5 * M_PI,
              1e-9);
  EXPECT_NEAR(AreaSpannedBy({CircleAt(0, 1), CircleAt(0, 2)}, 2), 5 * M_PI, 1e-9);
  EXPECT_NEAR(AreaSpannedBy({CircleAt(0, 1), Line(1, 0, 3, 0), CircleAt(9, 1)}, 1), M_PI, 1e-9)
    << "a circle with a tail is no loop";
  EXPECT_EQ(AreaSpannedBy({}, 0), 0);
  EXPECT_EQ(AreaSpannedBy({TopoDS_Edge(), a, b, c}, 0), 0);
  EXPECT_EQ(AreaSpannedBy({bow[0], bow[1], bow[2], bow[3]}, 0), 0) << "crosses itself";
}

} // namespace
