// Comparing, checking and measuring shapes.
#include "Arrays.h"
#include "Bindings.h"

#include <pybind11/stl.h>

#include "analysis/ModelCheckAnalyzer.h"
#include "analysis/ShapeEquivalenceAnalyzer.h"
#include "analysis/SurfaceQualityAnalyzer.h"

#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

#include <array>

namespace py = pybind11;

namespace {

using Triple = std::array<double, 3>;

gp_Dir DirectionOf(const Triple& direction)
{
  return gp_Dir(direction[0], direction[1], direction[2]);
}

TopoDS_Face FaceOf(const TopoDS_Shape& shape)
{
  if (shape.IsNull() || shape.ShapeType() != TopAbs_FACE)
    throw py::value_error("face: a shape of kind \"face\"");
  return TopoDS::Face(shape);
}

void CheckGrid(int count)
{
  constexpr int kMost = 10000;
  if (count < 1 || count > kMost)
    throw py::value_error("samples: 1 to 10000 along each axis");
}

// Rows of u, v, Gaussian curvature, mean curvature, stripes.
py::array_t<double> RowsOf(const std::vector<SurfaceQualitySample>& samples)
{
  std::vector<double> rows;
  rows.reserve(samples.size() * 5);
  for (const SurfaceQualitySample& sample : samples)
    rows.insert(rows.end(), {sample.u, sample.v, sample.gaussianCurvature, sample.meanCurvature,
                             sample.zebraValue});
  return AsArray(std::move(rows), 5);
}

py::array_t<double> Curvature(const TopoDS_Shape& shape, int samples)
{
  CheckGrid(samples);
  const TopoDS_Face face = FaceOf(shape);
  SurfaceQualityReport report;
  {
    const py::gil_scoped_release release;
    report = SurfaceQualityAnalyzer::AnalyzeCurvatureMap(face, samples, samples);
  }
  return RowsOf(report.samples);
}

py::array_t<double> Zebra(const TopoDS_Shape& shape, const Triple& light, int samples,
                          double frequency)
{
  CheckGrid(samples);
  const TopoDS_Face face = FaceOf(shape);
  SurfaceQualityReport report;
  {
    const py::gil_scoped_release release;
    report = SurfaceQualityAnalyzer::AnalyzeZebraMap(face, DirectionOf(light), samples, samples,
                                                     frequency);
  }
  return RowsOf(report.samples);
}

DraftAnalysisReport Draft(const TopoDS_Shape& shape, const Triple& pull, double angle, int samples,
                          int hotspots)
{
  CheckGrid(samples);
  return SurfaceQualityAnalyzer::AnalyzeDraft(shape, DirectionOf(pull), angle, samples, samples,
                                              hotspots);
}

template <MeasureAnalysisReport (*analyze)(const TopoDS_Shape&, int, int)>
MeasureAnalysisReport Measure(const TopoDS_Shape& shape, int samples, int hotspots)
{
  CheckGrid(samples);
  return analyze(shape, samples, hotspots);
}

// Rows of face, u, v, x, y, z, value; the worst first.
py::array_t<double> HotspotsOf(const MeasureAnalysisReport& report)
{
  std::vector<double> rows;
  for (const MeasureHotspot& spot : report.hotspots)
    rows.insert(rows.end(), {static_cast<double>(spot.face), spot.u, spot.v, spot.point.X(),
                             spot.point.Y(), spot.point.Z(), spot.value});
  return AsArray(std::move(rows), 7);
}

// Rows of face, u, v, angle in degrees.
py::array_t<double> HotspotsOf(const DraftAnalysisReport& report)
{
  std::vector<double> rows;
  for (const DraftHotspot& spot : report.hotspots)
    rows.insert(rows.end(), {static_cast<double>(spot.face), spot.u, spot.v, spot.angleDegrees});
  return AsArray(std::move(rows), 4);
}

void BindEquivalence(py::module_& module)
{
  using Metrics = ShapeEquivalenceMetrics;
  using Report = ShapeEquivalenceReport;
  py::class_<Metrics>(module, "EquivalenceMetrics")
    .def_readonly("volume", &Metrics::volume)
    .def_readonly("area", &Metrics::area)
    .def_property_readonly("bounding_box",
                           [](const Metrics& metrics) {
                             return py::make_tuple(
                               Triple{metrics.xMin, metrics.yMin, metrics.zMin},
                               Triple{metrics.xMax, metrics.yMax, metrics.zMax});
                           })
    .def_property_readonly("counts", [](const Metrics& metrics) {
      const ShapeTopologyCounts& counts = metrics.topology;
      return py::dict(py::arg("solids") = counts.solids, py::arg("shells") = counts.shells,
                      py::arg("faces") = counts.faces, py::arg("wires") = counts.wires,
                      py::arg("edges") = counts.edges, py::arg("vertices") = counts.vertices);
    });
  py::class_<Report>(module, "EquivalenceReport")
    .def_readonly("equivalent", &Report::equivalent)
    .def_readonly("source_valid", &Report::sourceValid)
    .def_readonly("candidate_valid", &Report::candidateValid)
    .def_readonly("volume_error", &Report::volumeRelativeError)
    .def_readonly("area_error", &Report::areaRelativeError)
    .def_readonly("box_deviation", &Report::bboxMaxDeviation)
    .def_readonly("source", &Report::source)
    .def_readonly("candidate", &Report::candidate)
    .def_readonly("failures", &Report::failures);
  module.def(
    "compare",
    [](const TopoDS_Shape& source, const TopoDS_Shape& candidate, double relative, double absolute,
       bool volume, bool area, bool box, bool topology) {
      if (!(relative >= 0) || !(absolute >= 0))
        throw py::value_error("relative_tolerance and absolute_tolerance: 0 or above");
      return ShapeEquivalenceAnalyzer::Compare(source, candidate,
                                               {relative, absolute, volume, area, box, topology});
    },
    py::arg("source"), py::arg("candidate"), py::kw_only(), py::arg("relative_tolerance") = 1e-4,
    py::arg("absolute_tolerance") = 1e-6, py::arg("volume") = true, py::arg("area") = true,
    py::arg("bounding_box") = true, py::arg("topology") = true,
    py::call_guard<py::gil_scoped_release>(),
    "Whether two shapes are the same model: validity, volume, area, box, counts.\n\n"
    "relative_tolerance: of volume and area against the larger one, of boxes against the largest\n"
    "    coordinate; absolute_tolerance: on top for boxes, and the smallest volume that counts.\n"
    "volume, area, bounding_box, topology: False leaves that comparison out.");
}

void BindCheck(py::module_& module)
{
  using Issue = ModelCheckIssue;
  using Report = ModelCheckReport;
  py::class_<Issue>(module, "CheckIssue")
    .def_readonly("shape_index", &Issue::shapeIndex)
    .def_readonly("sub_index", &Issue::subIndex)
    .def_readonly("severity", &Issue::severity)
    .def_readonly("code", &Issue::code)
    .def_readonly("entity_type", &Issue::entityType)
    .def_readonly("category", &Issue::category)
    .def_readonly("message", &Issue::message)
    .def_readonly("value", &Issue::value)
    .def_readonly("threshold", &Issue::threshold);
  py::class_<Report>(module, "CheckReport")
    .def_readonly("success", &Report::success)
    .def_readonly("shape_count", &Report::shapeCount)
    .def_readonly("issue_count", &Report::issueCount)
    .def_readonly("critical_count", &Report::criticalCount)
    .def_readonly("warning_count", &Report::warningCount)
    .def_readonly("info_count", &Report::infoCount)
    .def_readonly("issues", &Report::issues);
  const ModelCheckOptions defaults;
  module.def(
    "check",
    [](const std::vector<TopoDS_Shape>& shapes, double shortEdge, double hole, double blend,
       double chamfer, double faceArea, int most) {
      return ModelCheckAnalyzer::Analyze(shapes, {shortEdge, hole, blend, chamfer, faceArea, most});
    },
    py::arg("shapes"), py::kw_only(), py::arg("short_edge") = defaults.shortEdgeThreshold,
    py::arg("small_hole_radius") = defaults.smallHoleRadius,
    py::arg("small_blend_radius") = defaults.smallBlendRadius,
    py::arg("small_chamfer_width") = defaults.smallChamferWidth,
    py::arg("tiny_face_area") = defaults.tinyFaceArea,
    py::arg("max_issues_per_shape") = defaults.maxIssuesPerShape,
    py::call_guard<py::gil_scoped_release>());
}

void BindQuality(py::module_& module)
{
  using Unlocked = py::call_guard<py::gil_scoped_release>;
  py::class_<DraftAnalysisReport>(module, "DraftReport")
    .def_readonly("valid", &DraftAnalysisReport::valid)
    .def_readonly("passes", &DraftAnalysisReport::passes)
    .def_readonly("min_angle", &DraftAnalysisReport::minAngleDegrees)
    .def_readonly("max_angle", &DraftAnalysisReport::maxAngleDegrees)
    .def_readonly("average_angle", &DraftAnalysisReport::averageAngleDegrees)
    .def_readonly("samples", &DraftAnalysisReport::samples)
    .def_readonly("violations", &DraftAnalysisReport::violations)
    .def_property_readonly("hotspots",
                           [](const DraftAnalysisReport& report) { return HotspotsOf(report); });
  py::class_<MeasureAnalysisReport>(module, "MeasureReport")
    .def_readonly("valid", &MeasureAnalysisReport::valid)
    .def_readonly("faces", &MeasureAnalysisReport::faces)
    .def_readonly("samples", &MeasureAnalysisReport::samples)
    .def_readonly("min", &MeasureAnalysisReport::minValue)
    .def_readonly("max", &MeasureAnalysisReport::maxValue)
    .def_readonly("average", &MeasureAnalysisReport::averageValue)
    .def_property_readonly("hotspots",
                           [](const MeasureAnalysisReport& report) { return HotspotsOf(report); });
  module.def("curvature", &Curvature, py::arg("face"), py::kw_only(), py::arg("samples") = 20,
             "Gaussian and mean curvature over a face.\n\n"
             "Returns: float64, (samples * samples, 5): u, v, Gaussian, mean, 0.");
  module.def("zebra", &Zebra, py::arg("face"), py::kw_only(), py::arg("light") = Triple{0, 0, 1},
             py::arg("samples") = 20, py::arg("frequency") = 10.0,
             "Reflected stripes over a face, as `curvature` with the stripes last.");
  module.def("draft", &Draft, py::arg("shape"), py::kw_only(), py::arg("pull") = Triple{0, 0, 1},
             py::arg("min_angle") = 1.0, py::arg("samples") = 8, py::arg("max_hotspots") = 10,
             Unlocked(), "The angle between faces and a pull direction, in degrees.");
  module.def("min_radius", &Measure<&SurfaceQualityAnalyzer::AnalyzeMinRadius>, py::arg("shape"),
             py::kw_only(), py::arg("samples") = 8, py::arg("max_hotspots") = 10, Unlocked(),
             "The smallest radii of curvature on a shape, in model units.");
  module.def("thickness", &Measure<&SurfaceQualityAnalyzer::AnalyzeThickness>, py::arg("shape"),
             py::kw_only(), py::arg("samples") = 4, py::arg("max_hotspots") = 10, Unlocked(),
             "The thickness of a solid at places all over it, in model units.");
}

} // namespace

void BindAnalysis(py::module_& module)
{
  BindEquivalence(module);
  BindCheck(module);
  BindQuality(module);
}
