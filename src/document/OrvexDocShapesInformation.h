// What the current document holds, counted and as text for a model information panel.
#pragma once

#include "document/ShapeLabelMgr.h"
#include "foundation/Export.h"

#include <Bnd_Box.hxx>

#include <map>
#include <string>

// Counts over all top-level shapes. A face, edge or vertex is met once for each shape that uses it,
// an edge once for each face too: a box has 6 faces and 24 edges.
struct sModelInformation
{
  int numberOfFaces = 0;
  int numberOfEdges = 0;
  int numberOfVertices = 0;
  // Empty after a count.
  std::map<std::string, int> facesByName;
  // Of all shapes; void if there is none.
  Bnd_Box boundingBox;
};

class ORVEX_API OrvexDocShapesInformation
{
public:
  // Refreshes m_modelInfo.
  static void CollectData();

  // Number of shapes and faces and the corners of the bounding box, with HTML line breaks; numbers
  // with six decimals and a point, whatever the locale. All zero for a void box.
  static std::string DumpModelInformation();

  // The name of the label's shape and, for each shape in the tree below it, a line of types; fills
  // the map like ShapeLabelMgr::GetSubshapWithcursive.
  static std::string GetMainShapeAndSubShape(TDF_Label& label,
                                             ShapeLabelMgr::SubShapeMap& subShapes);

  static sModelInformation m_modelInfo;
};

// What a shape's type says. All false for a null shape.
class ORVEX_API OrvexOCCShapeType
{
public:
  static bool IsFaceType(const TopoDS_Shape& shape);  // shell or face
  static bool IsSolidType(const TopoDS_Shape& shape); // solid or compsolid
  static bool IsTopShape(const TopoDS_Shape& shape);  // compound, compsolid or solid
};
