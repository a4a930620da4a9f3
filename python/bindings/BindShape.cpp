// Shapes: what they are made of, how large they are, files, meshes, primitives and booleans.
#include "Arrays.h"
#include "Bindings.h"
#include "KernelErrors.h"

#include <pybind11/stl.h>

#include <BRepAlgoAPI_Common.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESControl_Writer.hxx>
#include <Poly_Triangulation.hxx>
#include <RWStl.hxx>
#include <STEPControl_Writer.hxx>
#include <StlAPI_Writer.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax2.hxx>
#include <gp_Trsf.hxx>

#include <array>
#include <cmath>
#include <sstream>

namespace py = pybind11;

namespace {

using Triple = std::array<double, 3>;

constexpr const char* kKinds[] = {"compound", "compsolid", "solid",  "shell", "face",
                                  "wire",     "edge",      "vertex", "shape"};

const char* KindOf(const TopoDS_Shape& shape)
{
  return shape.IsNull() ? "null" : kKinds[shape.ShapeType()];
}

// Each once, in the kernel's order.
std::vector<TopoDS_Shape> SubShapes(const TopoDS_Shape& shape, TopAbs_ShapeEnum kind)
{
  TopTools_IndexedMapOfShape found;
  if (!shape.IsNull())
    TopExp::MapShapes(shape, kind, found);
  std::vector<TopoDS_Shape> shapes;
  for (int at = 1; at <= found.Extent(); ++at)
    shapes.push_back(found(at));
  return shapes;
}

double VolumeOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  if (!shape.IsNull())
    BRepGProp::VolumeProperties(shape, properties);
  return properties.Mass();
}

double AreaOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  if (!shape.IsNull())
    BRepGProp::SurfaceProperties(shape, properties);
  return properties.Mass();
}

double LengthOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  if (!shape.IsNull())
    BRepGProp::LinearProperties(shape, properties);
  return properties.Mass();
}

Triple CentreOf(const TopoDS_Shape& shape)
{
  GProp_GProps properties;
  if (shape.IsNull())
    throw py::value_error("shape: it is null");
  const bool hasVolume = TopExp_Explorer(shape, TopAbs_SOLID).More();
  const bool hasArea = TopExp_Explorer(shape, TopAbs_FACE).More();
  if (hasVolume)
    BRepGProp::VolumeProperties(shape, properties);
  else if (hasArea)
    BRepGProp::SurfaceProperties(shape, properties);
  else
    BRepGProp::LinearProperties(shape, properties);
  const gp_Pnt centre = properties.CentreOfMass();
  return {centre.X(), centre.Y(), centre.Z()};
}

py::object BoxOf(const TopoDS_Shape& shape)
{
  Bnd_Box box;
  if (!shape.IsNull())
    BRepBndLib::Add(shape, box);
  if (box.IsVoid())
    return py::none();
  Triple low{};
  Triple high{};
  box.Get(low[0], low[1], low[2], high[0], high[1], high[2]);
  return py::make_tuple(py::cast(low), py::cast(high));
}

py::bytes BrepBytes(const TopoDS_Shape& shape)
{
  std::ostringstream text;
  BRepTools::Write(shape, text, true, false, TopTools_FormatVersion_VERSION_3);
  return py::bytes(text.str());
}

TopoDS_Shape ShapeOfBytes(const std::string& content)
{
  std::istringstream text(content);
  TopoDS_Shape shape;
  BRepTools::Read(shape, text, BRep_Builder());
  if (shape.IsNull())
    throw py::value_error("data: no shape in the kernel's BREP format");
  return shape;
}

TopoDS_Shape ReadIges(const std::string& path)
{
  IGESControl_Controller::Init();
  IGESControl_Reader reader;
  if (reader.ReadFile(path.c_str()) != IFSelect_RetDone)
    RaiseKernelError(path + ": the kernel cannot read it as IGES");
  reader.TransferRoots();
  const TopoDS_Shape shape = reader.OneShape();
  if (shape.IsNull())
    RaiseKernelError(path + ": there are no shapes in it");
  return shape;
}

// One face that carries all the triangles, without a surface.
TopoDS_Shape ReadStl(const std::string& path)
{
  const Handle(Poly_Triangulation) mesh = RWStl::ReadFile(path.c_str());
  if (mesh.IsNull() || mesh->NbTriangles() == 0)
    RaiseKernelError(path + ": there are no triangles in it");
  TopoDS_Face face;
  BRep_Builder().MakeFace(face, mesh);
  return face;
}

void WriteStep(const TopoDS_Shape& shape, const std::string& path)
{
  STEPControl_Writer writer;
  if (writer.Transfer(shape, STEPControl_AsIs) != IFSelect_RetDone ||
      writer.Write(path.c_str()) != IFSelect_RetDone)
    RaiseKernelError(path + ": the kernel cannot write it as STEP");
}

void WriteIges(const TopoDS_Shape& shape, const std::string& path)
{
  IGESControl_Controller::Init();
  IGESControl_Writer writer("MM", 1);
  if (!writer.AddShape(shape) || !writer.Write(path.c_str()))
    RaiseKernelError(path + ": the kernel cannot write it as IGES");
}

void Mesh(const TopoDS_Shape& shape, double linear, double angular)
{
  if (!(linear > 0) || !(angular > 0))
    throw py::value_error("linear_deflection and angular_deflection: above 0");
  const BRepMesh_IncrementalMesh mesher(shape, linear, false, angular, false);
}

void WriteStl(const TopoDS_Shape& shape, const std::string& path, double linear, double angular)
{
  Mesh(shape, linear, angular);
  StlAPI_Writer writer;
  writer.ASCIIMode() = false;
  if (!writer.Write(shape, path.c_str()))
    RaiseKernelError(path + ": the kernel cannot write it as STL");
}

struct Triangles
{
  std::vector<double> vertices;
  std::vector<std::int32_t> corners;
  std::vector<std::int32_t> faces;
};

void AddFace(const TopoDS_Face& face, std::int32_t number, Triangles& triangles)
{
  TopLoc_Location place;
  const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, place);
  if (mesh.IsNull())
    return;
  const auto first = static_cast<std::int32_t>(triangles.vertices.size() / 3);
  for (int node = 1; node <= mesh->NbNodes(); ++node) {
    const gp_Pnt point = mesh->Node(node).Transformed(place.Transformation());
    triangles.vertices.insert(triangles.vertices.end(), {point.X(), point.Y(), point.Z()});
  }
  for (int at = 1; at <= mesh->NbTriangles(); ++at) {
    int a = 0;
    int b = 0;
    int c = 0;
    mesh->Triangle(at).Get(a, b, c);
    if (face.Orientation() == TopAbs_REVERSED)
      std::swap(b, c);
    triangles.corners.insert(triangles.corners.end(),
                             {first + a - 1, first + b - 1, first + c - 1});
    triangles.faces.push_back(number);
  }
}

py::tuple MeshArrays(const TopoDS_Shape& shape, double linear, double angular)
{
  Triangles triangles;
  {
    const py::gil_scoped_release release;
    Mesh(shape, linear, angular);
    std::int32_t number = 0;
    for (TopExp_Explorer at(shape, TopAbs_FACE); at.More(); at.Next())
      AddFace(TopoDS::Face(at.Current()), ++number, triangles);
  }
  return py::make_tuple(AsArray(std::move(triangles.vertices), 3),
                        AsArray(std::move(triangles.corners), 3),
                        AsArray(std::move(triangles.faces), 1));
}

gp_Dir AxisOf(const Triple& axis)
{
  const double length = std::hypot(axis[0], axis[1], axis[2]);
  if (!(length > gp::Resolution()) || !std::isfinite(length))
    throw py::value_error("axis: a vector that is not zero");
  return gp_Dir(axis[0], axis[1], axis[2]);
}

TopoDS_Shape Moved(const TopoDS_Shape& shape, const gp_Trsf& move)
{
  return shape.Moved(TopLoc_Location(move));
}

TopoDS_Shape Translated(const TopoDS_Shape& shape, const Triple& by)
{
  gp_Trsf move;
  move.SetTranslation(gp_Vec(by[0], by[1], by[2]));
  return Moved(shape, move);
}

TopoDS_Shape Rotated(const TopoDS_Shape& shape, const Triple& point, const Triple& axis,
                     double angle)
{
  gp_Trsf move;
  move.SetRotation(gp_Ax1(gp_Pnt(point[0], point[1], point[2]), AxisOf(axis)), angle);
  return Moved(shape, move);
}

TopoDS_Shape Compound(const std::vector<TopoDS_Shape>& shapes)
{
  TopoDS_Compound compound;
  const BRep_Builder builder;
  builder.MakeCompound(compound);
  for (const TopoDS_Shape& shape : shapes)
    builder.Add(compound, shape);
  return compound;
}

template <typename Boolean>
TopoDS_Shape Combined(const TopoDS_Shape& first, const TopoDS_Shape& second)
{
  TopTools_ListOfShape bases;
  TopTools_ListOfShape tools;
  bases.Append(first);
  tools.Append(second);
  Boolean boolean;
  boolean.SetArguments(bases);
  boolean.SetTools(tools);
  boolean.SetNonDestructive(true);
  boolean.Build();
  if (!boolean.IsDone() || boolean.HasErrors())
    RaiseKernelError("the boolean fails");
  return boolean.Shape();
}

void CheckAbove(const char* name, double value, double limit)
{
  if (value > limit)
    return;
  throw py::value_error(
    std::string(name).append(": above ").append(limit == 0 ? "0" : "the other"));
}

gp_Ax2 FrameOf(const Triple& origin, const Triple& axis)
{
  return gp_Ax2(gp_Pnt(origin[0], origin[1], origin[2]), AxisOf(axis));
}

TopoDS_Shape Box(double length, double width, double height, const Triple& origin)
{
  CheckAbove("length", length, 0);
  CheckAbove("width", width, 0);
  CheckAbove("height", height, 0);
  return BRepPrimAPI_MakeBox(gp_Pnt(origin[0], origin[1], origin[2]), length, width, height)
    .Shape();
}

TopoDS_Shape Cylinder(double radius, double height, const Triple& origin, const Triple& axis)
{
  CheckAbove("radius", radius, 0);
  CheckAbove("height", height, 0);
  return BRepPrimAPI_MakeCylinder(FrameOf(origin, axis), radius, height).Shape();
}

TopoDS_Shape Cone(double bottom, double top, double height, const Triple& origin,
                  const Triple& axis)
{
  if (!(bottom >= 0) || !(top >= 0) || bottom == top)
    throw py::value_error("bottom_radius and top_radius: 0 or above, not equal");
  CheckAbove("height", height, 0);
  return BRepPrimAPI_MakeCone(FrameOf(origin, axis), bottom, top, height).Shape();
}

TopoDS_Shape Sphere(double radius, const Triple& origin)
{
  CheckAbove("radius", radius, 0);
  return BRepPrimAPI_MakeSphere(gp_Pnt(origin[0], origin[1], origin[2]), radius).Shape();
}

TopoDS_Shape Torus(double major, double minor, const Triple& origin, const Triple& axis)
{
  CheckAbove("minor_radius", minor, 0);
  CheckAbove("major_radius", major, minor);
  return BRepPrimAPI_MakeTorus(FrameOf(origin, axis), major, minor).Shape();
}

void BindFiles(py::module_& module)
{
  using Unlocked = py::call_guard<py::gil_scoped_release>;
  module.def("shape_from_bytes", &ShapeOfBytes, py::arg("data"));
  module.def("read_iges", &ReadIges, py::arg("path"), Unlocked());
  module.def("read_stl", &ReadStl, py::arg("path"), Unlocked());
  module.def("write_step", &WriteStep, py::arg("shape"), py::arg("path"), Unlocked());
  module.def("write_iges", &WriteIges, py::arg("shape"), py::arg("path"), Unlocked());
  module.def("write_stl", &WriteStl, py::arg("shape"), py::arg("path"),
             py::arg("linear_deflection"), py::arg("angular_deflection"), Unlocked());
}

void BindMakers(py::module_& module)
{
  const Triple origin{};
  const Triple up{0, 0, 1};
  module.def("box", &Box, py::arg("length"), py::arg("width"), py::arg("height"), py::kw_only(),
             py::arg("origin") = origin, "A box with a corner at the origin.");
  module.def("cylinder", &Cylinder, py::arg("radius"), py::arg("height"), py::kw_only(),
             py::arg("origin") = origin, py::arg("axis") = up, "A cylinder on its base.");
  module.def("cone", &Cone, py::arg("bottom_radius"), py::arg("top_radius"), py::arg("height"),
             py::kw_only(), py::arg("origin") = origin, py::arg("axis") = up,
             "A cone, or a frustum, on its base.");
  module.def("sphere", &Sphere, py::arg("radius"), py::kw_only(), py::arg("origin") = origin,
             "A ball around the origin.");
  module.def("torus", &Torus, py::arg("major_radius"), py::arg("minor_radius"), py::kw_only(),
             py::arg("origin") = origin, py::arg("axis") = up, "A ring around the axis.");
  module.def("compound", &Compound, py::arg("shapes"), "The shapes as one, unchanged.");
}

} // namespace

void BindShape(py::module_& module)
{
  using Unlocked = py::call_guard<py::gil_scoped_release>;
  py::class_<TopoDS_Shape>(module, "Shape", py::dynamic_attr())
    .def(py::init<>())
    .def_property_readonly("is_null", &TopoDS_Shape::IsNull)
    .def_property_readonly("kind", &KindOf)
    .def_property_readonly("volume", &VolumeOf)
    .def_property_readonly("area", &AreaOf)
    .def_property_readonly("length", &LengthOf)
    .def_property_readonly("centre", &CentreOf)
    .def_property_readonly("bounding_box", &BoxOf)
    .def_property_readonly("is_valid",
                           [](const TopoDS_Shape& shape) {
                             return !shape.IsNull() && BRepCheck_Analyzer(shape).IsValid();
                           })
    .def_property_readonly("solids",
                           [](const TopoDS_Shape& shape) { return SubShapes(shape, TopAbs_SOLID); })
    .def_property_readonly("shells",
                           [](const TopoDS_Shape& shape) { return SubShapes(shape, TopAbs_SHELL); })
    .def_property_readonly("faces",
                           [](const TopoDS_Shape& shape) { return SubShapes(shape, TopAbs_FACE); })
    .def_property_readonly("edges",
                           [](const TopoDS_Shape& shape) { return SubShapes(shape, TopAbs_EDGE); })
    .def_property_readonly(
      "vertices", [](const TopoDS_Shape& shape) { return SubShapes(shape, TopAbs_VERTEX); })
    .def("is_same", &TopoDS_Shape::IsSame, py::arg("other"))
    .def("is_partner", &TopoDS_Shape::IsPartner, py::arg("other"))
    .def("__eq__",
         [](const TopoDS_Shape& one, const TopoDS_Shape& other) { return one.IsEqual(other); })
    .def("__hash__",
         [](const TopoDS_Shape& shape) {
           return shape.IsNull() ? 0 : shape.HashCode(std::numeric_limits<int>::max());
         })
    .def("to_bytes", &BrepBytes)
    .def("translated", &Translated, py::arg("by"))
    .def("rotated", &Rotated, py::arg("point"), py::arg("axis"), py::arg("angle"))
    .def("mesh_arrays", &MeshArrays, py::arg("linear_deflection"), py::arg("angular_deflection"))
    .def("fused", &Combined<BRepAlgoAPI_Fuse>, py::arg("other"), Unlocked())
    .def("cut", &Combined<BRepAlgoAPI_Cut>, py::arg("other"), Unlocked())
    .def("common", &Combined<BRepAlgoAPI_Common>, py::arg("other"), Unlocked())
    .def(py::pickle([](const TopoDS_Shape& shape) { return BrepBytes(shape); },
                    [](const py::bytes& data) { return ShapeOfBytes(data); }));
  BindFiles(module);
  BindMakers(module);
}
