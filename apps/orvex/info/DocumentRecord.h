// What stands in a document of the kernel, as JSON.
#pragma once

#include "assembly/AssemblyTreeMgr.h"

#include <QJsonObject>
#include <TDF_LabelSequence.hxx>

namespace Orvex::Cli {

// A top-level shape with the attributes that its label bears, as in orvex.info.schema.json. What a
// label does not bear is left out.
QJsonObject ShapeLabelJson(const TDF_Label& label);

// The product tree: the shapes that stand for themselves, with the components of assemblies.
AssemblyTreeMgr TreeOf(const TDF_LabelSequence& freeShapes);

} // namespace Orvex::Cli
