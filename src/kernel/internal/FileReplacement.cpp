#include "kernel/internal/FileReplacement.h"

#include <QSaveFile>

bool Orvex::ReplaceFile(const QString& path, const QByteArray& content)
{
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly))
    return false;
  // On a full disk the last write is short, which QSaveFile::commit does not count as an error.
  if (file.write(content) != content.size())
    file.cancelWriting();
  return file.commit();
}
