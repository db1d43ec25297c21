#include "attribute/DataTranslator.h"

#include <cstring>

#include "attribute/DataConverterDecorator.h"
#include "attribute/DataPtr.h"
#include "attribute/OriginalDataConverter.h"
#include "foundation/Message.h"
#include "foundation/vUtl.h"

namespace {

char const* const kConvertLabel = "DataTranslator::myConvertData";

// Data can only move between attributes of one type as they are.
void checkSameType(Attribute const& source, DataType type, Attribute const& target) {
  if (type == target.getDataType()) return;
  Message::fatal(kConvertLabel, 0, "Attribute %s gives %s data where %s needs %s data.", source.getName().c_str(),
                 vUtl::dataTypeName(type).c_str(), target.getName().c_str(),
                 vUtl::dataTypeName(target.getDataType()).c_str());
}

int* copyLengths(int const* lengths, unsigned int n) {
  int* copy = new int[n];
  std::memcpy(copy, lengths, sizeof(int) * n);
  return copy;
}

int* copyLengths(unsigned int const* lengths, unsigned int n) {
  int* copy = new int[n];
  for (unsigned int i = 0; i < n; ++i) copy[i] = static_cast<int>(lengths[i]);
  return copy;
}

// target gets its own copy of source's instances; both are of one type.
void copyValues(Attribute const& source, Attribute& target) {
  unsigned int const n = source.getNInstances();
  if (n == 0) {
    target.resize(0);
    return;
  }
  int* lengths = source.isVariableLength() ? copyLengths(source.getLengthsPointer(), n) : nullptr;
  target.resize(n, nullptr, lengths);
  long long const total = source.getTotalLength();
  if (total <= 0) return;
  if (source.getDataType() == vSTRING) {
    vString const* from = source.getStringPointer(1);
    vString* to = target.getStringPointer(1);
    for (long long i = 0; i < total; ++i) to[i] = from[i];
    return;
  }
  std::memcpy(target.getPointer(1), source.getPointer(1), static_cast<std::size_t>(source.getTotalNBytes()));
}

// target takes source's block, with its keeper when it has one; source ends
// without instances.
void takeOver(Attribute& source, Attribute& target) {
  unsigned int const n = source.getNInstances();
  if (n == 0 && !source.hasDataHandler()) {
    target.resize(0);
    return;
  }
  bool const variable = source.isVariableLength();
  if (!source.hasDataHandler()) {
    int* lengths = variable ? copyLengths(source.getLengthsPointer(), n) : nullptr;
    void* block = source.releaseData();
    source.releaseLengths();
    target.resize(n, block, lengths);
    return;
  }
  if (variable) {
    // A lent block cannot be handed on with lengths: the instances are
    // copied and the lender let go.
    copyValues(source, target);
    source.resize(0);
    return;
  }
  void* block = source.getPointer(1);
  AttributeDataHandler* handler = source.releaseDataHandler();
  target.resize(n, block, nullptr, handler);
}

// The source's values seen as a DataPtr, without copying: nullptr when there
// are no values to convert.
bool wrap(Attribute const& source, DataPtr& wrapped) {
  unsigned int const n = source.getNInstances();
  bool const variable = source.isVariableLength();
  long long const total = source.getTotalLength();
  if (!variable && total <= 0) return false;
  if (!variable && total > 0xFFFFFFFFLL)
    Message::fatal(kConvertLabel, 0, "Attribute %s holds %lld values, more than one conversion takes.",
                   source.getName().c_str(), total);
  void* data = total > 0 ? const_cast<void*>(source.getPointer(1)) : nullptr;
  unsigned int* lengths =
      variable ? reinterpret_cast<unsigned int*>(const_cast<int*>(source.getLengthsPointer())) : nullptr;
  DataPtr view(source.getDataType(), variable ? n : static_cast<unsigned int>(total), data, lengths, DataPtr::BORROW);
  wrapped = view;
  return true;
}

// Whether the source's own block may go into the conversion to be converted
// in place: a block of its own (not lent through a handler), one converter, which refuses what it cannot convert before it takes the
// block, and an output of the target's type. Otherwise a refusal after the
// values were overwritten (a later step of a chain, or the target's type
// check) would lose the source's data.
bool mayConvertInPlace(Attribute const& source, DataConverterI const& converter, DataType targetType) {
  if (source.hasDataHandler() || source.getTotalLength() <= 0) return false;
  if (source.getTotalLength() > 0xFFFFFFFFLL) return false;  // wrap() refuses it
  DataConverterDecorator const* step = dynamic_cast<DataConverterDecorator const*>(&converter);
  if (step == nullptr || !step->getNext().isEmpty()) return false;
  if (dynamic_cast<OriginalDataConverter const*>(step) != nullptr) return true;  // its output is the target's type
  DataType const out = step->getOutputDT();
  return (out == vNOTYPE ? source.getDataType() : out) == targetType;
}

// Converts source's own block through converter. The block stays with the
// source when the converter did not take it (it refused, or wrote into a
// new block of another element size); otherwise the output holds it.
DataPtr convertOwnBlock(Attribute& source, DataConverterI const& converter) {
  unsigned int const n = source.getNInstances();
  bool const variable = source.isVariableLength();
  unsigned int* lengths = nullptr;
  if (variable) {
    lengths = new unsigned int[n];
    for (unsigned int i = 0; i < n; ++i) lengths[i] = static_cast<unsigned int>(source.getLengthsPointer()[i]);
  }
  unsigned int const count = variable ? n : static_cast<unsigned int>(source.getTotalLength());
  // The source keeps its lengths until the block is gone for good.
  void* block = source.releaseData();
  DataPtr input(source.getDataType(), count, block, lengths, DataPtr::TRANSFER);
  // A DataPtr handed on is left empty, owning nothing.
  auto giveBack = [&]() -> bool {
    if (!input.ownsData() || input.getData() != block) return false;
    int* kept = variable ? copyLengths(source.getLengthsPointer(), n) : nullptr;
    source.resize(n, input.releaseData(), kept);
    return true;
  };
  try {
    DataPtr output = converter.convertData(input);
    if (!giveBack() && variable) source.releaseLengths();
    return output;
  } catch (...) {
    giveBack();
    throw;
  }
}

// target adopts a converted block.
void adopt(DataPtr& output, unsigned int n, Attribute const& source, Attribute& target) {
  checkSameType(source, output.getDataType(), target);
  int* lengths = nullptr;
  if (target.isVariableLength()) {
    unsigned int const* from = output.getLengths();
    lengths = from != nullptr ? copyLengths(from, n) : copyLengths(source.getLengthsPointer(), n);
  }
  void* block = output.releaseData();
  target.resize(n, block, lengths);
}

// A vector length not set yet says nothing, and an equal one needs no
// change (setLength refuses both on a scalar).
void copyDefinitionTail(Attribute const& source, Attribute& target) {
  int const length = source.getLength();
  if (length != Attribute::VECTOR_LENGTH && length != target.getLength()) target.setLength(length);
  target.setSampleRate(source.getSampleRate());
  target.setFirstTime(source.getFirstTime());
}

}  // namespace

void DataTranslator::moveData(Attribute& source, Attribute& target) {
  checkSameType(source, source.getDataType(), target);
  takeOver(source, target);
}

void DataTranslator::copyData(Attribute const& source, Attribute& target) {
  checkSameType(source, source.getDataType(), target);
  copyValues(source, target);
}

DataTranslator::DataTranslator(Attribute const& dorn, vHandle<DataConverterI> const& toCapi,
                               vHandle<DataConverterI> const& toDorn, Attribute const& capi)
    : m_dorn(new Attribute(dorn)), m_capi(new Attribute(capi)), m_toCapi(toCapi), m_toDorn(toDorn) {}

DataTranslator::~DataTranslator() {}

Attribute DataTranslator::getCapiAttribute(Attribute const* reference) const {
  Attribute copy(*m_capi);
  if (reference != nullptr && reference->getNameID() == m_capi->getClassID()) copy.setName(reference->getName());
  return copy;
}

Attribute DataTranslator::getDornAttribute(Attribute const* reference) const {
  Attribute copy(*m_dorn);
  if (reference != nullptr && reference->getNameID() == m_dorn->getClassID()) copy.setName(reference->getName());
  return copy;
}

bool DataTranslator::isCapiCompatible(Attribute const& attribute) const {
  return attribute.isVariableLength() == m_capi->isVariableLength() && attribute.isVector() == m_capi->isVector();
}

bool DataTranslator::isDornCompatible(Attribute const& attribute) const {
  return attribute.isVariableLength() == m_dorn->isVariableLength() && attribute.isVector() == m_dorn->isVector();
}

Attribute DataTranslator::myCapiTarget(Attribute const& attribute) const {
  Attribute target = getCapiAttribute(&attribute);
  DataType const original = attribute.getOriginalDataType();
  bool const restores = dynamic_cast<OriginalDataConverter const*>(m_toCapi.pointer()) != nullptr;
  if (restores && original != vNOTYPE && original != target.getDataType()) {
    Attribute restored(target.getName(), target.getClass(), original, target.getLength(), target.getSampleRate(),
                       target.getFirstTime());
    return restored;
  }
  return target;
}

Attribute DataTranslator::convertToCapi(Attribute& attribute) const {
  Attribute target = myCapiTarget(attribute);
  myConvertData(attribute, m_toCapi, target);
  return target;
}

Attribute DataTranslator::convertToCapi(Attribute const& attribute) const {
  Attribute target = myCapiTarget(attribute);
  myConvertData(attribute, m_toCapi, target);
  return target;
}

Attribute DataTranslator::convertToDorn(Attribute& attribute) const {
  Attribute target = getDornAttribute(&attribute);
  myConvertData(attribute, m_toDorn, target);
  return target;
}

void DataTranslator::myConvertData(Attribute& source, vHandle<DataConverterI> const& converter,
                                   Attribute& target) const {
  copyDefinitionTail(source, target);
  unsigned int const n = source.getNInstances();
  if (n == 0) return;
  if (converter.isEmpty() || source.getDataType() == vSTRING) {
    checkSameType(source, source.getDataType(), target);
    takeOver(source, target);
    return;
  }
  converter->setOutputDT(target.getDataType());
  if (mayConvertInPlace(source, *converter, target.getDataType())) {
    DataPtr output = convertOwnBlock(source, *converter);
    adopt(output, n, source, target);
    return;
  }
  DataPtr input;
  if (!wrap(source, input)) {
    target.resize(n);
    return;
  }
  void const* const sourceBlock = input.getData();
  DataPtr output = converter->convertData(input);
  if (sourceBlock != nullptr && output.getData() == sourceBlock) {
    checkSameType(source, output.getDataType(), target);
    takeOver(source, target);
    return;
  }
  adopt(output, n, source, target);
}

void DataTranslator::myConvertData(Attribute const& source, vHandle<DataConverterI> const& converter,
                                   Attribute& target) const {
  copyDefinitionTail(source, target);
  unsigned int const n = source.getNInstances();
  if (n == 0) return;
  if (converter.isEmpty() || source.getDataType() == vSTRING) {
    checkSameType(source, source.getDataType(), target);
    copyValues(source, target);
    return;
  }
  DataPtr input;
  if (!wrap(source, input)) {
    target.resize(n);
    return;
  }
  converter->setOutputDT(target.getDataType());
  DataPtr const& constInput = input;
  DataPtr output = converter->convertData(constInput);
  adopt(output, n, source, target);
}
