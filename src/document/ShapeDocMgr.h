// The current document: one process-wide slot that everything which touches labels asks.
//
// The application makes, saves and closes the document and owns its undo limit; this class only
// shares the handle. Documents from here are XCAF documents: shapes live on the labels of their
// XCAFDoc_ShapeTool.
//
//   Handle(TDocStd_Document) doc;
//   XCAFApp_Application::GetApplication()->NewDocument("BinXCAF", doc);
//   ShapeDocMgr::GetInstance()->SetDoc(doc);
//
// Caveat: for one thread at a time; the first GetInstance too.
#pragma once

#include "foundation/Export.h"

#include <TDocStd_Document.hxx>

#include <functional>

class ORVEX_API ShapeDocMgr
{
public:
  // The instance, made on first use and never destroyed.
  static ShapeDocMgr* GetInstance();

  // Replaces the current document; null means none. A document that is current already changes
  // nothing and tells nobody; any other change is told to the hook below.
  void SetDoc(opencascade::handle<TDocStd_Document> doc);

  // The current document, null before the first SetDoc.
  opencascade::handle<TDocStd_Document> GetDoc() const;

  // NewCommand and CommitCommand of the document, as they are: no nesting count. A creation
  // between the two is one undo step, if the document has an undo limit.
  // Requires: a current document.
  void StartTransaction();
  void EndTransaction();

  // Called after each change of document, with the new one in place. The feature history puts its
  // hook here when it is first made, so that this class needs to know nothing of features.
  static void SetDocumentChangedHook(std::function<void()> hook);

private:
  static ShapeDocMgr* m_Instance;
  opencascade::handle<TDocStd_Document> document;
};
