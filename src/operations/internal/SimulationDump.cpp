#include "operations/internal/SimulationDump.h"

#include "foundation/OrvexEnvVariableSet.h"
#include "operations/OrvexGeometryOp.h"

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QTemporaryDir>
#include <Standard_Failure.hxx>

#include <algorithm>
#include <map>
#include <vector>

namespace Orvex {

namespace {

struct DumpFile
{
  QString name;
  TopoDS_Shape shape;
};

QString ChosenFolder()
{
  const std::string named = OrvexEnvVariableSet::simulationDumpFolder();
  return named.empty() ? QDir::tempPath() : QFile::decodeName(named.c_str());
}

// An empty name if there can be none.
QString NewFolderIn(const QString& folder)
{
  QTemporaryDir made(QDir(folder).filePath(QStringLiteral("run-XXXXXX")));
  made.setAutoRemove(false);
  return made.isValid() ? made.path() : QString();
}

// Where this process writes the files that are meant for a folder: there, until files of another
// process are in the way.
QString PlaceFor(const std::vector<DumpFile>& files, const QString& folder)
{
  static std::map<QString, QString> ownFolders;
  QString& own = ownFolders[folder];
  const auto isTaken = [&](const DumpFile& file) {
    return QFile::exists(QDir(folder).filePath(file.name));
  };
  if (own.isEmpty() && std::any_of(files.begin(), files.end(), isTaken))
    own = NewFolderIn(folder);
  else if (own.isEmpty())
    return folder;
  return own;
}

void Write(const DumpFile& file, const QString& folder)
{
  try {
    std::string path = QFile::encodeName(QDir(folder).filePath(file.name)).toStdString();
    OrvexGeometryOp::SaveShapeToIgsFile(path, file.shape);
  } catch (const Standard_Failure&) {
    // Nobody waits for the file.
  }
}

} // namespace

void DumpSimulationUnion(const TopoDS_Shape& tool, const TopoDS_Shape& blank,
                         const TopoDS_Shape& result)
{
  static int runs = 0;
  const int run = runs++;
  const std::vector<DumpFile> files = {{QStringLiteral("tool_%1.igs").arg(run), tool},
                                       {QStringLiteral("blank_%1.igs").arg(run), blank},
                                       {QStringLiteral("BoolResult_%1.igs").arg(run), result}};
  constexpr int kLongestWait = 10000; // milliseconds
  const QString folder = ChosenFolder();
  QDir().mkpath(folder);
  // From the look at what is there to the last file no other process writes there.
  QLockFile lock(QDir(folder).filePath(QStringLiteral(".orvex-dumps.lock")));
  if (!lock.tryLock(kLongestWait))
    return;
  if (const QString place = PlaceFor(files, folder); !place.isEmpty())
    for (const DumpFile& file : files)
      Write(file, place);
}

} // namespace Orvex
