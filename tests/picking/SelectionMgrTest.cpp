#include "picking/OrvexSelectionMgr.h"

#include "support/Random.h"

#include <BRepPrimAPI_MakeBox.hxx>

#include <gtest/gtest.h>

#include <algorithm>

using namespace OrvexTest;

namespace {

using Shapes = std::vector<TopoDS_Shape>;

// Two placements and two orientations of each of three boxes, and a null shape.
Shapes Pool()
{
  gp_Trsf away;
  away.SetTranslation(gp_Vec(50, 0, 0));
  Shapes pool = {TopoDS_Shape()};
  for (int i = 1; i <= 3; ++i) {
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(i, i, i).Shape();
    pool.insert(pool.end(), {box, box.Moved(away), box.Reversed()});
  }
  return pool;
}

void ExpectEqual(const Shapes& shapes, const Shapes& expected)
{
  ASSERT_EQ(shapes.size(), expected.size());
  for (std::size_t i = 0; i < shapes.size(); ++i)
    EXPECT_TRUE(shapes[i].IsEqual(expected[i])) << i;
}

// The lists as they are told of, by number of the shape in the pool: those with the same quotient
// are the same.
struct Model
{
  using Numbers = std::vector<int>;

  static int Same(int number)
  {
    return (number + 2) / 3;
  }
  static Numbers::iterator Find(Numbers& list, int number)
  {
    return std::find_if(list.begin(), list.end(),
                        [&](int entry) { return Same(entry) == Same(number); });
  }
  static bool Has(Numbers& list, int number)
  {
    return Find(list, number) != list.end();
  }

  Numbers pointers, values, backup;
};

class SelectionWalk
{
public:
  void Step(Random& random)
  {
    const int number = random.Index(static_cast<int>(pool.size()));
    const TopoDS_Shape& shape = pool[static_cast<std::size_t>(number)];
    switch (random.Index(16)) {
    case 0:
    case 1:
      lists.AddToSelectionList(&shape);
      if (!Model::Has(model.pointers, number))
        model.pointers.push_back(number);
      break;
    case 2:
      lists.ClearSelList();
      model.pointers.clear();
      model.values.clear();
      break;
    case 3:
      lists.ClearBackupSelList();
      model.backup.clear();
      break;
    case 4:
      lists.SetBackupList(lists.GetshapeListNoptr());
      model.backup = model.values;
      break;
    case 5:
      lists.SetBackupList(lists.GetBackupshapeList());
      break;
    case 6:
    case 7:
      lists.AddToBackupSelectionList(shape);
      if (!Model::Has(model.backup, number))
        model.backup.push_back(number);
      break;
    case 8:
    case 9:
    case 10:
      lists.RemoveFromeSelectionList(shape);
      if (Model::Has(model.values, number))
        model.values.erase(Model::Find(model.values, number));
      break;
    case 11:
      lists.AddShapesToSelectionList({shape, shape});
      for (int i = 0; i < 2 && !Model::Has(model.pointers, number); ++i)
        model.values.push_back(number);
      break;
    default:
      lists.AddToSelectionList(shape);
      if (!Model::Has(model.pointers, number))
        model.values.push_back(number);
    }
  }

  void Check() const
  {
    ExpectEqual(lists.GetshapeListNoptr(), ShapesOf(model.values));
    ExpectEqual(lists.GetBackupshapeList(), ShapesOf(model.backup));
  }

private:
  Shapes ShapesOf(const Model::Numbers& numbers) const
  {
    Shapes shapes;
    for (const int number : numbers)
      shapes.push_back(pool[static_cast<std::size_t>(number)]);
    return shapes;
  }

  Shapes pool = Pool();
  OrvexSelectionMgr& lists = *OrvexSelectionMgr::GetInstance();
  Model model;
};

TEST(Selection, FollowsAPlainModel)
{
  SCOPED_TRACE(SeedNote());
  Random random(Seed());
  SelectionWalk walk;
  for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(i);
    walk.Step(random);
    walk.Check();
  }
  OrvexSelectionMgr::GetInstance()->ClearSelList();
}

TEST(Selection, ListsMayBeChangedByTheirReaders)
{
  OrvexSelectionMgr& lists = *OrvexSelectionMgr::GetInstance();
  EXPECT_EQ(&lists, OrvexSelectionMgr::GetInstance());
  lists.GetshapeListNoptr().push_back(BRepPrimAPI_MakeBox(1, 1, 1).Shape());
  lists.GetBackupshapeList() = lists.GetshapeListNoptr();
  const OrvexSelectionMgr copy = lists;
  lists.ClearSelList();
  EXPECT_TRUE(lists.GetshapeListNoptr().empty());
  EXPECT_EQ(lists.GetBackupshapeList().size(), 1U);
  EXPECT_EQ(OrvexSelectionMgr(copy).GetshapeListNoptr().size(), 1U);
}

} // namespace
