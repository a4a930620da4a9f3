// What went wrong, in the parts from which the one line for the person and the record for the
// program are made.
#pragma once

#include "frame/ExitCode.h"

#include <QJsonObject>
#include <QString>

namespace Orvex::Cli {

struct Failure
{
  ExitCode code = ExitCode::KernelFailure;
  QString subject; // the file, or what else the failure is about; may be empty
  QString entity;  // where in it, as "#12 LINE"; may be empty
  QString reason;  // what is wrong
  QString advice;  // what to do about it; may be empty
};

// "SUBJECT: ENTITY: REASON (ADVICE)" without what is empty, fit for a terminal: one line, no
// control characters.
QString FailureLine(const Failure& failure);

QJsonObject ToJson(const Failure& failure);
Failure FailureFromJson(const QJsonObject& json);

// The failure that the exception being handled stands for. The one place that tells apart what
// the kernel, the standard library and our own code throw: the kernel's Standard_Failure is no
// std::exception, and its readers throw bare text.
//
// Requires: a call inside a catch clause.
// Returns: a thrown Failure as it is (with the subject, if it has none); anything else with the
//   code and the subject given.
Failure FailureOfCurrentException(ExitCode code, const QString& subject = {});

} // namespace Orvex::Cli
