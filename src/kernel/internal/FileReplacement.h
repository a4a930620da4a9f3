// Files that are whole or as they were.
#pragma once

#include <QByteArray>
#include <QString>

namespace Orvex {

// Writes the content beside the place and gives it the name in one step. A symbolic link is
// followed. Returns: false with the earlier file, or none, still there.
bool ReplaceFile(const QString& path, const QByteArray& content);

} // namespace Orvex
