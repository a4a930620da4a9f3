#include "support/TestDocument.h"

#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <BinXCAFDrivers.hxx>
#include <PCDM_ReaderStatus.hxx>
#include <PCDM_StoreStatus.hxx>
#include <TDF_AttributeIterator.hxx>
#include <TDF_ChildIterator.hxx>
#include <TDF_TagSource.hxx>
#include <TDataStd_Name.hxx>
#include <TNaming_NamedShape.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ShapeMapTool.hxx>

#include <filesystem>
#include <sstream>
#include <unistd.h>

namespace OrvexTest {

namespace {

const Handle(XCAFApp_Application) & Application()
{
  static const Handle(XCAFApp_Application) app = [] {
    auto made = XCAFApp_Application::GetApplication();
    BinXCAFDrivers::DefineFormat(made);
    return made;
  }();
  return app;
}

// The value of the attribute types that the library writes; nothing for the kernel's own.
std::string ValueOf(const TDF_Label& label, const Handle(TDF_Attribute) & attribute,
                    bool withShapes)
{
  std::ostringstream text;
  text.precision(17);
  if (const auto name = Handle(TDataStd_AsciiString)::DownCast(attribute))
    text << name->Get();
  else if (const auto word = Handle(TDataStd_Name)::DownCast(attribute))
    text << TCollection_AsciiString(word->Get());
  else if (const auto tag = Handle(TDF_TagSource)::DownCast(attribute))
    text << tag->Get();
  else if (const auto shape = Handle(TNaming_NamedShape)::DownCast(attribute))
    text << (withShapes ? BrepOf(shape->Get()) : "a shape");
  else if (attribute->IsKind(STANDARD_TYPE(TDataStd_Real)))
    text << *Orvex::RealOf(label);
  else if (attribute->IsKind(STANDARD_TYPE(TDataStd_Integer)))
    text << *Orvex::IntegerOf(label);
  else if (attribute->IsKind(STANDARD_TYPE(TDataXtd_Position)))
    text << Orvex::PointOf(label)->X() << ' ' << Orvex::PointOf(label)->Y() << ' '
         << Orvex::PointOf(label)->Z();
  else if (const auto list = Handle(TDataStd_BooleanList)::DownCast(attribute))
    text << (list->IsEmpty() ? "empty" : list->First() ? "true" : "false") << list->Extent();
  return text.str();
}

std::string DumpAttributes(const TDF_Label& label, bool withShapes)
{
  // Sorted: the order of attributes on a label is no content.
  std::map<std::string, std::string> lines;
  for (TDF_AttributeIterator it(label); it.More(); it.Next())
    // The kernel's map of sub-shapes is a cache, and not saved.
    if (!it.Value()->IsKind(STANDARD_TYPE(XCAFDoc_ShapeMapTool)))
      lines[it.Value()->DynamicType()->Name()] = ValueOf(label, it.Value(), withShapes);
  std::string dump;
  for (const auto& [type, text] : lines)
    dump.append("  ").append(type).append(" = ").append(text).append("\n");
  return dump;
}

std::string Dump(const TDF_Label& label, bool withShapes)
{
  std::string dump = DumpAttributes(label, withShapes);
  for (TDF_ChildIterator child(label); child.More(); child.Next())
    dump += Dump(child.Value(), withShapes);
  // A bare label stays behind when what stood on it is undone; it holds nothing.
  if (dump.empty())
    return dump;
  return Orvex::EntryOf(label) + "\n" + dump;
}

} // namespace

TestDocument::TestDocument(int undoLimit)
{
  Application()->NewDocument("BinXCAF", document);
  document->SetUndoLimit(undoLimit);
  ShapeDocMgr::GetInstance()->SetDoc(document);
}

TestDocument::~TestDocument()
{
  Close();
}

void TestDocument::Close()
{
  ShapeDocMgr::GetInstance()->SetDoc(nullptr);
  Application()->Close(document);
  document.Nullify();
}

void TestDocument::SaveAndReopen()
{
  const std::string path = TemporaryPath("document.xbf");
  ASSERT_EQ(Application()->SaveAs(document, path.c_str()), PCDM_SS_OK);
  Close();
  ASSERT_EQ(Application()->Open(path.c_str(), document), PCDM_RS_OK);
  ShapeDocMgr::GetInstance()->SetDoc(document);
  std::filesystem::remove(path);
}

std::string DumpOf(const TDF_Label& label)
{
  return Dump(label, true);
}

std::string DumpWithoutShapes(const TDF_Label& label)
{
  return Dump(label, false);
}

testing::AssertionResult SameDump(const std::string& left, const std::string& right)
{
  std::istringstream a(left), b(right);
  std::string lineA, lineB;
  for (int line = 1;; ++line) {
    const bool moreA = static_cast<bool>(std::getline(a, lineA));
    const bool moreB = static_cast<bool>(std::getline(b, lineB));
    if (!moreA && !moreB)
      return testing::AssertionSuccess();
    if (moreA != moreB || lineA != lineB)
      return testing::AssertionFailure()
             << "dumps differ in line " << line << ": '" << (moreA ? lineA : "(end)") << "' and '"
             << (moreB ? lineB : "(end)") << "'";
  }
}

std::string BrepOf(const TopoDS_Shape& shape)
{
  std::ostringstream out;
  BRepTools::Write(shape, out);
  return out.str();
}

std::string ReadBrepOf(const TopoDS_Shape& shape)
{
  std::istringstream in(BrepOf(shape));
  TopoDS_Shape read;
  BRepTools::Read(read, in, BRep_Builder());
  return BrepOf(read);
}

std::string TemporaryPath(const std::string& name)
{
  static int number = 0;
  return (std::filesystem::temp_directory_path() /
          ("orvex-" + std::to_string(getpid()) + "-" + std::to_string(number++) + "-" + name))
    .string();
}

} // namespace OrvexTest
