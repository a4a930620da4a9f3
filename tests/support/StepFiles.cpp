#include "support/StepFiles.h"

#include "support/Sanitized.h"

#include <gtest/gtest.h>

#include <BRepPrimAPI_MakeBox.hxx>
#include <Quantity_Color.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TDataStd_Name.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Trsf.hxx>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

#include <unistd.h>

namespace OrvexTest {

namespace {

constexpr qint64 kLargestFile =
  OrvexTest::kIsSanitized ? 200000 : std::numeric_limits<qint64>::max();

TopLoc_Location At(double x, double y, double z)
{
  gp_Trsf motion;
  motion.SetTranslation(gp_Vec(x, y, z));
  return motion;
}

void SetName(const TDF_Label& label, const char* name)
{
  TDataStd_Name::Set(label, name);
}

} // namespace

QString DataFile(const std::string& name)
{
  const char* folder = std::getenv("ORVEX_TEST_DATA");
  return folder == nullptr ? QString() : QString::fromStdString(std::string(folder) + "/" + name);
}

bool IsTooLargeHere(const QString& path)
{
  return QFile(path).size() > kLargestFile;
}

std::vector<FileFacts> ReadableFiles()
{
  QFile table(DataFile("facts.json"));
  std::vector<FileFacts> files;
  if (!table.open(QFile::ReadOnly))
    return files;
  const QJsonArray entries = QJsonDocument::fromJson(table.readAll()).array();
  for (const auto& entry : entries) {
    const QJsonObject file = entry.toObject();
    const QJsonObject facts = file["facts"].toObject();
    FileFacts known;
    known.file = file["file"].toString().toStdString();
    if (!facts["transfer"].toBool() || IsTooLargeHere(DataFile(known.file)))
      continue;
    known.schema = file["schema"].toString().toStdString();
    known.lengthUnit = file["length_units"].toArray().first().toString().toStdString();
    for (auto fact = facts.begin(); fact != facts.end(); ++fact)
      if (fact.value().isDouble())
        known.numbers[fact.key().toStdString()] = fact.value().toInt();
    files.push_back(known);
  }
  return files;
}

ScratchFile::ScratchFile(const std::string& name, const std::string& content)
{
  std::string folder = (std::filesystem::temp_directory_path() / "orvex-test-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr)
    throw std::runtime_error("no folder for scratch files");
  path = std::filesystem::path(folder) / name;
  SetContent(content);
}

ScratchFile::~ScratchFile()
{
  std::error_code error;
  std::filesystem::remove_all(path.parent_path(), error);
}

QString ScratchFile::Path() const
{
  return QString::fromStdString(path.string());
}

std::string ScratchFile::Content() const
{
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void ScratchFile::SetContent(const std::string& content) const
{
  std::ofstream(path, std::ios::binary) << content;
}

TopoDS_Shape Box(double size)
{
  return BRepPrimAPI_MakeBox(size, size, size).Shape();
}

void WriteDocument(const ScratchFile& file, const std::function<void(TDocStd_Document&)>& fill)
{
  Handle(TDocStd_Document) document;
  const auto application = XCAFApp_Application::GetApplication();
  application->NewDocument("MDTV-XCAF", document);
  fill(*document);
  testing::internal::CaptureStdout(); // the kernel's writer talks
  STEPCAFControl_Writer writer;
  writer.SetColorMode(true);
  writer.SetNameMode(true);
  const bool isWritten =
    writer.Transfer(document) && writer.Write(file.Path().toUtf8().constData()) == IFSelect_RetDone;
  testing::internal::GetCapturedStdout();
  application->Close(document);
  ASSERT_TRUE(isWritten);
}

void WriteFreeShapes(const ScratchFile& file, const NamedShapes& shapes)
{
  static const char* const kNoName = "no name at all";
  WriteDocument(file, [&](TDocStd_Document& document) {
    const auto tool = XCAFDoc_DocumentTool::ShapeTool(document.Main());
    for (const auto& [name, shape] : shapes)
      SetName(tool->AddShape(shape, false), name.empty() ? kNoName : name.c_str());
  });
  std::string text = file.Content();
  const std::string quoted = std::string("'") + kNoName + "'";
  for (auto at = text.find(quoted); at != std::string::npos; at = text.find(quoted))
    text.replace(at, quoted.size(), "''");
  file.SetContent(text);
}

void ReplaceInFile(const ScratchFile& file, const std::string& from, const std::string& to)
{
  std::string text = file.Content();
  auto at = text.find(from);
  ASSERT_NE(at, std::string::npos) << from;
  for (; at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  file.SetContent(text);
}

void WriteBoltAssembly(const ScratchFile& file)
{
  WriteDocument(file, [](TDocStd_Document& document) {
    const auto tool = XCAFDoc_DocumentTool::ShapeTool(document.Main());
    const auto colors = XCAFDoc_DocumentTool::ColorTool(document.Main());
    const TDF_Label bolt = tool->AddShape(Box(4.0), false);
    SetName(bolt, "bolt");
    colors->SetColor(bolt, Quantity_Color(Quantity_NOC_RED), XCAFDoc_ColorSurf);
    const TDF_Label pair = tool->NewShape();
    SetName(pair, "pair");
    tool->AddComponent(pair, bolt, At(0, 0, 0));
    tool->AddComponent(pair, bolt, At(0, 10, 0));
    const TDF_Label top = tool->NewShape();
    SetName(top, "top");
    tool->AddComponent(top, pair, At(100, 0, 0));
    tool->AddComponent(top, pair, At(200, 0, 0));
    tool->AddComponent(top, bolt, At(0, 0, 7));
    tool->UpdateAssemblies();
  });
}

} // namespace OrvexTest
