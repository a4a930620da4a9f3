// Makes examples/gear-reducer.step: a two-stage gear reducer with nested assemblies, parts that
// occur many times, colours, and names outside ASCII. Every dimension is in millimetres; parts
// touch where they are fitted and overlap nowhere.
//
//   make-gear-reducer OUTPUT.step
//
// Shafts, gears, bearings and covers are modelled around the Z axis. The reducer's shafts lie
// along Y, side by side along X, in the plane Z = 0 where the housing splits.
#include <APIHeaderSection_MakeHeader.hxx>
#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeRevol.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Tool.hxx>
#include <GC_MakeArcOfCircle.hxx>
#include <Interface_Static.hxx>
#include <Quantity_Color.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <Standard_Failure.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// Shafts
constexpr double kSeatRadius = 10.0;      // in the bearings
constexpr double kBodyRadius = 13.0;      // between the bearings, where the gears sit
constexpr double kEndRadius = 9.0;        // outside the housing
constexpr double kShoulder = 32.0;        // from the middle to a bearing
constexpr double kBossFace = 50.0;        // from the middle to a cover
constexpr double kFirstDistance = 82.5;   // input to intermediate shaft: 5 (12 + 21) / 2
constexpr double kSecondDistance = 102.0; // intermediate to output shaft: 6 (12 + 22) / 2

// Bearing: bore 20, outside 52, width 15
constexpr double kBearingRadius = 26.0;
constexpr double kBearingWidth = 15.0;
constexpr double kBallCircle = 18.0;
constexpr double kBallRadius = 4.75;
constexpr int kBalls = 8;

// Cover and its screws
constexpr double kCoverRadius = 36.0;
constexpr double kCoverScrewCircle = 31.0;

// Housing
constexpr double kWall = 8.0;
constexpr double kFlange = 8.0;
constexpr std::array<double, 3> kCavityLow{-40.0, -32.0, -78.0};
constexpr std::array<double, 3> kCavityHigh{262.0, 32.0, 78.0};
constexpr std::array<double, 3> kShaftPlaces{0.0, kFirstDistance, kFirstDistance + kSecondDistance};
constexpr std::array<std::pair<double, double>, 6> kBoltPlaces{
  {{-57, -30}, {-57, 30}, {133.5, -50}, {133.5, 50}, {279, -30}, {279, 30}}};

struct Gear
{
  int teeth;
  double module;
  double width;
};

constexpr Gear kFirstPinion{12, 5.0, 20.0};
constexpr Gear kFirstWheel{21, 5.0, 20.0};
constexpr Gear kSecondPinion{12, 6.0, 24.0};
constexpr Gear kSecondWheel{22, 6.0, 24.0};
constexpr double kFirstGearsBegin = -28.0;
constexpr double kSecondGearsBegin = 4.0;

// A pressure angle of 25 degrees cuts 12 teeth without undercut.
constexpr double kPressureAngle = 25.0 * M_PI / 180.0;
constexpr double kBacklash = 0.4;

// ---- shapes -------------------------------------------------------------------------------

TopoDS_Shape Box(gp_Pnt low, gp_Pnt high)
{
  return BRepPrimAPI_MakeBox(low, high).Shape();
}

TopoDS_Shape Rod(double radius, double from, double to, gp_XY at = {0, 0})
{
  const gp_Ax2 axis(gp_Pnt(at.X(), at.Y(), from), gp::DZ());
  return BRepPrimAPI_MakeCylinder(axis, radius, to - from).Shape();
}

TopoDS_Shape Ring(double inner, double outer, double from, double to)
{
  return BRepAlgoAPI_Cut(Rod(outer, from, to), Rod(inner, from, to)).Shape();
}

// The booleans wrap their result in a compound; parts here are single solids.
TopoDS_Shape OnlySolid(const TopoDS_Shape& shape)
{
  return TopExp_Explorer(shape, TopAbs_SOLID).Current();
}

TopoDS_Shape Cut(const TopoDS_Shape& from, const std::vector<TopoDS_Shape>& tools)
{
  TopTools_ListOfShape arguments, toolList;
  arguments.Append(from);
  for (const TopoDS_Shape& tool : tools)
    toolList.Append(tool);
  BRepAlgoAPI_Cut cut;
  cut.SetArguments(arguments);
  cut.SetTools(toolList);
  cut.Build();
  return OnlySolid(cut.Shape());
}

TopoDS_Shape Fuse(const TopoDS_Shape& first, const std::vector<TopoDS_Shape>& others)
{
  TopTools_ListOfShape arguments, toolList;
  arguments.Append(first);
  for (const TopoDS_Shape& other : others)
    toolList.Append(other);
  BRepAlgoAPI_Fuse fuse;
  fuse.SetArguments(arguments);
  fuse.SetTools(toolList);
  fuse.Build();
  fuse.SimplifyResult();
  return OnlySolid(fuse.Shape());
}

// A solid turned around Z from (radius, z) points.
TopoDS_Shape Turned(std::initializer_list<std::pair<double, double>> outline)
{
  BRepBuilderAPI_MakePolygon polygon;
  for (const auto& [radius, z] : outline)
    polygon.Add(gp_Pnt(radius, 0, z));
  polygon.Close();
  return BRepPrimAPI_MakeRevol(BRepBuilderAPI_MakeFace(polygon.Wire()).Face(), gp::OZ()).Shape();
}

TopoDS_Shape Hexagon(double acrossFlats, double from, double to)
{
  BRepBuilderAPI_MakePolygon polygon;
  for (int corner = 0; corner < 6; ++corner) {
    const double angle = corner * M_PI / 3;
    const double radius = acrossFlats / std::sqrt(3.0);
    polygon.Add(gp_Pnt(radius * std::cos(angle), radius * std::sin(angle), from));
  }
  polygon.Close();
  const TopoDS_Face face = BRepBuilderAPI_MakeFace(polygon.Wire());
  return BRepPrimAPI_MakePrism(face, gp_Vec(0, 0, to - from)).Shape();
}

// ---- gears --------------------------------------------------------------------------------

gp_Pnt Polar(double radius, double angle)
{
  return {radius * std::cos(angle), radius * std::sin(angle), 0};
}

double Involute(double angle)
{
  return std::tan(angle) - angle;
}

// Half the angle that a tooth takes up at a radius: involute above the base circle, radial below.
double HalfToothAngle(const Gear& gear, double radius)
{
  const double pitchRadius = gear.module * gear.teeth / 2;
  const double baseRadius = pitchRadius * std::cos(kPressureAngle);
  const double atPitch = M_PI / (2 * gear.teeth) - kBacklash / (4 * pitchRadius);
  const double pressure = std::acos(std::min(1.0, baseRadius / radius));
  return atPitch + Involute(kPressureAngle) - Involute(pressure);
}

TopoDS_Edge Arc(const gp_Pnt& from, const gp_Pnt& through, const gp_Pnt& to)
{
  return BRepBuilderAPI_MakeEdge(GC_MakeArcOfCircle(from, through, to).Value());
}

TopoDS_Edge Arc(double radius, double from, double to)
{
  return Arc(Polar(radius, from), Polar(radius, (from + to) / 2), Polar(radius, to));
}

// One flank from root to tip, on the side of `sign`: an arc through three points of the involute
// keeps the file small and differs from it by less than the backlash.
TopoDS_Edge Flank(const Gear& gear, double root, double tip, double middle, double sign)
{
  const auto at = [&](double radius) {
    return Polar(radius, middle + sign * HalfToothAngle(gear, radius));
  };
  return Arc(at(root), at((root + tip) / 2), at(tip));
}

// The first tooth points along X.
TopoDS_Wire GearOutline(const Gear& gear)
{
  const double root = gear.module * (gear.teeth / 2.0 - 1.25);
  const double tip = gear.module * (gear.teeth / 2.0 + 1.0);
  const double pitch = 2 * M_PI / gear.teeth;
  BRepBuilderAPI_MakeWire outline;
  for (int tooth = 0; tooth < gear.teeth; ++tooth) {
    const double middle = tooth * pitch;
    const double atTip = HalfToothAngle(gear, tip);
    const double atRoot = HalfToothAngle(gear, root);
    outline.Add(Flank(gear, root, tip, middle, -1));
    outline.Add(Arc(tip, middle - atTip, middle + atTip));
    outline.Add(Flank(gear, root, tip, middle, +1));
    outline.Add(Arc(root, middle + atRoot, middle + pitch - atRoot));
  }
  return outline.Wire();
}

TopoDS_Shape GearBlank(const Gear& gear)
{
  const TopoDS_Face face = BRepBuilderAPI_MakeFace(GearOutline(gear));
  return BRepPrimAPI_MakePrism(face, gp_Vec(0, 0, gear.width)).Shape();
}

TopoDS_Shape Pinion(const Gear& gear)
{
  return Cut(GearBlank(gear), {Rod(kBodyRadius, 0, gear.width)});
}

// A key lies half in the shaft and half in the wheel, on the side of X.
TopoDS_Shape KeyWithin(double from, double to)
{
  return Box({9, -4, from}, {16, 4, to});
}

// A wheel is lightened by recesses on both sides and six holes, and has a keyway.
TopoDS_Shape Wheel(const Gear& gear)
{
  const double rim = gear.module * (gear.teeth / 2.0 - 1.25) - 5;
  constexpr double kHub = 20.0;
  std::vector<TopoDS_Shape> tools{Rod(kBodyRadius, 0, gear.width), KeyWithin(0, gear.width),
                                  Ring(kHub, rim, 0, 5),
                                  Ring(kHub, rim, gear.width - 5, gear.width)};
  for (int hole = 0; hole < 6; ++hole) {
    const gp_Pnt place = Polar((kHub + rim) / 2, hole * M_PI / 3 + M_PI / 6);
    tools.push_back(Rod((rim - kHub) / 3.5, 0, gear.width, {place.X(), place.Y()}));
  }
  return Cut(GearBlank(gear), tools);
}

// ---- other parts --------------------------------------------------------------------------

// `left` and `right`: how far the ends stand out; a bearing's width and a little more when a cover
// closes the side.
TopoDS_Shape Shaft(double left, double right)
{
  constexpr double kChamfer = 1.0;
  const double seatEnd = kShoulder + kBearingWidth;
  return Turned({{0, left},
                 {kEndRadius - kChamfer, left},
                 {kEndRadius, left + kChamfer},
                 {kEndRadius, -seatEnd},
                 {kSeatRadius, -seatEnd},
                 {kSeatRadius, -kShoulder},
                 {kBodyRadius, -kShoulder},
                 {kBodyRadius, kShoulder},
                 {kSeatRadius, kShoulder},
                 {kSeatRadius, seatEnd},
                 {kEndRadius, seatEnd},
                 {kEndRadius, right - kChamfer},
                 {kEndRadius - kChamfer, right},
                 {0, right}});
}

TopoDS_Shape ShaftWithKeyway(double left, double right, double from, double to)
{
  return Cut(Shaft(left, right), {KeyWithin(from, to)});
}

TopoDS_Shape BearingRing(double inner, double outer)
{
  const gp_Ax2 middle(gp_Pnt(0, 0, kBearingWidth / 2), gp::DZ());
  const double groove = kBallRadius + 0.05;
  return Cut(OnlySolid(Ring(inner, outer, 0, kBearingWidth)),
             {BRepPrimAPI_MakeTorus(middle, kBallCircle, groove).Shape()});
}

TopoDS_Shape Screw(double radius, double length, const TopoDS_Shape& head)
{
  return Fuse(head, {Rod(radius, -length, 0)});
}

TopoDS_Shape CapScrew()
{
  const TopoDS_Shape head = Cut(Rod(4.25, 0, 5), {Hexagon(4, 2, 5)});
  return Screw(2.4, 16, head);
}

std::vector<gp_XY> CoverScrewPlaces()
{
  std::vector<gp_XY> places;
  for (int i = 0; i < 4; ++i) {
    const gp_Pnt place = Polar(kCoverScrewCircle, M_PI / 4 + i * M_PI / 2);
    places.emplace_back(place.X(), place.Y());
  }
  return places;
}

// The spigot reaches down to the bearing's outer ring.
TopoDS_Shape Cover(double shaftHole)
{
  const double spigot = kBossFace - kShoulder - kBearingWidth;
  const TopoDS_Shape plate = Turned({{0, 0},
                                     {21, 0},
                                     {21, -spigot},
                                     {25.9, -spigot},
                                     {25.9, 0},
                                     {kCoverRadius, 0},
                                     {kCoverRadius, 5},
                                     {kCoverRadius - 1, 6},
                                     {0, 6}});
  std::vector<TopoDS_Shape> tools;
  for (const gp_XY& place : CoverScrewPlaces())
    tools.push_back(Rod(2.75, 0, 6, place));
  if (shaftHole > 0)
    tools.push_back(Rod(shaftHole, 0, 6));
  return Cut(plate, tools);
}

// ---- housing ------------------------------------------------------------------------------

// Takes a shape around Z to a shaft's place, along Y.
gp_Trsf AtShaft(double x, double degrees = 0)
{
  gp_Trsf turn, lay, move;
  turn.SetRotation(gp::OZ(), degrees * M_PI / 180);
  lay.SetRotation(gp::OX(), -M_PI / 2);
  move.SetTranslation(gp_Vec(x, 0, 0));
  return move * lay * turn;
}

bool IsUpright(const TopoDS_Edge& edge)
{
  const gp_Pnt from = BRep_Tool::Pnt(TopExp::FirstVertex(edge));
  const gp_Pnt to = BRep_Tool::Pnt(TopExp::LastVertex(edge));
  return std::abs(from.Z() - to.Z()) > from.Distance(to) - 1e-6;
}

TopoDS_Shape RoundedBox(gp_Pnt low, gp_Pnt high, double radius)
{
  const TopoDS_Shape box = Box(low, high);
  TopTools_IndexedMapOfShape edges;
  TopExp::MapShapes(box, TopAbs_EDGE, edges);
  BRepFilletAPI_MakeFillet fillet(box);
  for (int i = 1; i <= edges.Extent(); ++i)
    if (IsUpright(TopoDS::Edge(edges(i))))
      fillet.Add(radius, TopoDS::Edge(edges(i)));
  return fillet.Shape();
}

gp_Pnt CavityLow(double wall)
{
  return {kCavityLow[0] - wall, kCavityLow[1] - wall, kCavityLow[2] - wall};
}

gp_Pnt CavityHigh(double wall)
{
  return {kCavityHigh[0] + wall, kCavityHigh[1] + wall, kCavityHigh[2] + wall};
}

// Walls, flange, foot, and a boss around each pair of bearings.
TopoDS_Shape HousingOutside()
{
  const double bottom = kCavityLow[2] - kWall;
  std::vector<TopoDS_Shape> more{
    RoundedBox({-66, -kBossFace, -kFlange}, {288, kBossFace, kFlange}, 8),
    RoundedBox({122, -60, -kFlange}, {145, 60, kFlange}, 8),
    RoundedBox({-66, -58, bottom - 8}, {288, 58, bottom}, 8)};
  for (const double x : kShaftPlaces)
    more.push_back(Rod(kCoverRadius, -kBossFace, kBossFace).Moved(AtShaft(x)));
  return Fuse(RoundedBox(CavityLow(kWall), CavityHigh(kWall), 10), more);
}

// The cavity, the bearing seats, and the holes for the screws of the covers, the bolts of the
// flange and the ground.
std::vector<TopoDS_Shape> HousingHollows()
{
  std::vector<TopoDS_Shape> hollows{RoundedBox(CavityLow(0), CavityHigh(0), 4)};
  for (const double x : kShaftPlaces) {
    hollows.push_back(Rod(kBearingRadius, -kBossFace, kBossFace).Moved(AtShaft(x)));
    for (const gp_XY& place : CoverScrewPlaces()) {
      hollows.push_back(Rod(2.5, kBossFace - 12, kBossFace, place).Moved(AtShaft(x)));
      hollows.push_back(Rod(2.5, -kBossFace, -kBossFace + 12, place).Moved(AtShaft(x)));
    }
  }
  for (const auto& [x, y] : kBoltPlaces)
    hollows.push_back(Rod(4.5, -kFlange, kFlange, {x, y}));
  const double bottom = kCavityLow[2] - kWall;
  for (const double x : {-54.0, 276.0})
    for (const double y : {-46.0, 46.0})
      hollows.push_back(Rod(5.5, bottom - 8, bottom, {x, y}));
  return hollows;
}

TopoDS_Shape HousingHalf(const TopoDS_Shape& housing, double from, double to)
{
  return OnlySolid(BRepAlgoAPI_Common(housing, Box({-500, -500, from}, {500, 500, to})).Shape());
}

// ---- the product --------------------------------------------------------------------------

gp_Trsf Shift(double x, double y, double z)
{
  gp_Trsf shift;
  shift.SetTranslation(gp_Vec(x, y, z));
  return shift;
}

// Upside down, the upper side then at z.
gp_Trsf Flipped(double z)
{
  gp_Trsf flip;
  flip.SetRotation(gp::OX(), M_PI);
  return Shift(0, 0, z) * flip;
}

struct Placed
{
  TDF_Label what;
  gp_Trsf where;
};

class Product
{
public:
  Product()
  {
    XCAFApp_Application::GetApplication()->NewDocument("BinXCAF", document);
    shapes = XCAFDoc_DocumentTool::ShapeTool(document->Main());
    colours = XCAFDoc_DocumentTool::ColorTool(document->Main());
  }

  TDF_Label Part(const char* name, const TopoDS_Shape& shape, const char* colour)
  {
    if (!BRepCheck_Analyzer(shape).IsValid())
      throw Standard_Failure(name);
    const TDF_Label label = shapes->AddShape(shape, false);
    SetName(label, name);
    Quantity_Color value;
    Quantity_Color::ColorFromHex(colour, value);
    colours->SetColor(label, value, XCAFDoc_ColorGen);
    return label;
  }

  TDF_Label Assembly(const char* name, const std::vector<Placed>& members)
  {
    const TDF_Label label = shapes->NewShape();
    SetName(label, name);
    std::map<std::string, int> numbers;
    for (const Placed& member : members) {
      const TDF_Label component = shapes->AddComponent(label, member.what, member.where);
      const std::string memberName = NameOf(member.what);
      const int number = ++numbers[memberName];
      SetName(component, (memberName + "." + std::to_string(number)).c_str());
    }
    return label;
  }

  void Write(const char* path)
  {
    shapes->UpdateAssemblies();
    STEPCAFControl_Controller::Init();
    // Curves on the surfaces can be computed again, and are half of the file.
    Interface_Static::SetIVal("write.surfacecurve.mode", 0);
    STEPCAFControl_Writer writer;
    writer.SetColorMode(true);
    writer.SetNameMode(true);
    if (!writer.Transfer(document, STEPControl_AsIs))
      throw Standard_Failure("the translation failed");
    // The same program always makes the same file.
    APIHeaderSection_MakeHeader header(writer.ChangeWriter().Model());
    header.SetTimeStamp(new TCollection_HAsciiString("2024-01-01T00:00:00"));
    if (writer.Write(path) != IFSelect_RetDone)
      throw Standard_Failure("the file could not be written");
  }

private:
  static void SetName(const TDF_Label& label, const char* utf8)
  {
    TDataStd_Name::Set(label, TCollection_ExtendedString(utf8, true));
  }

  static std::string NameOf(const TDF_Label& label)
  {
    Handle(TDataStd_Name) name;
    label.FindAttribute(TDataStd_Name::GetID(), name);
    std::string utf8(static_cast<std::size_t>(name->Get().LengthOfCString()), '\0');
    Standard_PCharacter begin = utf8.data();
    name->Get().ToUTF8CString(begin);
    return utf8;
  }

  Handle(TDocStd_Document) document;
  Handle(XCAFDoc_ShapeTool) shapes;
  Handle(XCAFDoc_ColorTool) colours;
};

constexpr const char* kCastIron = "#5f7f95";
constexpr const char* kSteel = "#b8bcc2";
constexpr const char* kDarkSteel = "#4a4d52";
constexpr const char* kBrass = "#c8a24b";
constexpr const char* kBronze = "#b5763a";

TDF_Label BallBearing(Product& product)
{
  const TDF_Label ball =
    product.Part("ball", BRepPrimAPI_MakeSphere(kBallRadius).Shape(), "#e6e8ea");
  std::vector<Placed> members{
    {product.Part("inner ring", BearingRing(kSeatRadius, 15.5), kSteel), gp_Trsf()},
    {product.Part("outer ring", BearingRing(20.5, kBearingRadius), kSteel), gp_Trsf()}};
  for (int i = 0; i < kBalls; ++i) {
    const gp_Pnt place = Polar(kBallCircle, i * 2 * M_PI / kBalls);
    members.push_back({ball, Shift(place.X(), place.Y(), kBearingWidth / 2)});
  }
  return product.Assembly("ball bearing 20x52x15", members);
}

// A shaft with its bearings and what else sits on it.
TDF_Label ShaftGroup(Product& product, const char* name, const TDF_Label& shaft,
                     const TDF_Label& bearing, const std::vector<Placed>& more)
{
  std::vector<Placed> members{
    {shaft, gp_Trsf()}, {bearing, Shift(0, 0, kShoulder)}, {bearing, Flipped(-kShoulder)}};
  members.insert(members.end(), more.begin(), more.end());
  return product.Assembly(name, members);
}

struct ShaftGroups
{
  TDF_Label input, intermediate, output;
};

ShaftGroups MakeShaftGroups(Product& product)
{
  constexpr double kInner = 48.0; // the end of a shaft behind a closed cover
  constexpr double kOuter = 110.0;
  const double firstEnd = kFirstGearsBegin + kFirstWheel.width;
  const double secondEnd = kSecondGearsBegin + kSecondWheel.width;
  const TDF_Label bearing = BallBearing(product);
  const TDF_Label firstKey =
    product.Part("key 8x7x20", KeyWithin(0, kFirstWheel.width), kDarkSteel);
  const TDF_Label secondKey =
    product.Part("key 8x7x24", KeyWithin(0, kSecondWheel.width), kDarkSteel);
  const gp_Trsf first = Shift(0, 0, kFirstGearsBegin);
  const gp_Trsf second = Shift(0, 0, kSecondGearsBegin);

  ShaftGroups groups;
  groups.input = ShaftGroup(product, "input shaft group",
                            product.Part("input shaft", Shaft(-kOuter, kInner), kSteel), bearing,
                            {{product.Part("pinion m5 z12", Pinion(kFirstPinion), kBrass), first}});
  groups.intermediate =
    ShaftGroup(product, "intermediate shaft group",
               product.Part("intermediate shaft",
                            ShaftWithKeyway(-kInner, kInner, kFirstGearsBegin, firstEnd), kSteel),
               bearing,
               {{product.Part("Zahnrad Größe 1", Wheel(kFirstWheel), kBronze), first},
                {firstKey, first},
                {product.Part("pinion m6 z12", Pinion(kSecondPinion), kBrass), second}});
  groups.output = ShaftGroup(
    product, "output shaft group",
    product.Part("output shaft", ShaftWithKeyway(-kInner, kOuter, kSecondGearsBegin, secondEnd),
                 kSteel),
    bearing,
    {{product.Part("Zahnrad Größe 2", Wheel(kSecondWheel), kBronze), second}, {secondKey, second}});
  return groups;
}

struct Covers
{
  TDF_Label closed, open;
};

Covers MakeCovers(Product& product)
{
  const TDF_Label screw = product.Part("cap screw M5x16", CapScrew(), kDarkSteel);
  const auto withScrews = [&](const char* name, const TDF_Label& cover) {
    std::vector<Placed> members{{cover, gp_Trsf()}};
    for (const gp_XY& place : CoverScrewPlaces())
      members.push_back({screw, Shift(place.X(), place.Y(), 6)});
    return product.Assembly(name, members);
  };
  return {withScrews("closed cover", product.Part("Lagerdeckel Ø72", Cover(0), kCastIron)),
          withScrews("open cover",
                     product.Part("Lagerdeckel Ø72 mit Öffnung Ø22", Cover(11), kCastIron))};
}

// Its origin lies in the upper side of the flange.
TDF_Label MakeBoltSet(Product& product)
{
  const TDF_Label bolt =
    product.Part("hex bolt M8x28", Screw(4, 28, Hexagon(13, 0, 5.3)), kDarkSteel);
  const TDF_Label washer = product.Part("washer 8.4", OnlySolid(Ring(4.2, 8, -1.6, 0)), kSteel);
  const TDF_Label nut =
    product.Part("hex nut M8", Cut(Hexagon(13, -6.5, 0), {Rod(4, -6.5, 0)}), kDarkSteel);
  const double below = -2 * kFlange;
  return product.Assembly(
    "bolt set M8",
    {{bolt, gp_Trsf()}, {washer, Shift(0, 0, below)}, {nut, Shift(0, 0, below - 1.6)}});
}

std::vector<Placed> PlaceCovers(const Covers& covers)
{
  // The input shaft leaves on one side, the output shaft on the other.
  std::vector<Placed> placed;
  for (const double x : kShaftPlaces) {
    const bool inputSide = x == kShaftPlaces.front();
    const bool outputSide = x == kShaftPlaces.back();
    placed.push_back(
      {outputSide ? covers.open : covers.closed, AtShaft(x) * Shift(0, 0, kBossFace)});
    placed.push_back({inputSide ? covers.open : covers.closed, AtShaft(x) * Flipped(-kBossFace)});
  }
  return placed;
}

void MakeReducer(Product& product)
{
  const TopoDS_Shape housing = Cut(HousingOutside(), HousingHollows());
  const TDF_Label lower = product.Part("housing bottom", HousingHalf(housing, -500, 0), kCastIron);
  const TDF_Label upper = product.Part("housing top", HousingHalf(housing, 0, 500), "#7f9fb5");
  const TDF_Label boltSet = MakeBoltSet(product);
  const ShaftGroups groups = MakeShaftGroups(product);

  // The odd first wheel meets its pinion with a gap as it is; the even second one is turned by
  // half a tooth.
  std::vector<Placed> members{
    {lower, gp_Trsf()},
    {upper, gp_Trsf()},
    {groups.input, AtShaft(kShaftPlaces[0])},
    {groups.intermediate, AtShaft(kShaftPlaces[1])},
    {groups.output, AtShaft(kShaftPlaces[2], 180.0 / kSecondWheel.teeth)}};
  for (const Placed& cover : PlaceCovers(MakeCovers(product)))
    members.push_back(cover);
  for (const auto& [x, y] : kBoltPlaces)
    members.push_back({boltSet, Shift(x, y, kFlange)});
  product.Assembly("gear reducer", members);
}

} // namespace

int main(int argc, char** argv)
{
  if (argc != 2) {
    std::fprintf(stderr, "usage: make-gear-reducer OUTPUT.step\n");
    return 2;
  }
  try {
    Product product;
    MakeReducer(product);
    product.Write(argv[1]);
  } catch (const Standard_Failure& failure) {
    std::fprintf(stderr, "make-gear-reducer: %s\n", failure.GetMessageString());
    return 1;
  }
  return 0;
}
