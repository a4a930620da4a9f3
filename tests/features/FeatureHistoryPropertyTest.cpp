// The answers of the history on random models, against the plain definitions.
#include "features/FeatureHistoryManager.h"

#include "document/LabelScheme.h"
#include "support/FeatureModel.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using Items = std::vector<FeatureHistoryItem>;

int ProviderOf(const Items& items, int index, const TDF_Label& input)
{
  for (int i = index - 1; i >= 0 && !input.IsNull(); --i)
    if (items[i].label == input)
      return i;
  return -1;
}

bool IsSuppressed(const Items& items, int index)
{
  for (const TDF_Label& input : items[index].inputs)
    if (const int provider = ProviderOf(items, index, input);
        provider >= 0 && IsSuppressed(items, provider))
      return true;
  return items[index].suppressed;
}

bool Depends(const FeatureHistoryItem& item, const std::vector<TDF_Label>& labels)
{
  const auto isOne = [&](const TDF_Label& label) {
    return std::find(labels.begin(), labels.end(), label) != labels.end();
  };
  if (item.inputs.empty())
    return item.rebuildFunc && item.parameters.contains("sourceBrep") && isOne(item.label);
  return std::any_of(item.inputs.begin(), item.inputs.end(), isOne);
}

std::set<int> DependentIds(const Items& items, int index)
{
  std::set<int> ids{items[index].id};
  std::vector<TDF_Label> labels{items[index].label};
  for (std::size_t later = index + 1; later < items.size(); ++later)
    if (Depends(items[later], labels)) {
      ids.insert(items[later].id);
      labels.push_back(items[later].label);
    }
  return ids;
}

bool MayMove(const Items& items, int from, int to)
{
  Items moved = items;
  moved.erase(moved.begin() + from);
  moved.insert(moved.begin() + to, items[from]);
  const auto idOf = [](const Items& list, int index) { return index < 0 ? -1 : list[index].id; };
  for (std::size_t i = 0; i < items.size(); ++i) {
    const auto there = std::find_if(moved.begin(), moved.end(),
                                    [&](const auto& item) { return item.id == items[i].id; });
    for (const TDF_Label& input : items[i].inputs)
      if (idOf(items, ProviderOf(items, static_cast<int>(i), input)) !=
          idOf(moved, ProviderOf(moved, static_cast<int>(there - moved.begin()), input)))
        return false;
  }
  return true;
}

// Passes over the whole history until one changes nothing.
std::vector<TDF_Label> Closure(const Items& items, const std::vector<TDF_Label>& seeds)
{
  std::vector<TDF_Label> result;
  std::set<std::string> closure;
  bool changed = false;
  const auto add = [&](const TDF_Label& label) {
    if (!label.IsNull() && closure.insert(Orvex::EntryOf(label)).second) {
      result.push_back(label);
      changed = true;
    }
  };
  const auto dies = [&](const TDF_Label& label) {
    return closure.count(Orvex::EntryOf(label)) != 0;
  };
  std::for_each(seeds.begin(), seeds.end(), add);
  for (changed = !result.empty(); changed;) {
    changed = false;
    std::vector<bool> affected(items.size());
    std::set<std::string> kept;
    for (std::size_t i = 0; i < items.size(); ++i) {
      const auto& inputs = items[i].inputs;
      affected[i] = dies(items[i].label) || std::any_of(inputs.begin(), inputs.end(), dies);
      if (affected[i])
        add(items[i].label);
    }
    for (std::size_t i = 0; i < items.size(); ++i)
      for (const TDF_Label& input : items[i].inputs)
        if (!affected[i])
          kept.insert(Orvex::EntryOf(input));
    for (std::size_t i = 0; i < items.size(); ++i)
      for (const TDF_Label& input : items[i].inputs) {
        TopoDS_Shape shape = OrvexTest::ShapeOn(input);
        if (affected[i] && kept.count(Orvex::EntryOf(input)) == 0 && !shape.IsNull() &&
            !ShapeLabelMgr::GetInstance()->GetShapeVisibilty(shape))
          add(input);
      }
  }
  return result;
}

class RandomHistory : public testing::Test
{
protected:
  TDF_Label AnyLabel()
  {
    return labels[static_cast<std::size_t>(random.Index(static_cast<int>(labels.size())))];
  }

  int AnyIndex()
  {
    return random.Index(static_cast<int>(items().size()));
  }

  // With flags as they were set, not as they follow.
  Items items()
  {
    Items all = cubes.history.GetAllFeatures();
    for (FeatureHistoryItem& item : all)
      item.suppressed = cubes.history.IsFeatureDirectlySuppressed(item.id);
    return all;
  }

  void Fill(int features)
  {
    for (int i = 0; i < features; ++i)
      AddOne();
  }

  void AddOne()
  {
    std::vector<TDF_Label> inputs;
    for (int count = labels.empty() ? 0 : random.Index(4); count > 0; --count)
      inputs.push_back(random.Index(8) == 0 ? TDF_Label() : AnyLabel());
    const bool shared = !labels.empty() && random.Index(4) == 0;
    const TDF_Label label = shared ? AnyLabel() : OrvexTest::NewCubeLabel(1);
    // A feature does not consume what it makes.
    inputs.erase(std::remove(inputs.begin(), inputs.end(), label), inputs.end());
    if (inputs.empty() && shared)
      cubes.AddInPlace(label, random.Real(1, 2));
    else
      cubes.AddOn(label, inputs, random.Real(1, 2));
    if (!shared)
      labels.push_back(label);
  }

  void HideSome()
  {
    for (const TDF_Label& label : labels) {
      TopoDS_Shape shape = OrvexTest::ShapeOn(label);
      if (random.Index(2) == 0)
        ShapeLabelMgr::GetInstance()->SetShapeVisibilty(shape, false);
    }
  }

  void ExpectInvariants()
  {
    const Items all = items();
    const std::vector<FeatureHistoryItem> shown = cubes.history.GetAllFeatures();
    for (std::size_t i = 0; i < all.size(); ++i) {
      ASSERT_EQ(all[i].order, static_cast<int>(i));
      ASSERT_EQ(shown[i].suppressed, IsSuppressed(all, static_cast<int>(i)));
      const auto last = std::find_if(all.rbegin(), all.rend(),
                                     [&](const auto& item) { return item.label == all[i].label; });
      ASSERT_EQ(cubes.history.GetFeatureByLabel(all[i].label)->id, last->id);
      ASSERT_EQ(cubes.history.GetFeatureParameters(all[i].label), last->parameters);
    }
  }

  // What stands on the labels, and the parameters, of all features.
  std::string Content()
  {
    std::string content;
    for (const FeatureHistoryItem& item : items())
      content.append(item.suppressed ? "x" : "-")
        .append(OrvexTest::ReadBrepOf(OrvexTest::ShapeOn(item.label)))
        .append(item.parameters.value("size").toString().toStdString());
    return content;
  }

  OrvexTest::TestDocument document;
  OrvexTest::Random random{OrvexTest::Seed()};
  OrvexTest::CubeFeatures cubes;
  std::vector<TDF_Label> labels;
};

TEST_F(RandomHistory, AnswersAreThoseOfTheDefinitions)
{
  SCOPED_TRACE(OrvexTest::SeedNote());
  for (int round = 0; round < 30; ++round) {
    cubes.history.RebuildFromLabels({});
    labels.clear();
    Fill(40);
    for (int i = 0; i < 6; ++i)
      cubes.history.GetFeature(items()[static_cast<std::size_t>(AnyIndex())].id)->suppressed = true;
    HideSome();
    ExpectInvariants();
    const Items all = items();
    for (int i = 0; i < 20; ++i) {
      const std::vector<TDF_Label> seeds{AnyLabel(), TDF_Label(), AnyLabel()};
      ASSERT_EQ(cubes.history.CollectDeleteClosureLabels(seeds), Closure(all, seeds));
    }
    const int removed = AnyIndex();
    const std::set<int> gone = DependentIds(all, removed);
    ASSERT_TRUE(cubes.history.RemoveFeature(all[static_cast<std::size_t>(removed)].id));
    for (const FeatureHistoryItem& item : all)
      ASSERT_EQ(cubes.history.GetFeature(item.id) == nullptr, gone.count(item.id) != 0);
  }
}

TEST_F(RandomHistory, MovesAreThoseThatKeepProviders)
{
  SCOPED_TRACE(OrvexTest::SeedNote());
  Fill(25);
  int moved = 0;
  for (int i = 0; i < 500; ++i) {
    const Items before = items();
    const int from = AnyIndex(), to = AnyIndex();
    const int id = before[static_cast<std::size_t>(from)].id;
    ASSERT_EQ(cubes.history.ReorderFeature(id, to), MayMove(before, from, to));
    moved += items()[static_cast<std::size_t>(to)].id == id && from != to ? 1 : 0;
    ExpectInvariants();
  }
  EXPECT_GT(moved, 10);
}

// Any sequence of edits and failures: a failed one changes nothing, and the record stays sound.
TEST_F(RandomHistory, StaysSoundUnderEditsAndFailures)
{
  SCOPED_TRACE(OrvexTest::SeedNote());
  Fill(15);
  int failures = 0;
  for (int step = 0; step < 300; ++step) {
    const Items before = items();
    const int id = before[static_cast<std::size_t>(AnyIndex())].id;
    cubes.faultyId = before[static_cast<std::size_t>(AnyIndex())].id;
    cubes.fault = random.Index(2) == 0 ? OrvexTest::Fault::False : OrvexTest::Fault::None;
    const std::string content = Content();
    bool done = true;
    switch (random.Index(6)) {
    case 0:
      AddOne();
      break;
    case 1:
      done = cubes.history.SuppressFeature(id);
      break;
    case 2:
      done = cubes.history.UnsuppressFeature(id);
      break;
    case 3:
      done = cubes.history.ReorderFeature(id, AnyIndex());
      break;
    case 4:
      done = before.size() < 12 || cubes.history.RemoveFeature(id);
      break;
    default:
      done = cubes.history.RebuildFeature(id, {{"size", random.Real(1, 3)}, {"sourceBrep", ""}});
    }
    if (!done) {
      ++failures;
      ASSERT_EQ(Content() == content, true) << "step " << step;
    }
    ExpectInvariants();
    ASSERT_EQ(cubes.history.GetCurrentRebuildFeature(), nullptr);
  }
  EXPECT_GT(failures, 20);
}

} // namespace
