// A document command as a scope: what happens inside is one undo step.
//
//   Orvex::DocumentCommand command(doc);
//   ...changes, which may throw...
//   command.Commit();
//
// Joins a command that is open already: then commit and abort are left to whoever opened it.
// Without Commit the destructor aborts, so that a failure leaves nothing half changed. A document
// without an undo limit keeps no undo, and changes there stay as they are made.
#pragma once

#include <TDocStd_Document.hxx>

namespace Orvex {

class DocumentCommand
{
public:
  // A null document: the scope does nothing.
  explicit DocumentCommand(const opencascade::handle<TDocStd_Document>& doc)
      : document(doc), opened(!doc.IsNull() && !doc->HasOpenCommand())
  {
    if (opened)
      document->NewCommand();
  }

  ~DocumentCommand()
  {
    if (opened)
      document->AbortCommand();
  }

  DocumentCommand(const DocumentCommand&) = delete;
  DocumentCommand& operator=(const DocumentCommand&) = delete;

  // Returns: whether the command was opened here and so is committed now.
  bool Commit()
  {
    const bool mine = opened;
    if (mine)
      document->CommitCommand();
    opened = false;
    return mine;
  }

private:
  opencascade::handle<TDocStd_Document> document;
  bool opened;
};

} // namespace Orvex
