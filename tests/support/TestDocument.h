// A document for one test: made current at the start, closed at the end.
#pragma once

#include <TDocStd_Document.hxx>

#include <gtest/gtest.h>

#include <string>

namespace OrvexTest {

class TestDocument
{
public:
  explicit TestDocument(int undoLimit = 0);
  ~TestDocument();
  TestDocument(const TestDocument&) = delete;
  TestDocument& operator=(const TestDocument&) = delete;

  const Handle(TDocStd_Document) & Doc() const
  {
    return document;
  }

  // Saves in the kernel's binary format, closes, opens the file again and makes it current.
  void SaveAndReopen();

private:
  void Close();

  Handle(TDocStd_Document) document;
};

// Everything that stands on a label and below it, as text: entries, attributes and their values,
// shapes as BREP text. Two labels with equal dumps hold the same.
std::string DumpOf(const TDF_Label& label);

// The same without the text of shapes, for comparisons across saving: the kernel's binary format
// makes directions unit vectors again when it reads them, which changes their last bits.
std::string DumpWithoutShapes(const TDF_Label& label);

// Compares two dumps and tells only the first difference.
testing::AssertionResult SameDump(const std::string& left, const std::string& right);

// The shape's BREP text.
std::string BrepOf(const TopoDS_Shape& shape);

// The same as it is after being read once: reading sets flags of its own.
std::string ReadBrepOf(const TopoDS_Shape& shape);

// A path in the test's temporary folder, unique in the process.
std::string TemporaryPath(const std::string& name);

} // namespace OrvexTest
