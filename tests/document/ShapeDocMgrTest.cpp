#include "document/ShapeDocMgr.h"

#include "document/DocumentCommand.h"
#include "document/LabelScheme.h"
#include "support/TestDocument.h"

#include <gtest/gtest.h>

using OrvexTest::TestDocument;

namespace {

TEST(ShapeDocMgr, HoldsOneDocumentAndTellsTheHookOfEveryChangeButNotOfARepetition)
{
  auto* manager = ShapeDocMgr::GetInstance();
  EXPECT_EQ(manager, ShapeDocMgr::GetInstance());
  EXPECT_TRUE(manager->GetDoc().IsNull());

  int changes = 0;
  ShapeDocMgr::SetDocumentChangedHook([&] { ++changes; });
  {
    const TestDocument first;
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(manager->GetDoc(), first.Doc());
    manager->SetDoc(first.Doc());
    EXPECT_EQ(changes, 1);
    manager->SetDoc(nullptr);
    EXPECT_EQ(changes, 2);
    EXPECT_TRUE(manager->GetDoc().IsNull());
  }
  ShapeDocMgr::SetDocumentChangedHook({});
}

TEST(ShapeDocMgr, CopiesShareTheDocument)
{
  const TestDocument document;
  ShapeDocMgr copy(*ShapeDocMgr::GetInstance());
  EXPECT_EQ(copy.GetDoc(), document.Doc());
  copy.SetDoc(nullptr);
  EXPECT_EQ(ShapeDocMgr::GetInstance()->GetDoc(), document.Doc());
}

TEST(DocumentCommand, AbortsUnlessCommittedAndJoinsAnOpenCommand)
{
  const TestDocument document(10);
  const TDF_Label label = document.Doc()->Main().FindChild(100);
  {
    const Orvex::DocumentCommand command(document.Doc());
    Orvex::SetReal(label, 1.0);
  }
  EXPECT_FALSE(Orvex::RealOf(label));

  Orvex::DocumentCommand outer(document.Doc());
  Orvex::SetReal(label, 2.0);
  {
    Orvex::DocumentCommand inner(document.Doc());
    Orvex::SetReal(label, 3.0);
    inner.Commit();
  }
  {
    const Orvex::DocumentCommand abandoned(document.Doc());
    Orvex::SetReal(label, 4.0);
  }
  EXPECT_TRUE(document.Doc()->HasOpenCommand());
  outer.Commit();
  EXPECT_EQ(Orvex::RealOf(label), 4.0);
  EXPECT_EQ(document.Doc()->GetAvailableUndos(), 1);
  document.Doc()->Undo();
  EXPECT_FALSE(Orvex::RealOf(label));
}

} // namespace
