#include "assembly/AssemblyTreeMgr.h"

#include <gtest/gtest.h>

namespace {

AssemblyTreeNode Part(const std::string& id)
{
  AssemblyTreeNode node;
  node.id = id;
  node.partId = "def of " + id;
  node.transform.matrix[3] = 5.0;
  return node;
}

AssemblyTreeNode Assembly(const std::string& id, std::vector<AssemblyTreeNode> children = {})
{
  AssemblyTreeNode node;
  node.id = id;
  node.isAssembly = true;
  node.children = std::move(children);
  return node;
}

// "a(b,c(d))" for a node a with the children b and c, c with the child d.
std::string Outline(const std::vector<AssemblyTreeNode>& nodes)
{
  std::string text;
  for (const AssemblyTreeNode& node : nodes) {
    text += (text.empty() ? "" : ",") + node.id;
    if (!node.children.empty())
      text += "(" + Outline(node.children) + ")";
  }
  return text;
}

class AssemblyTree : public testing::Test
{
protected:
  AssemblyTree()
  {
    tree.SetRoots({Assembly("A", {Part("p"), Assembly("B", {Part("q"), Assembly("C")}), Part("r")}),
                   Part("s"), Assembly("D")});
    before = tree.GetRoots();
  }

  std::string Outlined() const
  {
    return Outline(tree.GetRoots());
  }

  AssemblyTreeMgr tree;
  std::vector<AssemblyTreeNode> before;
};

TEST_F(AssemblyTree, ClearsRootsAndDefinitionsAndKnowsWhatItHolds)
{
  tree.SetDefinitions({{"k", {"k", "name", "shape"}}});
  EXPECT_FALSE(tree.Empty());
  EXPECT_EQ(tree.FindDefinition("k")->shapeName, "shape");
  EXPECT_EQ(tree.FindDefinition("unknown"), nullptr);
  tree.Clear();
  EXPECT_TRUE(tree.Empty());
  EXPECT_EQ(tree.FindDefinition("k"), nullptr);
  EXPECT_EQ(&AssemblyTreeMgr::GetInstance(), &AssemblyTreeMgr::GetInstance());
}

TEST_F(AssemblyTree, InsertsAssembliesOnlyAndAtTheEnd)
{
  EXPECT_TRUE(tree.InsertAssemblyNode("", Assembly("E")));
  EXPECT_TRUE(tree.InsertAssemblyNode("C", Assembly("F", {Part("t")})));
  EXPECT_EQ(Outlined(), "A(p,B(q,C(F(t))),r),s,D,E");
}

TEST_F(AssemblyTree, RefusedInsertionsChangeNothing)
{
  EXPECT_FALSE(tree.InsertAssemblyNode("", Part("x")));
  EXPECT_FALSE(tree.InsertAssemblyNode("", Assembly("")));
  EXPECT_FALSE(tree.InsertAssemblyNode("unknown", Assembly("x")));
  EXPECT_FALSE(tree.InsertAssemblyNode("p", Assembly("x"))) << "the parent is a part";
  EXPECT_EQ(tree.GetRoots(), before);
}

TEST_F(AssemblyTree, GroupKeepsTheOrderOfTheContainerAndTakesThePlaceOfItsFirstMember)
{
  EXPECT_TRUE(tree.GroupNodesUnderAssembly("A", {"r", "B"}, Assembly("G", {Part("dropped")})));
  EXPECT_EQ(Outlined(), "A(p,G(B(q,C),r)),s,D");
  EXPECT_EQ(tree.GetRoots()[0].children[1].children[1].transform, Part("r").transform);
  EXPECT_TRUE(tree.GroupNodesUnderAssembly("", {"D", "A"}, Assembly("H")));
  EXPECT_EQ(Outlined(), "H(A(p,G(B(q,C),r)),D),s");
}

TEST_F(AssemblyTree, RefusedGroupsChangeNothing)
{
  using Ids = std::vector<std::string>;
  for (const Ids& ids : {Ids{}, Ids{"p", ""}, Ids{"p", "p"}, Ids{"p", "q"}, Ids{"p", "unknown"}})
    EXPECT_FALSE(tree.GroupNodesUnderAssembly("A", ids, Assembly("G")));
  EXPECT_FALSE(tree.GroupNodesUnderAssembly("A", {"p"}, Part("G")));
  EXPECT_FALSE(tree.GroupNodesUnderAssembly("A", {"p"}, Assembly("")));
  EXPECT_FALSE(tree.GroupNodesUnderAssembly("p", {"p"}, Assembly("G")));
  EXPECT_FALSE(tree.GroupNodesUnderAssembly("unknown", {"p"}, Assembly("G")));
  EXPECT_EQ(tree.GetRoots(), before);
}

TEST_F(AssemblyTree, MovesInTheOrderAskedForAlsoWhenTheTargetShifts)
{
  EXPECT_TRUE(tree.MoveNodesToAssembly("A", {"r", "p"}, "B"));
  EXPECT_EQ(Outlined(), "A(B(q,C,r,p)),s,D");
  EXPECT_TRUE(tree.MoveNodesToAssembly("", {"s", "A"}, "D"));
  EXPECT_EQ(Outlined(), "D(s,A(B(q,C,r,p)))");
}

TEST_F(AssemblyTree, RefusedMovesChangeNothing)
{
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"B"}, "C")) << "into its own descendant";
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"p", "B"}, "B")) << "into itself";
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"p"}, "A"));
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"p"}, ""));
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"p"}, "s")) << "the target is a part";
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"p", "p"}, "D"));
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"p", ""}, "D"));
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {"q"}, "D")) << "no direct member";
  EXPECT_FALSE(tree.MoveNodesToAssembly("s", {"p"}, "D"));
  EXPECT_FALSE(tree.MoveNodesToAssembly("A", {}, "D"));
  EXPECT_EQ(tree.GetRoots(), before);
}

TEST_F(AssemblyTree, TakesArgumentsThatArePartOfTheTree)
{
  EXPECT_TRUE(tree.InsertAssemblyNode("D", tree.GetRoots()[2]));
  EXPECT_EQ(Outlined(), "A(p,B(q,C),r),s,D(D)");
  EXPECT_TRUE(tree.MoveNodesToAssembly("", {"A"}, tree.GetRoots()[2].id));
  EXPECT_EQ(Outlined(), "s,D(D,A(p,B(q,C),r))");
  tree.SetRoots(tree.GetRoots()[1].children);
  EXPECT_EQ(Outlined(), "D,A(p,B(q,C),r)");
}

TEST_F(AssemblyTree, FindsTheFirstOfEqualIdsDepthFirst)
{
  tree.SetRoots({Assembly("A", {Assembly("twice")}), Assembly("twice")});
  EXPECT_TRUE(tree.InsertAssemblyNode("twice", Assembly("x")));
  EXPECT_EQ(Outlined(), "A(twice(x)),twice");
  EXPECT_TRUE(tree.MoveNodesToAssembly("", {"twice"}, "twice")) << "another node of the same id";
  EXPECT_EQ(Outlined(), "A(twice(x,twice))");
}

TEST_F(AssemblyTree, TellsGeneratedTreesApart)
{
  AssemblyTreeNode occurrence = Part("doc_occ::1");
  occurrence.partId = "doc_def::1";
  const AssemblyTreeNode root = Assembly("doc_root::1", {occurrence});
  const auto isGenerated = [this](const std::vector<AssemblyTreeNode>& roots) {
    tree.SetRoots(roots);
    return tree.ContainsOnlyGeneratedDocumentNodes();
  };
  EXPECT_TRUE(isGenerated({root, Assembly("doc_root::2")}));
  EXPECT_FALSE(isGenerated({}));
  EXPECT_FALSE(isGenerated({root, Assembly("A")}));
  EXPECT_FALSE(isGenerated({Part("doc_root::1")}));

  const auto withChild = [&](auto change) {
    AssemblyTreeNode changed = root;
    change(changed.children[0]);
    return isGenerated({changed});
  };
  EXPECT_FALSE(withChild([](AssemblyTreeNode& child) { child.isAssembly = true; }));
  EXPECT_FALSE(withChild([](AssemblyTreeNode& child) { child.children = {Part("x")}; }));
  EXPECT_FALSE(withChild([](AssemblyTreeNode& child) { child.id = "doc_occ:1"; }));
  EXPECT_FALSE(withChild([](AssemblyTreeNode& child) { child.partId.clear(); }));
}

// 50,000 members, half of them grouped and then moved: hours if a member cost a walk of the others.
TEST_F(AssemblyTree, RegroupsWideContainersInLinearTime)
{
  std::vector<AssemblyTreeNode> parts;
  std::vector<std::string> odd;
  for (int i = 0; i < 50000; ++i) {
    parts.push_back(Part(std::to_string(i)));
    if (i % 2 == 1)
      odd.push_back(parts.back().id);
  }
  tree.SetRoots({Assembly("A", std::move(parts)), Assembly("Z")});
  ASSERT_TRUE(tree.GroupNodesUnderAssembly("A", odd, Assembly("G")));
  ASSERT_TRUE(tree.MoveNodesToAssembly("G", odd, "Z"));
  EXPECT_EQ(tree.GetRoots()[0].children.size(), 25001U);
  EXPECT_EQ(tree.GetRoots()[1].children.back().id, "49999");
}

} // namespace
