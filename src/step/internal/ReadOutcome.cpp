#include "step/internal/ReadOutcome.h"

#include <BinTools_ShapeSet.hxx>

#include <algorithm>
#include <cstdint>
#include <istream>
#include <ostream>
#include <type_traits>

namespace Orvex {

namespace {

// One list of fields per record serves both directions: an archive visits them in order, and either
// writes what is there or overwrites it.
class Writer
{
public:
  static constexpr bool kIsWriter = true;

  Writer(std::ostream& target, BinTools_ShapeSet& shapeSet) : stream(target), shapes(shapeSet)
  {}

  void Bytes(const void* bytes, std::size_t count)
  {
    stream.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  }

  void Shape(const TopoDS_Shape& shape)
  {
    shapes.Write(shape, stream);
  }

private:
  std::ostream& stream;
  BinTools_ShapeSet& shapes;
};

class Reader
{
public:
  static constexpr bool kIsWriter = false;

  Reader(std::istream& source, BinTools_ShapeSet& shapeSet) : stream(source), shapes(shapeSet)
  {}

  void Bytes(void* bytes, std::size_t count)
  {
    if (!stream.read(static_cast<char*>(bytes), static_cast<std::streamsize>(count)))
      throw std::string("STEP worker handed over an incomplete result");
  }

  void Shape(TopoDS_Shape& shape)
  {
    shapes.ReadSubs(shape, stream, shapes.NbShapes());
  }

private:
  std::istream& stream;
  BinTools_ShapeSet& shapes;
};

template <typename Archive, typename Value>
void Visit(Archive& archive, Value& value);

template <typename Archive, typename... Values>
void VisitAll(Archive& archive, Values&... values)
{
  (Visit(archive, values), ...);
}

template <typename Archive>
std::size_t VisitSize(Archive& archive, std::size_t current)
{
  std::uint64_t size = current;
  archive.Bytes(&size, sizeof size);
  return static_cast<std::size_t>(size);
}

// Strings and vectors. Grown element by element, so that a size which is not true runs out of bytes
// before it runs out of memory.
template <typename Archive, typename Sequence>
void VisitSequence(Archive& archive, Sequence& sequence)
{
  const std::size_t size = VisitSize(archive, sequence.size());
  for (std::size_t i = 0; i < size; ++i) {
    if constexpr (!Archive::kIsWriter)
      sequence.emplace_back();
    Visit(archive, sequence[i]);
  }
}

template <typename Archive>
void VisitText(Archive& archive, std::string& text)
{
  const std::size_t size = VisitSize(archive, text.size());
  constexpr std::size_t kChunk = 64 * 1024;
  for (std::size_t done = 0; done < size; done += kChunk) {
    const std::size_t count = std::min(kChunk, size - done);
    if constexpr (!Archive::kIsWriter)
      text.resize(done + count);
    archive.Bytes(text.data() + done, count);
  }
}

template <typename Archive, typename Map>
void VisitMap(Archive& archive, Map& map)
{
  const std::size_t size = VisitSize(archive, map.size());
  if constexpr (Archive::kIsWriter) {
    for (auto& [key, value] : map) {
      std::string name = key;
      VisitAll(archive, name, value);
    }
  } else {
    for (std::size_t i = 0; i < size; ++i) {
      std::string name;
      Visit(archive, name);
      Visit(archive, map[name]);
    }
  }
}

template <typename Archive>
void VisitFields(Archive& archive, StepShapeData& item)
{
  VisitAll(archive, item.shape, item.name, item.r, item.g, item.b, item.hasColor, item.extraText);
}

template <typename Archive>
void VisitFields(Archive& archive, AssemblyTransform& placement)
{
  archive.Bytes(placement.matrix.data(), sizeof placement.matrix);
}

template <typename Archive>
void VisitFields(Archive& archive, AssemblyPartDefinition& definition)
{
  VisitAll(archive, definition.partId, definition.name, definition.shapeName);
}

template <typename Archive>
void VisitFields(Archive& archive, AssemblyTreeNode& node)
{
  VisitAll(archive, node.id, node.partId, node.transform, node.name, node.shapeName,
           node.isAssembly, node.children);
}

template <typename Archive>
void VisitFields(Archive& archive, StepMessage& message)
{
  VisitAll(archive, message.entityId, message.entityType, message.text, message.isFailure,
           message.duringTransfer);
}

template <typename Archive>
void VisitFields(Archive& archive, StepLoss& loss)
{
  VisitAll(archive, loss.entityId, loss.entityType, loss.outcome);
}

template <typename Archive>
void VisitFields(Archive& archive, StepColor& color)
{
  VisitAll(archive, color.r, color.g, color.b);
}

template <typename Archive>
void VisitFields(Archive& archive, StepReadReport& report)
{
  VisitAll(archive, report.collected, report.schema, report.lengthUnit,
           report.lengthUnitInMillimetres, report.roots, report.freeShapes, report.assemblies,
           report.parts, report.components, report.namedProducts, report.namedComponents,
           report.colors, report.entities, report.entitiesInError, report.solidsInFile,
           report.solidsOut, report.facesInFile, report.facesOut, report.messages, report.losses);
}

template <typename Archive>
void VisitFields(Archive& archive, ReadOutcome& outcome)
{
  std::string lastError = outcome.lastError.toStdString();
  VisitAll(archive, outcome.succeeded, lastError, outcome.importShapes, outcome.shapeDataList,
           outcome.roots, outcome.definitions, outcome.report, outcome.nextNumber);
  outcome.lastError = QString::fromStdString(lastError);
}

template <typename Value>
constexpr bool kIsMap = requires
{
  typename Value::mapped_type;
};

template <typename Value>
constexpr bool kIsVector = requires(Value value)
{
  value.emplace_back();
};

template <typename Archive, typename Value>
void Visit(Archive& archive, Value& value)
{
  if constexpr (std::is_arithmetic_v<Value>)
    archive.Bytes(&value, sizeof value);
  else if constexpr (std::is_same_v<Value, std::string>)
    VisitText(archive, value);
  else if constexpr (std::is_same_v<Value, TopoDS_Shape>)
    archive.Shape(value);
  else if constexpr (kIsMap<Value>)
    VisitMap(archive, value);
  else if constexpr (kIsVector<Value>)
    VisitSequence(archive, value);
  else
    VisitFields(archive, value);
}

// Before and after the records: what does not find it there has lost its place.
constexpr std::uint64_t kMark = 0x4f72766578537465ULL;

template <typename Archive>
void VisitMark(Archive& archive)
{
  std::uint64_t found = kMark;
  Visit(archive, found);
  if (found != kMark)
    throw std::string("STEP worker handed over something else than a result");
}

void AddShapes(const ReadOutcome& outcome, BinTools_ShapeSet& shapes)
{
  for (const auto& [name, shape] : outcome.importShapes)
    shapes.Add(shape);
  for (const StepShapeData& item : outcome.shapeDataList)
    shapes.Add(item.shape);
}

} // namespace

void WriteOutcome(ReadOutcome& outcome, std::ostream& stream)
{
  BinTools_ShapeSet shapes;
  AddShapes(outcome, shapes);
  shapes.Write(stream);
  Writer writer(stream, shapes);
  VisitMark(writer);
  Visit(writer, outcome);
  VisitMark(writer);
}

ReadOutcome ReadOutcomeFrom(std::istream& stream)
{
  BinTools_ShapeSet shapes;
  shapes.Read(stream);
  Reader reader(stream, shapes);
  ReadOutcome outcome;
  VisitMark(reader);
  Visit(reader, outcome);
  VisitMark(reader);
  return outcome;
}

} // namespace Orvex
