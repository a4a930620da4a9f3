#include "parameters/GlobalParaMeterMgr.h"

#include "parameters/ExpressionEngine.h"
#include "support/Random.h"
#include "support/TestDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <sys/resource.h>

using OrvexTest::Random;

namespace {

ParametersDef Record(int type, const QString& text)
{
  ParametersDef definition;
  definition.type = type;
  definition.valueText = text;
  return definition;
}

ParametersDef Expression(const std::string& expression, const QString& names)
{
  ParametersDef definition = Record(1, {});
  definition.expression = expression;
  definition.expressionParameters = names;
  return definition;
}

void Add(const QString& name, ParametersDef definition)
{
  definition.name = name;
  GlobalParaMeterMgr::AddParameter(name, definition);
}

double ValueOf(const QString& name)
{
  return GlobalParaMeterMgr::GetParameterRawValue(name).toDouble();
}

QByteArray ContentOf(const QString& path)
{
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  return file.readAll();
}

void WriteFile(const QString& path, const QByteArray& content)
{
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(content);
}

class GlobalParameters : public testing::Test
{
protected:
  GlobalParameters()
  {
    GlobalParaMeterMgr::ClearAllParameters();
  }

  QString Path(const char* name) const
  {
    return folder.filePath(name);
  }

  QTemporaryDir folder;
};

TEST_F(GlobalParameters, HaveValuesByTheirType)
{
  Add("width", Record(1, " 12.5 "));
  Add("same", Record(1, "width"));
  Add("twice", Expression("width*2", "width"));
  Add("constant", Expression("2*3", ""));
  Add("strange", Record(7, "1"));
  Add("place", Record(2, "1, width ,twice"));
  EXPECT_EQ(ValueOf("width"), 12.5);
  EXPECT_EQ(ValueOf("same"), 12.5);
  EXPECT_EQ(ValueOf("twice"), 25.0);
  EXPECT_EQ(ValueOf("constant"), 6.0);
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("place").toList(),
            (QVariantList{1.0, 12.5, 25.0}));
  EXPECT_FALSE(GlobalParaMeterMgr::GetParameterRawValue("strange").isValid());
  EXPECT_FALSE(GlobalParaMeterMgr::GetParameterRawValue("unknown").isValid());
  EXPECT_EQ(Record(1, "unknown").CalculateAndGetRealValue(), 0.0);
  EXPECT_EQ(Expression("width + ", "width").CalculateAndGetRealValue(), 0.0);
  // Parts are not trimmed: " width" is no name.
  EXPECT_EQ(Expression("width", "a, width").CalculateAndGetRealValue(), 0.0);
}

TEST_F(GlobalParameters, BooleansComeFromTheVariantOrTheText)
{
  for (const char* yes : {"true", " TRUE ", "1"})
    Add(yes, Record(0, yes));
  for (const char* no : {"false", "0"})
    Add(no, Record(0, no));
  ParametersDef fromVariant = Record(0, "false");
  fromVariant.valueVariant = true;
  Add("variant", fromVariant);
  Add("neither", Record(0, "yes"));
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue(" TRUE "), QVariant(true));
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("1"), QVariant(true));
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("false"), QVariant(false));
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("variant"), QVariant(true));
  EXPECT_FALSE(GlobalParaMeterMgr::GetParameterRawValue("neither").isValid());
}

TEST_F(GlobalParameters, MalformedVectorsLeaveTheOutputsAndGiveZeros)
{
  ParametersDef withExpression = Record(2, "1,2,3");
  withExpression.expression = "1";
  for (const ParametersDef& bad : {Record(2, "1,2,3,4"), Record(2, "1,2"), withExpression}) {
    double x = 7, y = 8, z = 9;
    bad.CalculateAndGetVectorlValue(x, y, z);
    EXPECT_EQ(std::vector({x, y, z}), std::vector({7.0, 8.0, 9.0}));
    Add("bad", bad);
    EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("bad").toList(),
              (QVariantList{0.0, 0.0, 0.0}));
  }
  Add("gaps", Record(2, ",,5"));
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("gaps").toList(),
            (QVariantList{0.0, 0.0, 5.0}));
}

TEST_F(GlobalParameters, ACopyKeepsEveryField)
{
  ParametersDef record = Expression("a", "a");
  record.typeData = 3;
  record.expressionData = 1LL << 40;
  record.values[2] = 2.5;
  record.valueVariant = true;
  record.description = "text";
  const ParametersDef copy = record;
  EXPECT_EQ(copy.typeData, 3);
  EXPECT_EQ(copy.expressionData, 1LL << 40);
  EXPECT_EQ(copy.values[2], 2.5);
  EXPECT_EQ(copy.valueVariant, QVariant(true));
  EXPECT_EQ(copy.description, "text");
  EXPECT_FALSE(ParametersDef().valueVariant.isValid());
}

TEST_F(GlobalParameters, EveryParameterOnACycleIsZeroWhicheverIsAsked)
{
  Add("self", Record(1, "self"));
  Add("selfish", Expression("selfish+1", "selfish"));
  Add("a", Expression("b+1", "b"));
  Add("b", Expression("c+1", "c"));
  Add("c", Record(1, "a"));
  Add("below", Expression("a+10", "a"));
  for (const char* onCycle : {"self", "selfish", "a", "b", "c"})
    EXPECT_EQ(ValueOf(onCycle), 0.0) << onCycle;
  EXPECT_EQ(ValueOf("below"), 10.0);
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParameters().at("a").CalculateAndGetRealValue(), 0.0);
  const ParametersDef copy = GlobalParaMeterMgr::GetAllParameters().at("a");
  EXPECT_EQ(copy.CalculateAndGetRealValue(), 1.0) << "outside of the table: b is 0";
}

TEST_F(GlobalParameters, AVectorEndsAChain)
{
  Add("a", Record(1, "v"));
  Add("v", Record(2, "a,v,1"));
  EXPECT_EQ(ValueOf("a"), 0.0);
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("v").toList(), (QVariantList{0.0, 0.0, 1.0}));
}

TEST_F(GlobalParameters, LongChainsRingsAndDiamondsEndWithoutDeepRecursion)
{
  constexpr int kCount = 10000;
  const auto name = [](const char* prefix, int i) { return prefix + QString::number(i); };
  Add("chain0", Record(1, "1"));
  for (int i = 1; i < kCount; ++i) {
    const QString before = name("chain", i - 1);
    Add(name("chain", i), Expression((before + "+1").toStdString(), before));
  }
  EXPECT_EQ(ValueOf(name("chain", kCount - 1)), kCount);

  for (int i = 0; i < kCount; ++i)
    Add(name("ring", i), Record(1, name("ring", (i + 1) % kCount)));
  EXPECT_EQ(ValueOf("ring17"), 0.0);

  // Each level names both of the level before: 2^60 paths.
  Add("left0", Record(1, "1"));
  Add("right0", Record(1, "1"));
  for (int i = 1; i <= 60; ++i)
    for (const char* side : {"left", "right"}) {
      const QString l = name("left", i - 1), r = name("right", i - 1);
      Add(name(side, i), Expression((l + "+" + r).toStdString(), l + "," + r));
    }
  EXPECT_EQ(ValueOf("left60"), std::ldexp(1.0, 60));
}

// What a parameter of the table names, whether it exists or not.
QStringList NamedBy(const ParametersDef& definition)
{
  return definition.expression.empty() ? QStringList(definition.valueText)
                                       : definition.expressionParameters.split(',');
}

bool IsReal(const QString& name)
{
  const auto& table = GlobalParaMeterMgr::GetAllParameters();
  return table.count(name) != 0 && table.at(name).type == 1;
}

void CollectReals(const QString& name, std::set<QString>& seen)
{
  for (const QString& next : NamedBy(GlobalParaMeterMgr::GetAllParameters().at(name)))
    if (IsReal(next) && seen.insert(next).second)
      CollectReals(next, seen);
}

bool IsOnCycle(const QString& name)
{
  std::set<QString> below;
  CollectReals(name, below);
  return below.count(name) != 0;
}

// The definition, naively: each parameter computed from what it names, recursively.
double NaiveValue(const QString& name)
{
  if (!IsReal(name))
    return ValueOf(name);
  if (IsOnCycle(name))
    return 0.0;
  const ParametersDef& definition = GlobalParaMeterMgr::GetAllParameters().at(name);
  if (definition.expression.empty()) {
    bool isNumber = false;
    const double number = definition.valueText.toDouble(&isNumber);
    return isNumber ? number : NaiveValue(definition.valueText);
  }
  std::map<std::string, double> variables;
  for (const QString& part : NamedBy(definition))
    variables[part.toStdString()] = NaiveValue(part);
  return ExpressionEngine::CalculateExpress(definition.expression, variables);
}

ParametersDef RandomParameter(Random& random, const QString& a, const QString& b)
{
  switch (random.Index(8)) {
  case 0:
    return Record(1, QString::number(random.Real(-5, 5)));
  case 1:
    return Record(0, "true");
  case 2:
    return Record(2, a + "," + b + ",1");
  case 3:
    return Record(1, a);
  default:
    return Expression((a + "*0.5-" + b + "+1").toStdString(), a + "," + b);
  }
}

// Parameter i names earlier ones only, or any, itself and an unknown one included.
void FillAtRandom(Random& random, int count, bool withCycles)
{
  GlobalParaMeterMgr::ClearAllParameters();
  const auto name = [](int i) { return "p" + QString::number(i); };
  for (int i = 0; i < count; ++i) {
    const int choice = withCycles ? count + 1 : i + 1;
    Add(name(i), RandomParameter(random, name(random.Index(choice) - (withCycles ? 0 : 1)),
                                 name(random.Index(choice) - (withCycles ? 0 : 1))));
  }
}

TEST_F(GlobalParameters, AgreeWithTheNaiveDefinitionOnRandomTables)
{
  SCOPED_TRACE(OrvexTest::SeedNote());
  Random random(OrvexTest::Seed());
  int onCycle = 0;
  for (int round = 0; round < 200; ++round) {
    const bool withCycles = round % 2 == 1;
    FillAtRandom(random, 2 + random.Index(14), withCycles);
    for (const auto& [name, definition] : GlobalParaMeterMgr::GetAllParameters()) {
      EXPECT_EQ(ValueOf(name), NaiveValue(name)) << "round " << round << ", " << name.toStdString();
      if (IsReal(name)) {
        EXPECT_EQ(definition.CalculateAndGetRealValue(), ValueOf(name));
        onCycle += IsOnCycle(name) ? 1 : 0;
        EXPECT_FALSE(IsOnCycle(name) && !withCycles);
      }
    }
  }
  EXPECT_GT(onCycle, 100);
}

TEST_F(GlobalParameters, NamesAreCheckedOnRequestOnly)
{
  for (const char* good : {"_a1", "A", "x_9"})
    EXPECT_TRUE(GlobalParaMeterMgr::IsValidParaNameFormat(good)) << good;
  for (const char* bad : {"", "1a", "a b", "a-b", "ä", "a\n"})
    EXPECT_FALSE(GlobalParaMeterMgr::IsValidParaNameFormat(QString::fromUtf8(bad))) << bad;
  Add("any name at all", Record(1, "4"));
  EXPECT_TRUE(GlobalParaMeterMgr::IsValidParaName("any name at all"));
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParametersName(), std::vector<QString>{"any name at all"});
}

TEST_F(GlobalParameters, SidecarStandsBesideTheDocument)
{
  EXPECT_EQ(GlobalParaMeterMgr::SidecarPath("/models/a.b.step"), "/models/a.b.params.json");
  EXPECT_EQ(GlobalParaMeterMgr::SidecarPath("/models/plain"), "/models/plain.params.json");
}

TEST_F(GlobalParameters, SurviveARoundTripThroughTheFile)
{
  ParametersDef described = Expression("a*2", "a");
  described.description = QString::fromUtf8("Breite in „mm“, 日本");
  Add("b", described);
  Add("a", Record(1, "5"));
  ParametersDef flag = Record(0, {});
  flag.valueVariant = true;
  Add("flag", flag);
  QString error;
  ASSERT_TRUE(GlobalParaMeterMgr::SaveToFile(Path("t.params.json"), &error)) << error.toStdString();
  GlobalParaMeterMgr::ClearAllParameters();
  Add("stays not", Record(1, "1"));
  ASSERT_TRUE(GlobalParaMeterMgr::LoadFromFile(Path("t.params.json"), nullptr));
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParametersName().size(), 3U);
  EXPECT_EQ(ValueOf("b"), 10.0);
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParameters().at("b").description, described.description);
  // A boolean that only its variant held is lost.
  EXPECT_FALSE(GlobalParaMeterMgr::GetParameterRawValue("flag").isValid());

  GlobalParaMeterMgr::ClearAllParameters();
  ASSERT_TRUE(GlobalParaMeterMgr::SaveToFile(Path("empty.params.json"), nullptr));
  EXPECT_EQ(QJsonDocument::fromJson(ContentOf(Path("empty.params.json"))).array().size(), 0);
}

TEST_F(GlobalParameters, TheFileOfReleaseOneLoads)
{
  const QString fixture = QStringLiteral(ORVEX_FIXTURES "/sidecar-0.1.params.json");
  QString error;
  ASSERT_TRUE(GlobalParaMeterMgr::LoadFromFile(fixture, &error)) << error.toStdString();
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParametersName().size(), 4U);
  EXPECT_EQ(ValueOf("wall"), 2.5);
  EXPECT_EQ(ValueOf("outer"), 45.0);
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("origin").toList(),
            (QVariantList{0.0, 2.5, 45.0}));
  EXPECT_EQ(GlobalParaMeterMgr::GetParameterRawValue("hollow"), QVariant(true));
}

TEST_F(GlobalParameters, LoadingDefaultsSkipsAndLetsTheLaterWin)
{
  WriteFile(Path("f"), R"([{"name":"a","value":"1"},{"value":"2"},42,null,{"name":""},
                          {"name":"a","value":"3","type":1},{"name":"n","value":5,"type":"x"}])");
  ASSERT_TRUE(GlobalParaMeterMgr::LoadFromFile(Path("f"), nullptr));
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParametersName().size(), 2U);
  EXPECT_EQ(ValueOf("a"), 3.0);
  EXPECT_EQ(GlobalParaMeterMgr::GetAllParameters().at("n").type, 1);
}

TEST_F(GlobalParameters, ABadFileIsRefusedAndTheTableStays)
{
  Add("kept", Record(1, "4"));
  QString error;
  EXPECT_TRUE(GlobalParaMeterMgr::LoadFromFile(Path("missing"), &error));
  EXPECT_TRUE(error.isEmpty());
  for (const QByteArray& bad : {QByteArray("{}"), QByteArray(""), QByteArray("[{\"name\":\"a\""),
                                QByteArray("\x00\xff\xfe", 3), QByteArray(100000, '[')}) {
    WriteFile(Path("bad"), bad);
    EXPECT_FALSE(GlobalParaMeterMgr::LoadFromFile(Path("bad"), &error));
    EXPECT_EQ(error, "Invalid parameters file format: " + Path("bad"));
  }
  EXPECT_FALSE(GlobalParaMeterMgr::LoadFromFile(folder.path(), &error));
  EXPECT_EQ(error, "Cannot read parameters file: " + folder.path());
  EXPECT_FALSE(GlobalParaMeterMgr::LoadFromFile(Path("bad"), nullptr));
  ASSERT_TRUE(QFile::resize(Path("bad"), 1LL << 40)) << "all zeros, and no room on disk";
  for (const QString& endless : {Path("bad"), QString("/dev/zero")}) {
    EXPECT_FALSE(GlobalParaMeterMgr::LoadFromFile(endless, &error));
    EXPECT_EQ(error, "Invalid parameters file format: " + endless);
  }
  EXPECT_EQ(ValueOf("kept"), 4.0);
  WriteFile(Path("nothing"), "[]");
  EXPECT_TRUE(GlobalParaMeterMgr::LoadFromFile(Path("nothing"), nullptr));
  EXPECT_TRUE(GlobalParaMeterMgr::GetAllParameters().empty());
}

TEST_F(GlobalParameters, AFailedSaveLeavesTheOldFile)
{
  QString error;
  EXPECT_FALSE(GlobalParaMeterMgr::SaveToFile(Path("no/such/folder"), &error));
  EXPECT_EQ(error, "Cannot write parameters file: " + Path("no/such/folder"));

  const QString path = Path("old.params.json");
  Add("old", Record(1, "1"));
  ASSERT_TRUE(GlobalParaMeterMgr::SaveToFile(path, nullptr));
  const QByteArray before = ContentOf(path);
  for (int i = 0; i < 2000; ++i)
    Add("new" + QString::number(i), Record(1, "2"));
  // As on a full disk: a write beyond the limit fails.
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{4096, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  const bool saved = GlobalParaMeterMgr::SaveToFile(path, &error);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_FALSE(saved);
  EXPECT_EQ(error, "Cannot write parameters file: " + path);
  EXPECT_EQ(ContentOf(path), before);
}

} // namespace
