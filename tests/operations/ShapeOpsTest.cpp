// Sweeps, offsets, general fuses, comparison of faces, counts of triangles and export.
#include "operations/OrvexGeometryOp.h"

#include "foundation/OrvexDebugLogFile.h"
#include "support/CommaLocale.h"
#include "support/Measures.h"
#include "support/OperandPairs.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepOffset_Mode.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <GeomAbs_JoinType.hxx>
#include <IGESControl_Reader.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>

using namespace OrvexTest;

namespace {

using Op = OrvexGeometryOp;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool IsValid(const TopoDS_Shape& shape)
{
  return !shape.IsNull() && BRepCheck_Analyzer(shape).IsValid();
}

TopoDS_Shape PartOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum type)
{
  return TopExp_Explorer(shape, type).Current();
}

// --- Sweeps ---

const gp_Dir kUp(0, 0, 1);

std::vector<gp_Pnt> Square(double size)
{
  return {{0, 0, 0}, {size, 0, 0}, {size, size, 0}, {0, size, 0}, {0, 0, 0}};
}

std::vector<TopoDS_Edge> EdgesAlong(const std::vector<gp_Pnt>& points)
{
  std::vector<TopoDS_Edge> edges;
  for (std::size_t i = 0; i + 1 < points.size(); ++i)
    edges.push_back(BRepBuilderAPI_MakeEdge(points[i], points[i + 1]));
  return edges;
}

std::vector<const TopoDS_Edge*> PointersTo(const std::vector<TopoDS_Edge>& edges)
{
  std::vector<const TopoDS_Edge*> pointers;
  for (const TopoDS_Edge& edge : edges)
    pointers.push_back(&edge);
  return pointers;
}

TEST(Sweep, AllThreeFormsGiveThePrismOfTheSection)
{
  const std::vector<TopoDS_Edge> edges = EdgesAlong(Square(4));
  const TopoDS_Wire wire = TopoDS::Wire(PartOf(SquareAt(0, 0, 0, 4), TopAbs_WIRE));
  const gp_Dir slanted(0, 3, 4);
  for (const double length : {10.0, -10.0, 1e-3, 1e6})
    for (const TopoDS_Shape& solid : {Op::CreateShapeBySweep(PointersTo(edges), slanted, length),
                                      Op::CreateShapeBySweep(Square(4), slanted, length),
                                      Op::CreateShapeBySweep(wire, slanted, length)}) {
      ASSERT_TRUE(IsValid(solid));
      EXPECT_EQ(solid.ShapeType(), TopAbs_SOLID);
      const double height = 0.8 * length;
      EXPECT_NEAR(std::abs(VolumeOf(solid)), 16 * std::abs(height), 1e-9 * std::abs(height));
      const Bnd_Box bounds = BoundsOf(solid);
      EXPECT_NEAR(length > 0 ? bounds.CornerMax().Z() : bounds.CornerMin().Z(), height,
                  1e-6 + 1e-9 * std::abs(height));
    }
}

TEST(Sweep, SectionsThatAreNoneGiveNothing)
{
  const TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)), none;
  using Edges = std::vector<const TopoDS_Edge*>;
  for (const Edges& edges : {Edges{}, Edges{nullptr}, Edges{&edge, nullptr}, Edges{&none, &edge}})
    EXPECT_TRUE(Op::CreateShapeBySweep(edges, kUp, 1).IsNull());
  EXPECT_TRUE(Op::CreateShapeBySweep(std::vector<gp_Pnt>{}, kUp, 1).IsNull());
  EXPECT_TRUE(Op::CreateShapeBySweep(std::vector<gp_Pnt>{{1, 2, 3}}, kUp, 1).IsNull());
  EXPECT_TRUE(Op::CreateShapeBySweep(TopoDS_Wire(), kUp, 1).IsNull());
}

TEST(Sweep, WhatTheKernelCannotDoReachesTheCaller)
{
  using Points = std::vector<gp_Pnt>;
  for (const Points& points :
       {Points{{0, 0, 0}, {5, 0, 0}}, Points{{0, 0, 0}, {0, 0, 0}, {5, 0, 0}},
        Points{{0, 0, 0}, {9, 0, 0}, {9, 9, 5}, {0, 9, 0}, {0, 0, 0}},
        Points{{0, 0, 0}, {kNaN, 0, 0}, {9, 9, 0}, {0, 0, 0}},
        Points{{0, 0, 0}, {9, 0, kNaN}, {9, 9, 0}, {0, 0, 0}},
        Points{{0, 0, 0}, {kInfinity, 0, 0}, {9, 9, 0}, {0, 0, 0}},
        Points{{kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN}}, Square(1e-9)})
    EXPECT_THROW(Op::CreateShapeBySweep(points, kUp, 1), Standard_Failure);
  for (const double length : {0.0, 1e-9, kNaN, kInfinity, -kInfinity})
    EXPECT_THROW(Op::CreateShapeBySweep(Square(1), kUp, length), Standard_Failure);
  std::vector<TopoDS_Edge> apart = EdgesAlong({{0, 0, 0}, {1, 0, 0}});
  apart.push_back(EdgesAlong({{5, 0, 0}, {6, 1, 0}}).front());
  EXPECT_THROW(Op::CreateShapeBySweep(PointersTo(apart), kUp, 1), Standard_Failure);
  TopoDS_Edge bare;
  BRep_Builder().MakeEdge(bare);
  const std::vector<const TopoDS_Edge*> withoutCurve = {&bare};
  EXPECT_THROW(Op::CreateShapeBySweep(withoutCurve, kUp, 1), Standard_Failure);
  const Points bow = {{0, 0, 0}, {9, 9, 0}, {9, 0, 0}, {0, 9, 0}, {0, 0, 0}};
  EXPECT_NO_THROW(Op::CreateShapeBySweep(bow, kUp, 1)) << "crossing itself";
}

// --- Offset ---

sOffsetParameter Skin(double offset, GeomAbs_JoinType join = GeomAbs_Intersection)
{
  return {offset, BRepOffset_Skin, join, 1e-3, false, false};
}

TEST(Offset, VolumesFollowTheFormulaOfTheJoin)
{
  TopoDS_Shape box = BoxAt(0, 0, 0), ball = BRepPrimAPI_MakeSphere(5).Shape();
  // Steiner: faces, quarter cylinders along the edges, one ball at the corners.
  const double rounded = 1000 + 600 + 30 * M_PI + 4.0 / 3 * M_PI;
  EXPECT_NEAR(VolumeOf(Op::OffsetObject(box, Skin(1, GeomAbs_Arc))), rounded, 1e-6);
  EXPECT_NEAR(VolumeOf(Op::OffsetObject(box, Skin(1))), 12 * 12 * 12, 1e-6);
  EXPECT_NEAR(VolumeOf(Op::OffsetObject(box, Skin(-1))), 8 * 8 * 8, 1e-6);
  EXPECT_NEAR(VolumeOf(Op::OffsetObject(ball, Skin(2))), 4.0 / 3 * M_PI * 343, 1e-6);
  for (const int mode : {BRepOffset_Pipe, BRepOffset_RectoVerso}) {
    sOffsetParameter parameter = Skin(1);
    parameter.mode = mode;
    parameter.intersection = parameter.selfIntersection = true;
    EXPECT_NEAR(VolumeOf(Op::OffsetObject(box, parameter)), 12 * 12 * 12, 1e-6);
  }
  TopoDS_Shape square = SquareAt(0, 0, 0);
  const TopoDS_Shape lifted = Op::OffsetObject(square, Skin(3));
  EXPECT_NEAR(BoundsOf(lifted).CornerMin().Z(), 3, 1e-6);
  EXPECT_NEAR(AreaOf(lifted), 100, 1e-6);
}

TEST(Offset, WhatCannotBeOffsetIsNull)
{
  const TopoDS_Shape box = BoxAt(0, 0, 0), ball = BRepPrimAPI_MakeSphere(5).Shape();
  TopoDS_Compound empty;
  BRep_Builder().MakeCompound(empty);
  for (TopoDS_Shape shape : {TopoDS_Shape(), TopoDS_Shape(empty), PartOf(box, TopAbs_VERTEX),
                             PartOf(box, TopAbs_EDGE), PartOf(box, TopAbs_WIRE)})
    EXPECT_TRUE(Op::OffsetObject(shape, Skin(1)).IsNull());
  std::vector<sOffsetParameter> wrong;
  for (const double offset : {0.0, 1e-9, -5.0, kNaN, kInfinity, -kInfinity, 1e300})
    wrong.push_back(Skin(offset, GeomAbs_Arc));
  for (const double tolerance : {kNaN, kInfinity})
    wrong.push_back({1, BRepOffset_Skin, GeomAbs_Arc, tolerance, false, false});
  for (const int none : {-1, 3, 99}) {
    wrong.push_back({1, none, GeomAbs_Arc, 1e-3, false, false});
    wrong.push_back({1, BRepOffset_Skin, none, 1e-3, false, false});
  }
  for (TopoDS_Shape shape : {box, ball})
    for (const sOffsetParameter& parameter : wrong)
      EXPECT_TRUE(Op::OffsetObject(shape, parameter).IsNull()) << parameter.offset;
}

// --- General fuse ---

using List = NCollection_List<TopoDS_Shape>;

List ListOf(const std::vector<TopoDS_Shape>& shapes)
{
  List list;
  for (const TopoDS_Shape& shape : shapes)
    list.Append(shape);
  return list;
}

int FaceCountOf(const TopoDS_Shape& shape)
{
  TopTools_IndexedMapOfShape faces;
  TopExp::MapShapes(shape, TopAbs_FACE, faces);
  return faces.Extent();
}

// Cells of a block of eight, all or random ones of them: those that touch share faces, each once.
TEST(GeneralFuse, TouchingSolidsShareTheirCommonFaces)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  for (int i = 0; i < 200; ++i) {
    List cells;
    int touching = 0;
    std::array<bool, 8> there{};
    for (std::size_t k = 0; k < 8; ++k) {
      there[k] = i == 0 || random.Index(2) == 0;
      if (!there[k])
        continue;
      cells.Append(BoxAt(10.0 * (k & 1), 10.0 * (k >> 1 & 1), 10.0 * (k >> 2)));
      for (const std::size_t bit : {1U, 2U, 4U})
        touching += (k & bit) != 0 && there[k - bit];
    }
    if (cells.Size() < 2)
      continue;
    const TopoDS_Shape block = Op::NonRegularBoolLCW(cells);
    EXPECT_EQ(FaceCountOf(block), 6 * cells.Size() - touching);
    EXPECT_NEAR(VolumeOf(block), 1000 * cells.Size(), 1e-6);
  }
  TopoDS_Shape box = BoxAt(0, 0, 0), near = BoxAt(10 + 0.9e-5, 0, 0),
               apart = BoxAt(10 + 3e-5, 0, 0);
  EXPECT_EQ(FaceCountOf(Op::NonRegularBool2ShapesLCW(&box, &near)), 11);
  EXPECT_EQ(FaceCountOf(Op::NonRegularBool2ShapesLCW(&box, &apart)), 12);
}

TEST(GeneralFuse, ListsOfOneAndNoneAndWhatTheKernelRefuses)
{
  TopoDS_Shape box = BoxAt(0, 0, 0), none;
  List single = ListOf({box}), empty, twice = ListOf({box, box}), withNull = ListOf({box, none});
  EXPECT_TRUE(Op::NonRegularBoolLCW(single).IsEqual(box));
  for (List* list : {&empty, &twice, &withNull})
    EXPECT_TRUE(Op::NonRegularBoolLCW(*list).IsNull());
  EXPECT_TRUE(Op::NonRegularBool2ShapesLCW(&box, nullptr).IsNull());
  EXPECT_TRUE(Op::NonRegularBool2ShapesLCW(nullptr, &box).IsNull());
  EXPECT_TRUE(Op::NonRegularBool2ShapesLCW(&none, &none).IsNull());
  TopoDS_Shape nowhere = BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, kNaN));
  EXPECT_TRUE(Op::NonRegularBool2ShapesLCW(&box, &nowhere).IsNull());
  EXPECT_TRUE(Op::PerformIneersect(box, nowhere).IsNull());
}

// --- Faces and triangles ---

TEST(FaceGeometry, CountsCornersPerEdgeAndTakesTheMeanOfCornersAndMiddles)
{
  TopoDS_Face square = TopoDS::Face(SquareAt(0, 0, 3)), none;
  int count = -1;
  gp_Pnt center(9, 9, 9);
  double area = -1;
  Op::GetFaceGeometry(square, count, center, area);
  EXPECT_EQ(count, 8);
  EXPECT_TRUE(center.IsEqual(gp_Pnt(5, 5, 3), 1e-12));
  EXPECT_NEAR(area, 100, 1e-9);
  // The sphere's poles are edges without a curve: they count and add nothing to the sum.
  TopoDS_Face ball = TopoDS::Face(PartOf(BRepPrimAPI_MakeSphere(5).Shape(), TopAbs_FACE));
  Op::GetFaceGeometry(ball, count, center, area);
  EXPECT_EQ(count, 8);
  EXPECT_TRUE(center.IsEqual(gp_Pnt(2 * 5 / 12.0, 0, 0), 1e-9)) << center.X();
  EXPECT_NEAR(area, 100 * M_PI, 1e-6);
  Op::GetFaceGeometry(none, count, center, area);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(center.Distance(gp_Pnt()), 0);
  EXPECT_EQ(area, 0);
}

TEST(FaceGeometry, FacesAreTheSameByPlaceAndAreaAndNumber)
{
  TopoDS_Face square = TopoDS::Face(SquareAt(0, 0, 0)), none;
  const auto movedBy = [&](double distance) {
    gp_Trsf shift;
    shift.SetTranslation(gp_Vec(0, 0, distance));
    return TopoDS::Face(square.Moved(shift));
  };
  TopoDS_Face reversed = TopoDS::Face(BRepBuilderAPI_Copy(square).Shape().Reversed());
  TopoDS_Face tie = movedBy(1e-6), off = movedBy(1.001e-6), elsewhere = movedBy(1);
  EXPECT_TRUE(Op::IsSameFace(square, reversed));
  EXPECT_TRUE(Op::IsSameFace(square, tie));
  EXPECT_FALSE(Op::IsSameFace(square, off));
  EXPECT_FALSE(Op::IsSameFace(square, elsewhere));
  EXPECT_FALSE(Op::IsSameFace(square, none));
  EXPECT_FALSE(Op::IsSameFace(none, none));
  const auto around = [](double half) { // about the origin
    return BRepBuilderAPI_MakeFace(gp_Pln(gp_Pnt(), kUp), -half, half, -half, half).Face();
  };
  TopoDS_Face unit = around(0.5), more = around(0.5 * std::sqrt(1 + 0.9e-6)),
              muchMore = around(0.5 * std::sqrt(1 + 1.1e-6));
  EXPECT_TRUE(Op::IsSameFace(unit, more));
  EXPECT_FALSE(Op::IsSameFace(unit, muchMore));
}

TEST(Triangles, AreCountedForEveryOccurrenceAndNothingIsMeshed)
{
  const auto lastLine = [] { return OrvexDebugLogFile::GetInstance()->Lines().back(); };
  TopoDS_Shape meshed = BoxAt(0, 0, 0), bare = SquareAt(50, 0, 0), none;
  BRepMesh_IncrementalMesh(meshed, 0.1);
  EXPECT_EQ(Op::GetShapeTrianglesNum(meshed), 12);
  EXPECT_EQ(lastLine(), "Info: It is OK that no run BRepMesh_IncrementalMesh");
  TopoDS_Compound all;
  BRep_Builder().MakeCompound(all);
  for (const TopoDS_Shape& part : {meshed, bare, meshed})
    BRep_Builder().Add(all, part);
  EXPECT_EQ(Op::GetShapeTrianglesNum(all), 24);
  EXPECT_EQ(lastLine(), "Error: It is not supposed to run BRepMesh_IncrementalMesh");
  EXPECT_EQ(Op::GetShapeTrianglesNum(bare), 0);
  EXPECT_EQ(Op::GetShapeTrianglesNum(none), 0);
}

// --- Export ---

TopoDS_Shape ReadIges(const std::string& path)
{
  IGESControl_Reader reader;
  EXPECT_EQ(reader.ReadFile(path.c_str()), IFSelect_RetDone);
  reader.TransferRoots();
  return reader.OneShape();
}

TEST(Export, IgesFilesAreInMillimetresWholeOrAbsent)
{
  namespace fs = std::filesystem;
  const fs::path folder = TemporaryPath("iges");
  fs::create_directory(folder);
  std::string path = folder / "box.igs";
  Op::SaveShapeToIgsFile(path, TopoDS_Shape());
  EXPECT_TRUE(fs::is_empty(folder));
  {
    const CommaLocale comma;
    Op::SaveShapeToIgsFile(path, BoxAt(0.5, 0, 0));
  }
  EXPECT_NEAR(AreaOf(ReadIges(path)), 600, 1e-6);
  EXPECT_NEAR(BoundsOf(ReadIges(path)).CornerMin().X(), 0.5, 1e-6);
  Op::SaveShapeToIgsFile(path, BoxAt(0, 0, 0, 20));
  EXPECT_NEAR(AreaOf(ReadIges(path)), 2400, 1e-6) << "replaced";
  Op::SaveShapeToIgsFile(path, TopoDS_Shape());
  EXPECT_NEAR(AreaOf(ReadIges(path)), 2400, 1e-6) << "kept";
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "nothing beside it";
  std::string nowhere = folder / "missing" / "box.igs", isFolder = folder;
  Op::SaveShapeToIgsFile(nowhere, BoxAt(0, 0, 0));
  Op::SaveShapeToIgsFile(isFolder, BoxAt(0, 0, 0));
  EXPECT_FALSE(fs::exists(nowhere));
  fs::remove_all(folder);
}

// --- All of them ---

TEST(ShapeOps, OperandsStayBitForBit)
{
  std::vector<OperandPair> pairs = SolidPairs();
  pairs.push_back(SolidAndFace());
  for (OperandPair& pair : pairs) {
    SCOPED_TRACE(pair.name);
    TopoDS_Shape first = pair.first, second = pair.second, result;
    const TopoDS_Wire wire = TopoDS::Wire(PartOf(first, TopAbs_WIRE));
    std::vector<TopoDS_Edge> edges;
    for (TopExp_Explorer edge(wire, TopAbs_EDGE); edge.More(); edge.Next())
      edges.push_back(TopoDS::Edge(edge.Current()));
    std::vector<TopoDS_Face> faces = {TopoDS::Face(PartOf(first, TopAbs_FACE))};
    std::string path = TemporaryPath("operand.igs");
    const std::string before = BrepOf(first) + BrepOf(second);
    for (const std::function<void()>& operation : std::initializer_list<std::function<void()>>{
           [&] { Op::CreateShapeBySweep(wire, gp_Dir(1, 2, 3), 5); },
           [&] { Op::CreateShapeBySweep(PointersTo(edges), gp_Dir(1, 2, 3), 5); },
           [&] { Op::OffsetObject(first, Skin(0.5, GeomAbs_Arc)); },
           [&] { Op::NonRegularBool2ShapesLCW(&first, &second); },
           [&] { Op::IsSameFace(faces[0], faces[0]); },
           [&] { Op::SaveShapeToIgsFile(path, first); },
           [&] { Op::CreateFacesByEdgesWrapGroup(edges, faces); },
           [&] { Op::PerformNoneRegularUnite(&first, &second, result, faces); },
           [&] { Op::PerformNoneRegularUnite(&first, &second); }}) {
      try {
        operation();
      } catch (const Standard_Failure&) {
        // Of a section that is no wire.
      }
      EXPECT_TRUE(SameDump(BrepOf(first) + BrepOf(second), before));
    }
    std::filesystem::remove(path);
  }
}

// Regular polygons of random size, direction and length, now and then with corners that fall
// together, cross, or lie in space: the prism of a sound one has the volume of the formula.
TEST(ShapeOps, RandomSectionsAreSweptAndOffset)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  int swept = 0, failed = 0, offset = 0;
  for (int i = 0; i < 200; ++i) {
    const int corners = 3 + random.Index(6), spoil = random.Index(8);
    const double size = std::pow(10, random.Real(-2, 4)), length = size * random.Real(0.1, 3);
    std::vector<gp_Pnt> points;
    for (int k = 0; k < corners; ++k)
      points.emplace_back(size * std::cos(2 * M_PI * k / corners),
                          size * std::sin(2 * M_PI * k / corners), 0);
    if (spoil == 0)
      points[1] = points[0];
    else if (spoil == 1)
      std::swap(points[0], points[1]);
    else if (spoil == 2)
      points[2].SetZ(size);
    points.push_back(points.front());
    const gp_Dir direction(random.Real(-1, 1), random.Real(-1, 1), random.Real(0.1, 1));
    try {
      TopoDS_Shape solid = Op::CreateShapeBySweep(points, direction, length);
      ++swept;
      const double area = corners / 2.0 * size * size * std::sin(2 * M_PI / corners);
      EXPECT_TRUE(spoil <= 2 ||
                  std::abs(VolumeOf(solid) / (area * length * direction.Z()) - 1) <= 1e-9);
      offset += !Op::OffsetObject(solid, Skin(size * random.Real(-0.2, 0.5))).IsNull();
    } catch (const Standard_Failure&) {
      ++failed;
      EXPECT_LE(spoil, 2);
    }
  }
  RecordProperty("swept", swept);
  RecordProperty("failed", failed);
  RecordProperty("offset", offset);
}

} // namespace
