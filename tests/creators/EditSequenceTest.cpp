// Undo and redo over a long random sequence of edits, each one command: they bring back, label for
// label, what stood in the document, and a replay from nothing ends in the same document.

#include "creators/BezierShapeParaCreator.h"
#include "creators/BoxShapeParaCreator.h"
#include "creators/CircleShapeParaCreator.h"
#include "creators/CylinderShapeParaCreator.h"
#include "creators/ShapeBuilder.h"
#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"
#include "document/ShapeLabelMgr.h"
#include "support/Random.h"
#include "support/Sanitized.h"
#include "support/TestDocument.h"

#include <gtest/gtest.h>

#include <map>

using namespace OrvexTest;

namespace {

constexpr int kEdits = OrvexTest::FewerIfSanitized(1000, 300);
constexpr std::size_t kMostShapes = 12;

class Editor
{
public:
  explicit Editor(std::uint64_t seed) : random(seed)
  {}

  // One edit of the current document, in one command.
  void Step()
  {
    ShapeDocMgr::GetInstance()->StartTransaction();
    const auto labels = ShapeLabelMgr::GetInstance()->GetAllShapeLabes();
    if (labels.empty() || (labels.size() < kMostShapes && random.Index(4) == 0))
      Name(Create());
    else
      Edit(labels[static_cast<std::size_t>(random.Index(static_cast<int>(labels.size())))]);
    ShapeDocMgr::GetInstance()->EndTransaction();
  }

private:
  gp_Pnt Point()
  {
    return {random.Real(-9, 9), random.Real(-9, 9), random.Real(-9, 9)};
  }

  // The running number of names goes on through the process; the test's own names start anew.
  void Name(const TDF_Label& label)
  {
    Orvex::SetName(label, TCollection_AsciiString("shape ") + ++named);
  }

  TDF_Label Create()
  {
    std::vector<gp_Pnt> points{Point(), Point(), Point()};
    switch (random.Index(4)) {
    case 0:
      return BoxShapeParaCreator().CreateBox(Point(), gp_Dir(0, 1, 1), 1, 2, random.Real(1, 5));
    case 1:
      return CylinderShapeParaCreator().CreateCylinder(Point(), gp_Dir(), 2, 3,
                                                       random.Real(10, 360));
    case 2:
      return CircleShapeParaCreator().CreateCircle(Point(), random.Real(1, 5));
    default:
      return BezierShapeParaCreator().CreateBezier(points);
    }
  }

  void Edit(TDF_Label label)
  {
    auto* registry = ShapeLabelMgr::GetInstance();
    TopoDS_Shape shape = registry->GetShapeByLabel(label);
    double r = random.Real(0, 1), g = random.Real(0, 1), b = random.Real(0, 1);
    gp_Trsf trsf;
    trsf.SetTranslation(gp_Vec(Point().XYZ()));
    switch (random.Index(9)) {
    case 0:
      return registry->SetShapeColor(shape, r, g, b);
    case 1:
      return registry->SetShapeVisibilty(shape, random.Index(2) == 0);
    case 2:
      return registry->SetShapeDisplayMode(shape, random.Index(2) == 0 ? "wireframe" : "surface");
    case 3:
      ShapeBuilder::PerformMove(label, trsf);
      return ShapeBuilder::UpdateShapeByTDF(label);
    case 4:
      return Name(ShapeBuilder::PerformClone(label, trsf));
    case 5:
      ShapeBuilder::UpdateParameter(label, "Length", random.Real(1, 5), true);
      ShapeBuilder::UpdateParameter(label, "Radius", random.Real(1, 5), true);
      return ShapeBuilder::UpdateShapeByTDF(label);
    case 6:
      ShapeBuilder::UpdateParameter(label, "Height", std::to_string(1 + random.Index(5)), true);
      return ShapeBuilder::UpdateShapeByTDF(label);
    case 7:
      ShapeBuilder::RemoveParameter(label, "Height", "2", true);
      return ShapeBuilder::UpdateShapeByTDF(label);
    default:
      registry->RemoveShapeByLabel(label);
    }
  }

  Random random;
  int named = 0;
};

std::string DumpOfCurrent()
{
  return DumpOf(ShapeDocMgr::GetInstance()->GetDoc()->Main());
}

TEST(EditSequence, UndoRedoAndReplayAgreeLabelForLabel)
{
  SCOPED_TRACE(SeedNote());
  std::string last;
  {
    const TestDocument document(kEdits + 1);
    // By the number of commands that can be undone; one that changed nothing adds none.
    std::map<int, std::size_t> states;
    const auto stateNow = [&] { return std::hash<std::string>()(DumpOfCurrent()); };
    const auto commands = [&] { return document.Doc()->GetAvailableUndos(); };
    Editor editor(Seed());
    states[0] = stateNow();
    for (int i = 0; i < kEdits; ++i) {
      editor.Step();
      states[commands()] = stateNow();
    }
    last = DumpOfCurrent();
    EXPECT_GT(commands(), kEdits / 2);
    while (commands() > 0) {
      document.Doc()->Undo();
      ASSERT_EQ(stateNow(), states.at(commands())) << "with " << commands() << " left to undo";
    }
    while (document.Doc()->GetAvailableRedos() > 0) {
      document.Doc()->Redo();
      ASSERT_EQ(stateNow(), states.at(commands())) << "redone up to " << commands();
    }
    ASSERT_TRUE(SameDump(DumpOfCurrent(), last));
  }
  const TestDocument again(kEdits + 1);
  Editor editor(Seed());
  for (int i = 0; i < kEdits; ++i)
    editor.Step();
  EXPECT_TRUE(SameDump(DumpOfCurrent(), last));
}

} // namespace
