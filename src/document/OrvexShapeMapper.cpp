#include "document/OrvexShapeMapper.h"

#include "document/LabelScheme.h"
#include "document/ShapeDocMgr.h"

#include <Standard_GUID.hxx>
#include <TDF_TagSource.hxx>
#include <TNaming_Builder.hxx>
#include <TNaming_NamedShape.hxx>
#include <TNaming_SameShapeIterator.hxx>
#include <TNaming_Tool.hxx>

#include <chrono>
#include <optional>
#include <random>
#include <sstream>

namespace {

std::optional<TCollection_AsciiString> IdOn(const TDF_Label& label)
{
  auto text = Orvex::NameOf(label);
  if (text && !Standard_GUID::CheckGUIDFormat(text->ToCString()))
    text.reset();
  return text;
}

TopoDS_Shape ShapeOn(const TDF_Label& label)
{
  Handle(TNaming_NamedShape) named;
  if (label.IsNull() || !label.FindAttribute(TNaming_NamedShape::GetID(), named))
    return {};
  return named->Get();
}

// Calls visit(label, id, shape) for each registered shape.
template <typename Visit>
void VisitRegistered(const TDF_Label& root, Visit&& visit)
{
  for (TDF_ChildIterator child(root); child.More(); child.Next())
    if (const auto id = IdOn(child.Value()))
      if (const TopoDS_Shape shape = ShapeOn(child.Value()); !shape.IsNull())
        visit(child.Value(), *id, shape);
}

// The first child of the root that bears an id and the shape, which is the same if its TShape and
// its location are; the orientation does not matter. The kernel's index of the shapes in a document
// tells which labels have it, so that the shapes without an id, most of those that are asked for
// while a model is registered, cost no walk.
TDF_Label LabelOf(const TDF_Label& root, const TopoDS_Shape& shape)
{
  TDF_Label first;
  if (!TNaming_Tool::HasLabel(root, shape))
    return first;
  for (TNaming_SameShapeIterator it(shape, root); it.More(); it.Next()) {
    const TDF_Label label = it.Label();
    if (label.Father() == root && IdOn(label) && ShapeOn(label).IsSame(shape) &&
        (first.IsNull() || label.Tag() < first.Tag()))
      first = label;
  }
  return first;
}

// RFC 4122, version 4: random but for the version in the seventh byte and the variant in the ninth.
Standard_GUID RandomGuid()
{
  const auto now = std::chrono::high_resolution_clock::now().time_since_epoch();
  const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
  std::mt19937_64 generator(std::random_device{}() ^ static_cast<std::uint64_t>(nanoseconds));
  const std::uint64_t high = generator();
  const std::uint64_t low = generator();

  Standard_UUID uuid{};
  uuid.Data1 = static_cast<std::uint32_t>(high >> 32);
  uuid.Data2 = static_cast<std::uint16_t>(high >> 16);
  uuid.Data3 = static_cast<std::uint16_t>((high & 0x0fff) | 0x4000);
  for (int i = 0; i < 8; ++i)
    uuid.Data4[i] = static_cast<unsigned char>(low >> (56 - 8 * i));
  uuid.Data4[0] = static_cast<unsigned char>((uuid.Data4[0] & 0x3f) | 0x80);
  return Standard_GUID(uuid);
}

TCollection_AsciiString NewId()
{
  std::ostringstream text;
  RandomGuid().ShallowDump(text);
  return text.str().c_str();
}

} // namespace

OrvexShapeMapper* OrvexShapeMapper::instance = nullptr;

OrvexShapeMapper* OrvexShapeMapper::GetInstance()
{
  if (instance == nullptr)
    instance = new OrvexShapeMapper();
  return instance;
}

OrvexShapeMapper::OrvexShapeMapper()
{
  SyncDocumentContext(ShapeDocMgr::GetInstance()->GetDoc());
}

void OrvexShapeMapper::SyncDocumentContext(const opencascade::handle<TDocStd_Document>& doc)
{
  if (doc != document) {
    document = doc;
    shapeToId.clear();
    idToLabel.clear();
    rootLabel.Nullify();
  }
  if (!document.IsNull() && rootLabel.IsNull())
    rootLabel = document->Main().FindChild(1, true);
}

bool OrvexShapeMapper::SyncWithCurrent()
{
  SyncDocumentContext(ShapeDocMgr::GetInstance()->GetDoc());
  return !document.IsNull();
}

void OrvexShapeMapper::Enter(const TopoDS_Shape& shape, const TCollection_AsciiString& id,
                             const TDF_Label& label)
{
  shapeToId[shape] = id;
  idToLabel[id] = label;
}

TCollection_AsciiString OrvexShapeMapper::RegisterShape(const TopoDS_Shape& shape)
{
  if (!SyncWithCurrent() || shape.IsNull())
    return {};
  const TCollection_AsciiString known = FindID(shape);
  if (!known.IsEmpty())
    return known;
  const TCollection_AsciiString id = NewId();
  const TDF_Label label = TDF_TagSource::NewChild(rootLabel);
  TNaming_Builder(label).Generated(shape);
  Orvex::SetName(label, id);
  Enter(shape, id, label);
  return id;
}

TCollection_AsciiString OrvexShapeMapper::FindID(const TopoDS_Shape& shape)
{
  if (!SyncWithCurrent() || shape.IsNull())
    return {};
  if (const auto cached = shapeToId.find(shape); cached != shapeToId.end()) {
    if (!ShapeWithId(cached->second).IsNull())
      return cached->second;
    shapeToId.erase(cached); // undone
  }
  const TDF_Label label = LabelOf(rootLabel, shape);
  if (label.IsNull())
    return {};
  const TCollection_AsciiString id = *IdOn(label);
  Enter(shape, id, label);
  return id;
}

TopoDS_Shape OrvexShapeMapper::FindShape(const TCollection_AsciiString& id)
{
  if (!SyncWithCurrent())
    return {};
  if (const TopoDS_Shape cached = ShapeWithId(id); !cached.IsNull())
    return cached;
  // One walk serves all ids that are asked for after it.
  idToLabel.clear();
  VisitRegistered(rootLabel,
                  [&](const TDF_Label& label, const TCollection_AsciiString& registered,
                      const TopoDS_Shape&) { idToLabel.try_emplace(registered, label); });
  const TopoDS_Shape found = ShapeWithId(id);
  if (!found.IsNull())
    Enter(found, id, idToLabel[id]);
  return found;
}

TopoDS_Shape OrvexShapeMapper::ShapeWithId(const TCollection_AsciiString& id) const
{
  const auto cached = idToLabel.find(id);
  // Undo gives the tag of a label free for another id.
  if (cached == idToLabel.end() || IdOn(cached->second) != id)
    return {};
  return ShapeOn(cached->second);
}

void OrvexShapeMapper::RebuildMappings()
{
  if (!SyncWithCurrent())
    return;
  shapeToId.clear();
  idToLabel.clear();
  VisitRegistered(rootLabel, [&](const TDF_Label& label, const TCollection_AsciiString& id,
                                 const TopoDS_Shape& registered) { Enter(registered, id, label); });
}
