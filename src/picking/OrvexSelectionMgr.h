// What the user has selected: lists that the application fills from pick results and reads back.
//
// Two shapes are the same here if they refer to the same TShape: neither location nor orientation
// plays a part, so two placed instances of one shape are one entry.
//
// Caveat: a selection by pointer is read through its pointer by later additions. The caller keeps
// the shape alive until ClearSelList.
// Caveat: no lock, the first GetInstance included. One thread at a time.
#pragma once

#include "foundation/Export.h"

#include <TopoDS_Shape.hxx>

#include <vector>

class ORVEX_API OrvexSelectionMgr
{
public:
  // The process's one manager, never freed.
  static OrvexSelectionMgr* GetInstance();

  // --- The selection ---

  // Selects a shape that stays the caller's, unless it is selected by pointer already. Not null.
  void AddToSelectionList(const TopoDS_Shape* shape);
  // Selects a shape by value, unless it is selected by pointer. Given twice it stands in the list
  // twice.
  void AddToSelectionList(TopoDS_Shape shape);
  void AddShapesToSelectionList(std::vector<TopoDS_Shape> shapes);
  // Takes the first entry with this TShape out of the shapes selected by value.
  void RemoveFromeSelectionList(TopoDS_Shape shape);
  // Empties both kinds of selection; the backup stays.
  void ClearSelList();
  // The shapes selected by value, in the order of their selection, to be read and changed. The
  // reference stays valid.
  std::vector<TopoDS_Shape>& GetshapeListNoptr();

  // --- The backup: a selection put aside ---

  void AddToBackupSelectionList(TopoDS_Shape shape);
  // As given, with what stands twice in it.
  void SetBackupList(const std::vector<TopoDS_Shape>& list);
  // To be read and changed; the reference stays valid.
  std::vector<TopoDS_Shape>& GetBackupshapeList();
  void ClearBackupSelList();

private:
  OrvexSelectionMgr() = default;

  std::vector<const TopoDS_Shape*> pointerList;
  std::vector<TopoDS_Shape> backupList;
  std::vector<TopoDS_Shape> valueList;

  static OrvexSelectionMgr* m_SelectInstace;
};
