// Contracts and requests of plans.
#include "step/replay/ReplayCommandContract.h"
#include "step/replay/ReplayCommandRequests.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace Orvex;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

ReplayPlan PlanOf(const ReplayPlanStep& step)
{
  ReplayPlan plan;
  plan.scope = "solid";
  plan.entityId = 3;
  plan.primaryStrategy = "sweep";
  plan.semanticStrategy = "boolean";
  plan.contractName = "ReplaySolidPlanV1";
  plan.steps = {step};
  return plan;
}

ReplayPlanStep StepWith(const Texts& parameters)
{
  ReplayPlanStep step;
  step.parameterKeys = parameters;
  return step;
}

ReplayCommandRequest RequestOf(const ReplayPlanStep& step)
{
  return BuildCommandRequests(PlanOf(step)).requests.at(0);
}

// "sections < capFaces faces supportFaces"
Texts Bindings(const ReplayCommandRequest& request)
{
  Texts texts;
  for (const ReplayParameterBinding& binding : request.bindings) {
    std::string text = binding.parameterName;
    text.append(" < ").append(binding.sourceKey);
    for (const std::string& key : binding.fallbackSourceKeys)
      text.append(" ").append(key);
    texts.push_back(text);
  }
  return texts;
}

// "faces: 1 2"
Texts Groups(const ReplayCommandRequest& request)
{
  Texts texts;
  for (const ReplayInputGroup& group : request.inputGroups) {
    std::ostringstream text;
    text << group.name << ':';
    for (const ReplayId id : group.ids)
      text << ' ' << id;
    texts.push_back(text.str());
  }
  return texts;
}

TEST(ReplayCommands, BindingOfEachParameter)
{
  const ReplayCommandRequest request = RequestOf(StepWith(
    {"faces", "supportFaces", "capFaces", "trimmedFaces", "sections", "guides", "profileFaces",
     "axisFaces", "operands", "cuts", "surfaceSets", "trimBoundaries", "colour", ""}));
  EXPECT_THAT(
    Bindings(request),
    ElementsAre("faces < faces", "supportFaces < supportFaces faces", "capFaces < capFaces faces",
                "trimmedFaces < trimmedFaces faces", "sections < capFaces faces supportFaces",
                "guides < supportFaces faces", "profileFaces < capFaces faces supportFaces",
                "axisFaces < supportFaces faces", "operands < faces supportFaces capFaces",
                "cuts < trimmedFaces faces", "surfaceSets < supportFaces faces",
                "trimBoundaries < trimmedFaces faces", "colour < colour", " < "));
  EXPECT_THAT(request.inputGroups, IsEmpty()) << "a step without ids";
}

TEST(ReplayCommands, GroupsFollowTheBindings)
{
  ReplayPlanStep sweep = StepWith({"sections", "guides", "profileFaces", "colour", "guides"});
  sweep.faceIds = {9, 4, 9};
  sweep.supportFaceIds = {5};
  EXPECT_THAT(Groups(RequestOf(sweep)), ElementsAre("faces: 4 9", "guides: 5", "profileFaces: 4 9",
                                                    "sections: 4 9", "supportFaces: 5"))
    << "caps are missing, so all faces stand in";
  sweep.capFaceIds = {2, 1};
  EXPECT_THAT(Groups(RequestOf(sweep)),
              ElementsAre("capFaces: 1 2", "faces: 4 9", "guides: 5", "profileFaces: 1 2",
                          "sections: 1 2", "supportFaces: 5"));
  sweep.capFaceIds = sweep.faceIds = {};
  EXPECT_THAT(Groups(RequestOf(sweep)),
              ElementsAre("guides: 5", "profileFaces: 5", "sections: 5", "supportFaces: 5"))
    << "the second fallback";

  ReplayPlanStep cut = StepWith({"operands", "cuts", "trimmedFaces"});
  cut.faceIds = {3, 1};
  EXPECT_THAT(Groups(RequestOf(cut)),
              ElementsAre("cuts: 1 3", "faces: 1 3", "operands: 1 3", "trimmedFaces: 1 3"));
  cut.faceIds = {};
  cut.capFaceIds = {8};
  EXPECT_THAT(Groups(RequestOf(cut)), ElementsAre("capFaces: 8", "operands: 8"));
  cut.trimmedFaceIds = {7};
  EXPECT_THAT(Groups(RequestOf(cut)),
              ElementsAre("capFaces: 8", "cuts: 7", "operands: 8", "trimmedFaces: 7"));
  cut.parameterKeys = {};
  EXPECT_THAT(Groups(RequestOf(cut)), ElementsAre("capFaces: 8", "trimmedFaces: 7"));
}

TEST(ReplayCommands, ContractNames)
{
  ReplayPlanStep step;
  step.contractName = "";
  ReplayPlan plan = PlanOf(step);
  EXPECT_EQ(BuildCommandContract(plan).contractName, "ReplaySolidPlanV1");
  EXPECT_EQ(BuildCommandRequests(plan).contractName, "ReplaySolidPlanV1");
  EXPECT_EQ(BuildCommandRequests(plan).requests[0].contractName, "ReplaySolidPlanV1");
  EXPECT_EQ(BuildCommandContract(plan).commands[0].contractName, "") << "copied as it is";
  plan.contractName = "";
  EXPECT_EQ(BuildCommandContract(plan).contractName, "ReplayCommandContractV1");
  EXPECT_EQ(BuildCommandRequests(plan).contractName, "ReplayCommandRequestV1");
  EXPECT_EQ(BuildCommandRequests(plan).requests[0].contractName, "ReplayCommandRequestV1");
}

// Every field differs, so that none can stand in for another.
ReplayPlanStep FullStep()
{
  ReplayPlanStep step;
  step.id = 7;
  step.kind = "a\\kind";
  step.scope = "scope";
  step.entityId = 8;
  step.contractName = "contract";
  step.commandName = "command\n";
  step.targetKind = "target";
  step.resultKey = "result";
  step.dependsOn = {1, 2};
  step.faceIds = {12, 11};
  step.shellIds = {21};
  step.solidIds = {31};
  step.supportFaceIds = {41};
  step.capFaceIds = {};
  step.trimmedFaceIds = {51};
  step.apiCandidates = {"api"};
  step.parameterKeys = {"cuts"};
  step.tags = {"tag", "\"tag\""};
  return step;
}

// clang-format off
TEST(ReplayCommands, JsonOfPlanAndContract)
{
  ReplayPlan plan = PlanOf(FullStep());
  plan.featureHints = {"hint"};
  EXPECT_EQ(ToJson(plan),
            R"({"scope":"solid","entityId":3,"primaryStrategy":"sweep","semanticStrategy":"boolean","contractName":"ReplaySolidPlanV1","featureHints":["hint"],"steps":[)"
            R"({"id":7,"kind":"a\\kind","scope":"scope","entityId":8,"contractName":"contract","commandName":"command\n","targetKind":"target","resultKey":"result",)"
            R"("dependsOn":[1,2],"faceIds":[12,11],"shellIds":[21],"solidIds":[31],"supportFaceIds":[41],"capFaceIds":[],"trimmedFaceIds":[51],)"
            R"("apiCandidates":["api"],"parameterKeys":["cuts"],"tags":["tag","\"tag\""]}]})");
  EXPECT_EQ(ToJson(BuildCommandContract(plan)),
            R"({"scope":"solid","entityId":3,"contractName":"ReplaySolidPlanV1","primaryStrategy":"sweep","semanticStrategy":"boolean","commands":[)"
            R"({"stepId":7,"contractName":"contract","commandName":"command\n","targetKind":"target","resultKey":"result","dependsOn":[1,2],)"
            R"("apiCandidates":["api"],"parameterKeys":["cuts"],"tags":["tag","\"tag\""]}]})");
  EXPECT_EQ(ToJson(BuildCommandContract({})),
            R"({"scope":"","entityId":0,"contractName":"ReplayCommandContractV1","primaryStrategy":"","semanticStrategy":"","commands":[]})");
}

TEST(ReplayCommands, JsonOfRequests)
{
  EXPECT_EQ(ToJson(BuildCommandRequests(PlanOf(FullStep()))),
            R"({"scope":"solid","entityId":3,"contractName":"ReplaySolidPlanV1","primaryStrategy":"sweep","semanticStrategy":"boolean","requests":[)"
            R"({"stepId":7,"kind":"a\\kind","scope":"scope","entityId":8,"contractName":"contract","commandName":"command\n","targetKind":"target","resultKey":"result",)"
            R"("dependsOn":[1,2],"faceIds":[12,11],"shellIds":[21],"solidIds":[31],"supportFaceIds":[41],"capFaceIds":[],"trimmedFaceIds":[51],"apiCandidates":["api"],)"
            R"("bindings":[{"parameterName":"cuts","sourceKey":"trimmedFaces","fallbackSourceKeys":["faces"]}],)"
            R"("inputGroups":[{"name":"cuts","ids":[51]},{"name":"faces","ids":[11,12]},{"name":"supportFaces","ids":[41]},{"name":"trimmedFaces","ids":[51]}],)"
            R"("tags":["tag","\"tag\""]}]})");
  EXPECT_EQ(ToJson(BuildCommandRequests({})),
            R"({"scope":"","entityId":0,"contractName":"ReplayCommandRequestV1","primaryStrategy":"","semanticStrategy":"","requests":[]})");
}
// clang-format on

TEST(ReplayCommands, JsonIsReadByOthers)
{
  const ReplayPlan plan = PlanOf(FullStep());
  const std::pair<std::string, QString> documents[] = {
    {ToJson(plan), "steps"},
    {ToJson(BuildCommandContract(plan)), "commands"},
    {ToJson(BuildCommandRequests(plan)), "requests"}};
  for (const auto& [json, key] : documents) {
    const QJsonObject read = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
    const QJsonObject step = read[key].toArray()[0].toObject();
    EXPECT_EQ(step["commandName"].toString(), "command\n");
    EXPECT_EQ(step["tags"].toArray()[1].toString(), "\"tag\"");
  }
}

} // namespace
