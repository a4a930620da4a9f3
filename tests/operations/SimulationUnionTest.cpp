// Unions that keep their section: its faces, its labels, and the files that they leave behind.
#include "document/LabelScheme.h"
#include "document/ShapeLabelMgr.h"
#include "operations/OrvexGeometryOp.h"
#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <Standard_Failure.hxx>
#include <gp_Circ.hxx>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

using namespace OrvexTest;

namespace {

namespace fs = std::filesystem;
using Op = OrvexGeometryOp;

double TotalAreaOf(const std::vector<TopoDS_Face>& faces)
{
  double area = 0;
  for (const TopoDS_Face& face : faces) {
    EXPECT_TRUE(BRepCheck_Analyzer(face).IsValid());
    area += AreaOf(face);
  }
  return area;
}

// With a folder for the dumps of one test.
class SimulationUnion : public testing::Test
{
protected:
  SimulationUnion()
  {
    setenv("ORVEX_SIMULATION_DUMPS", folder.c_str(), 1);
  }
  ~SimulationUnion() override
  {
    unsetenv("ORVEX_SIMULATION_DUMPS");
    fs::remove_all(folder);
  }

  // When each was written.
  std::map<fs::path, fs::file_time_type> Dumps() const
  {
    std::map<fs::path, fs::file_time_type> dumps;
    if (fs::exists(folder))
      for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
          dumps[entry.path()] = entry.last_write_time();
    return dumps;
  }

  const fs::path folder = TemporaryPath("dumps");
  TopoDS_Shape box = BoxAt(0, 0, 0), result;
  std::vector<TopoDS_Face> faces;
};

TEST_F(SimulationUnion, GivesTheUnionTheFacesOfTheSectionAndTheDumps)
{
  struct Case
  {
    const char* name;
    TopoDS_Shape other;
    std::size_t faceCount;
    double faceArea, tolerance, volume;
  };
  const TopoDS_Shape peg = BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(5, 5, 5), gp::DZ()), 2, 12),
                     beam = BRepPrimAPI_MakeBox(gp_Pnt(2, 2, -5), 3, 3, 20);
  std::size_t dumped = 0;
  for (const Case& row :
       {Case{"a drill: two discs", Drill(), 2, 8 * M_PI, 1e-6, 1000 + 8 * M_PI},
        Case{"a peg: a disc", peg, 1, 4 * M_PI, 1e-6, 1000 + 28 * M_PI},
        Case{"a beam: two squares", beam, 2, 18, 1e-6, 1090},
        Case{"touching: the common square", BoxAt(10, 2, 2, 5), 1, 25, 1e-6, 1125},
        // Between the shadow of the hexagon along the diagonal and half a cube.
        Case{"a corner: six edges in space, filled", BoxAt(5, 5, 5), 1, 59, 16, 1875}}) {
    SCOPED_TRACE(row.name);
    faces.clear();
    EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &row.other, result, faces));
    EXPECT_NEAR(VolumeOf(result), row.volume, 1e-6);
    EXPECT_EQ(faces.size(), row.faceCount);
    EXPECT_NEAR(TotalAreaOf(faces), row.faceArea, row.tolerance);
    EXPECT_EQ(Dumps().size(), dumped += 3);
  }
  // The result may take the place of an operand, and faces are appended.
  EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &beam, box, faces));
  EXPECT_NEAR(VolumeOf(box), 1090, 1e-6);
  EXPECT_TRUE(Op::PerformNoneRegularUnite(&box, &peg, box, faces));
  EXPECT_EQ(faces.size(), 3U) << "only the union for simulation gives faces";
  setenv("ORVEX_SIMULATION_DUMPS", "/dev/null/nowhere", 1);
  EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&box, &peg, result, faces));
}

// Equal pipes: two ellipses that cross each other, in pieces.
TEST_F(SimulationUnion, ASectionThatBranchesSpansItsPlaneFaces)
{
  const TopoDS_Shape pipe = BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(0, 0, -10), gp::DZ()), 4, 20),
                     other = BRepPrimAPI_MakeCylinder(gp_Ax2(gp_Pnt(-10, 0, 0), gp::DX()), 4, 20);
  EXPECT_TRUE(Op::PerformNoneRegularUniteForSimulation(&pipe, &other, result, faces));
  EXPECT_EQ(faces.size(), 2U);
  EXPECT_NEAR(TotalAreaOf(faces), 2 * M_PI * 4 * 4 * std::sqrt(2.0), 1e-5);
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
  EXPECT_TRUE(faces.empty() && Dumps().empty());
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
  EXPECT_TRUE(result.IsNull() && Dumps().empty() && faces.empty());
  EXPECT_TRUE(Op::ExeNonRegUniteWithInFace(two, faces, result));
  EXPECT_EQ(Dumps().size(), 3U);
  EXPECT_EQ(faces.size(), 2U);
  EXPECT_TRUE(Op::ExeNonRegUniteWithInFace(all, faces, result));
  EXPECT_NEAR(VolumeOf(result), 1000 + 8 * M_PI + 125, 1e-6);
  EXPECT_EQ(faces.size(), 2U + 3U);
}

TEST_F(SimulationUnion, DumpsOfAnotherProcessStay)
{
  const TopoDS_Shape drill = Drill();
  for (int process = 1; process <= 3; ++process) {
    const auto before = Dumps();
    const pid_t child = fork(); // each begins to count at the same number
    if (child == 0) {
      for (int run = 0; run < 2; ++run)
        Op::PerformNoneRegularUniteForSimulation(&box, &drill, result, faces);
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    const auto after = Dumps();
    EXPECT_EQ(after.size(), before.size() + 6);
    for (const auto& [file, time] : before)
      EXPECT_EQ(after.at(file), time);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 6 + 2);
}

TEST(SectionOnALabel, IsTheFaceOfTheSectionOrItsCopyWithoutACommand)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0), pocket = BoxAt(2, 2, 5, 6), corner = BoxAt(5, 5, 5),
                     apart = BoxAt(50, 0, 0), touching = BoxAt(10, 10, 10);
  EXPECT_NEAR(AreaOf(Op::PerformNoneRegularUnite(&box, &pocket)), 36, 1e-6) << "no document";
  const TestDocument document(10);
  const TopoDS_Shape face = Op::PerformNoneRegularUnite(&box, &pocket);
  ASSERT_EQ(face.ShapeType(), TopAbs_FACE);
  EXPECT_NEAR(AreaOf(face), 36, 1e-6);
  const TDF_Label label = ShapeLabelMgr::GetInstance()->GetShapeLabel(face);
  ASSERT_FALSE(label.IsNull());
  EXPECT_EQ(Orvex::ValidTypeOf(label), Orvex::kTypeCompound);
  EXPECT_EQ(Orvex::NameOf(label)->Search("compound"), 1);
  const TopoDS_Shape section = Op::PerformNoneRegularUnite(&box, &corner);
  ASSERT_EQ(section.ShapeType(), TopAbs_COMPOUND);
  EXPECT_NEAR(LengthOf(section), 6 * 5, 1e-6);
  EXPECT_TRUE(Op::PerformNoneRegularUnite(&box, &apart).IsNull());
  EXPECT_THROW(Op::PerformNoneRegularUnite(&box, &touching), Standard_Failure) << "in a point";
  EXPECT_EQ(ShapeLabelMgr::GetAllShapes().size(), 2U);
  EXPECT_FALSE(document.Doc()->HasOpenCommand());
  EXPECT_EQ(document.Doc()->GetAvailableUndos(), 0);
}

TEST(FacesOfEdges, LoopsComeTogetherWhateverTheirOrder)
{
  const auto circle = [](double x, double radius) {
    return BRepBuilderAPI_MakeEdge(gp_Circ(gp_Ax2(gp_Pnt(x, 0, 0), gp::DZ()), radius)).Edge();
  };
  const auto line = [](double x1, double y1, double x2, double y2) {
    return BRepBuilderAPI_MakeEdge(gp_Pnt(x1, y1, 0), gp_Pnt(x2, y2, 0)).Edge();
  };
  const TopoDS_Edge a = line(0, 0, 6, 0), b = line(6, 0, 6, 6), c = line(6, 6, 0, 6),
                    d = line(0, 6, 0, 0), none;
  struct Case
  {
    std::vector<TopoDS_Edge> edges;
    std::size_t faceCount;
    double area;
  };
  for (Case& row : std::vector<Case>{
         {{a, b, c, d}, 1, 36},
         {{c, circle(50, 1), a, d, circle(60, 2), b}, 3, 36 + 5 * M_PI},
         {{circle(0, 1), circle(0, 2)}, 2, 5 * M_PI},
         {{circle(0, 1), line(1, 0, 3, 0), circle(9, 1)}, 2, 2 * M_PI},     // the first has a tail
         {{line(0, 0, 6, 6), line(6, 6, 6, 0), line(6, 0, 0, 6), d}, 0, 0}, // crosses itself
         {{circle(0, 1e9)}, 0, 0},                                          // does not close
         {{none, a, b, c}, 0, 0},
         {{}, 0, 0}}) {
    std::vector<TopoDS_Face> faces;
    Op::CreateFacesByEdgesWrapGroup(row.edges, faces);
    EXPECT_EQ(faces.size(), row.faceCount);
    EXPECT_NEAR(TotalAreaOf(faces), row.area, 1e-9);
  }
}

} // namespace
