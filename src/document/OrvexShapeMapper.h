// Persistent identities of shapes: a random UUID per shape, stored in the document, by which the
// shape is found again after saving and reopening.
//
//   TCollection_AsciiString id = OrvexShapeMapper::GetInstance()->RegisterShape(shape);
//   ...save, close, reopen, make current...
//   TopoDS_Shape again = OrvexShapeMapper::GetInstance()->FindShape(id);
//
// A shape is the same if it has the same TShape in the same place; its orientation does not matter.
// The mapper follows the current document without being told.
//
// Caveats:
// - Ids are kept on children of the main label's child 1. In an XCAF document that is the label of
//   the shape tool: to the kernel, and so to ShapeLabelMgr, each registered shape is one more
//   top-level shape. GetAllShapes and its like count it a second time, also after the shape itself
//   was removed or rebuilt, and GetShapeNameByLabel of that label gives the id. Looking up the
//   label of a shape gives the label that had it first: register shapes after they were added to
//   the document, or names, colours and removal go to the id's label.
// - An id is always the text of a UUID. Children whose text is something else, as the labels of the
//   shapes themselves, are passed over.
// - Undoing the registration of a shape undoes its id; registered again, it gets a new one.
// - For the thread of the front end only.
// Cost: logarithmic for what was looked up before. A shape that was not is found or missed through
// the kernel's own index; an id that was not costs one walk over the document's shapes, which
// serves all ids after it. An unknown id always costs the walk.
#pragma once

#include "foundation/Export.h"

#include <TCollection_AsciiString.hxx>
#include <TDF_Label.hxx>
#include <TDocStd_Document.hxx>
#include <TopoDS_Shape.hxx>

#include <map>

class ORVEX_API OrvexShapeMapper
{
public:
  // The one mapper, made on first use and never destroyed.
  static OrvexShapeMapper* GetInstance();

  // The id of the shape; a new one if it has none. Empty without a document.
  TCollection_AsciiString RegisterShape(const TopoDS_Shape& shape);

  // Empty if the shape has no id, or without a document.
  TCollection_AsciiString FindID(const TopoDS_Shape& shape);

  // A null shape if no shape has the id, or without a document.
  TopoDS_Shape FindShape(const TCollection_AsciiString& id);

  // Fills the caches from the document.
  void RebuildMappings();

private:
  struct ByHash
  {
    bool operator()(const TopoDS_Shape& a, const TopoDS_Shape& b) const
    {
      constexpr int kUpperBound = 0x7fffffff;
      return a.HashCode(kUpperBound) < b.HashCode(kUpperBound);
    }
  };
  struct ByText
  {
    bool operator()(const TCollection_AsciiString& a, const TCollection_AsciiString& b) const
    {
      return a.IsLess(b);
    }
  };

  OrvexShapeMapper();

  // Follows the current document; false if there is none.
  bool SyncWithCurrent();
  void SyncDocumentContext(const opencascade::handle<TDocStd_Document>& doc);
  // Null if the caches do not name a label that still bears the id.
  TopoDS_Shape ShapeWithId(const TCollection_AsciiString& id) const;
  void Enter(const TopoDS_Shape& shape, const TCollection_AsciiString& id, const TDF_Label& label);

  static OrvexShapeMapper* instance;

  opencascade::handle<TDocStd_Document> document;
  TDF_Label rootLabel;
  std::map<TopoDS_Shape, TCollection_AsciiString, ByHash> shapeToId;
  std::map<TCollection_AsciiString, TDF_Label, ByText> idToLabel;
};
