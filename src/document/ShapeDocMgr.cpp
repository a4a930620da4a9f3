#include "document/ShapeDocMgr.h"

namespace {

std::function<void()>& DocumentChangedHook()
{
  static std::function<void()> hook;
  return hook;
}

} // namespace

ShapeDocMgr* ShapeDocMgr::m_Instance = nullptr;

ShapeDocMgr* ShapeDocMgr::GetInstance()
{
  if (m_Instance == nullptr)
    m_Instance = new ShapeDocMgr();
  return m_Instance;
}

void ShapeDocMgr::SetDoc(opencascade::handle<TDocStd_Document> doc)
{
  if (doc == document)
    return;
  document = doc;
  if (DocumentChangedHook())
    DocumentChangedHook()();
}

opencascade::handle<TDocStd_Document> ShapeDocMgr::GetDoc() const
{
  return document;
}

void ShapeDocMgr::StartTransaction()
{
  document->NewCommand();
}

void ShapeDocMgr::EndTransaction()
{
  document->CommitCommand();
}

void ShapeDocMgr::SetDocumentChangedHook(std::function<void()> hook)
{
  DocumentChangedHook() = std::move(hook);
}
