// The messages of an Arrow IPC stream.
//
// Each is four bytes FF, the length of the metadata with its padding in four bytes, the metadata, and, of a batch, its
// body. All parts begin at a multiple of eight bytes. The machine's order of bytes is told in the schema; lengths are
// written with the lowest byte first, as the metadata is.
// SPDX-License-Identifier: Apache-2.0
#include "ArrowMessages.h"

#include <ArrowFormat_generated.h>

#include <bit>

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;
using Kind = ArrowType::Kind;

constexpr std::size_t kAlignment = 8;
constexpr std::string_view kContinuation = "\xFF\xFF\xFF\xFF";

void pad(std::string& text) { text.append((kAlignment - text.size() % kAlignment) % kAlignment, '\0'); }

std::string encapsulated(FlatBufferBuilder& builder, arrowformat::MessageHeader kind, Offset<void> header,
                         std::int64_t bodyLength) {
  builder.Finish(arrowformat::CreateMessage(builder, arrowformat::MetadataVersion_V5, kind, header, bodyLength));
  std::string metadata(reinterpret_cast<const char*>(builder.GetBufferPointer()), builder.GetSize());
  pad(metadata);
  std::string message(kContinuation);
  for (unsigned shift = 0; shift < 32; shift += 8) message += static_cast<char>((metadata.size() >> shift) & 0xFF);
  return message + metadata;
}

class SchemaMessage {
 public:
  std::string write(const std::vector<ArrowField>& fields) {
    std::vector<Offset<arrowformat::Field>> made;
    made.reserve(fields.size());
    for (const ArrowField& field : fields) made.push_back(fieldOf(field));
    const auto order =
        std::endian::native == std::endian::little ? arrowformat::Endianness_Little : arrowformat::Endianness_Big;
    const auto schema = arrowformat::CreateSchema(_builder, order, _builder.CreateVector(made));
    return encapsulated(_builder, arrowformat::MessageHeader_Schema, schema.Union(), 0);
  }

 private:
  struct Typed {
    arrowformat::Type kind;
    Offset<void> type;
  };

  Offset<arrowformat::Field> fieldOf(const ArrowField& field) {
    std::vector<Offset<arrowformat::Field>> children;
    Typed typed = typeOf(field.type);
    if (field.type.isList) {
      children.push_back(makeField("item", typed, {}, ""));
      typed = {arrowformat::Type_List, arrowformat::CreateList(_builder).Union()};
    }
    return makeField(field.name, typed, children, field.cimType);
  }

  // Readers want a list of children, also an empty one.
  Offset<arrowformat::Field> makeField(const std::string& name, const Typed& typed,
                                       const std::vector<Offset<arrowformat::Field>>& children,
                                       const std::string& cimType) {
    Offset<flatbuffers::Vector<Offset<arrowformat::KeyValue>>> metadata;
    if (!cimType.empty()) {
      const std::vector pairs = {
          arrowformat::CreateKeyValue(_builder, _builder.CreateString("cim:type"), _builder.CreateString(cimType))};
      metadata = _builder.CreateVector(pairs);
    }
    const auto text = _builder.CreateString(name);
    const auto vector = _builder.CreateVector(children);
    return arrowformat::CreateField(_builder, text, true, typed.kind, typed.type, 0, vector, metadata);
  }

  Typed typeOf(const ArrowType& type) {
    switch (type.kind) {
      case Kind::Boolean:
        return {arrowformat::Type_Bool, arrowformat::CreateBool(_builder).Union()};
      case Kind::Unsigned:
      case Kind::Signed:
        return {arrowformat::Type_Int, arrowformat::CreateInt(_builder, type.bits, type.kind == Kind::Signed).Union()};
      case Kind::Real:
        return {arrowformat::Type_FloatingPoint,
                arrowformat::CreateFloatingPoint(
                    _builder, type.bits == 32 ? arrowformat::Precision_SINGLE : arrowformat::Precision_DOUBLE)
                    .Union()};
      case Kind::Text:
        return {arrowformat::Type_Utf8, arrowformat::CreateUtf8(_builder).Union()};
      case Kind::Timestamp:
        return {arrowformat::Type_Timestamp,
                arrowformat::CreateTimestamp(_builder, arrowformat::TimeUnit_MICROSECOND, _builder.CreateString("UTC"))
                    .Union()};
      case Kind::Duration:
        return {arrowformat::Type_Duration,
                arrowformat::CreateDuration(_builder, arrowformat::TimeUnit_MICROSECOND).Union()};
      case Kind::Null:
        break;
    }
    return {arrowformat::Type_Null, arrowformat::CreateNull(_builder).Union()};
  }

  FlatBufferBuilder _builder;
};

}  // namespace

void ArrowBatch::addBuffer(std::string_view bytes) {
  _buffers.push_back({static_cast<std::int64_t>(_body.size()), static_cast<std::int64_t>(bytes.size())});
  _body += bytes;
  pad(_body);
}

void ArrowBatch::clear() {
  _arrays.clear();
  _buffers.clear();
  _body.clear();
}

std::string arrowSchemaMessage(const std::vector<ArrowField>& fields) { return SchemaMessage().write(fields); }

std::string arrowBatchMessage(std::int64_t rowCount, const ArrowBatch& batch) {
  FlatBufferBuilder builder;
  std::vector<arrowformat::FieldNode> nodes;
  for (const ArrowBatch::Array& array : batch.arrays()) nodes.emplace_back(array.length, array.nulls);
  std::vector<arrowformat::Buffer> buffers;
  for (const ArrowBatch::Buffer& buffer : batch.buffers()) buffers.emplace_back(buffer.offset, buffer.length);
  const auto nodeVector = builder.CreateVectorOfStructs(nodes);
  const auto bufferVector = builder.CreateVectorOfStructs(buffers);
  const auto header = arrowformat::CreateRecordBatch(builder, rowCount, nodeVector, bufferVector);
  return encapsulated(builder, arrowformat::MessageHeader_RecordBatch, header.Union(),
                      static_cast<std::int64_t>(batch.body().size()));
}

std::string_view arrowEndOfStream() noexcept {
  static constexpr char kEnd[] = "\xFF\xFF\xFF\xFF\0\0\0";
  return {kEnd, 8};
}

// Metadata of sixteen bytes, of which half are there: some readers take a message without any for the end.
std::string_view arrowBrokenStream() noexcept {
  static constexpr char kBroken[] = "\xFF\xFF\xFF\xFF\x10\0\0\0\0\0\0\0\0\0\0";
  return {kBroken, 16};
}
