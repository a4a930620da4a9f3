// Finds for a body the sweep that makes it: an extrusion, a revolution, or a loft between two
// sections. What a face is called does not count, only where its points and normals lie: a round
// face that a file carries as a spline is as good as a cylinder.
#pragma once

#include <TopoDS_Solid.hxx>

#include <string>

namespace Orvex {

struct FormedBody
{
  // Null when no form fits.
  TopoDS_Shape shape;
  // "extrusion", "revolution" or "loft".
  std::string form;
};

// Each form that seems possible is built, and the first that is equivalent to the body by
// ShapeEquivalenceAnalyzer is the answer; the body itself never is.
FormedBody FormOf(const TopoDS_Solid& body);

// One form alone.
FormedBody ExtrusionOf(const TopoDS_Solid& body);
FormedBody RevolutionOf(const TopoDS_Solid& body);
FormedBody LoftOf(const TopoDS_Solid& body);

} // namespace Orvex
