#ifndef ATTRIBUTE_ATTRIBUTE_H
#define ATTRIBUTE_ATTRIBUTE_H

// Attribute: the system's one data carrier. A named, typed column of an
// attribute set and, after a read, the values of a run of its instances.
//
// Without instances an attribute is a definition: name, class, data type,
// values per instance (the length), sample rate and first time. With
// instances it holds one block of values, instance after instance, so a
// scalar of a whole store is one array and reaching instance n is an address
// computation. A length of VARIABLE_LENGTH gives each instance its own
// length, kept in a lengths array with byte offsets beside it.
//
// Only vINT16, vINT32, vINT64, vFLOAT32, vFLOAT64 and vSTRING data can be
// held. The block comes from array-new of the value type (new short[],
// new int[], new long long[], new float[], new double[], new vString[]);
// blocks handed to resize() or copyData() with adoption must be made the
// same way, and blocks taken out with release...Data() are freed the same
// way by their new owner.
//
// Names and classes are interned in one process-wide vUCStringTable, so
// comparing two attributes compares two pointers (==) or two integers (<),
// never text. Instance numbers are 1-based.
//
// Copying an attribute (copy construction, operator=) copies the definition
// and the statistics, never the data: data are copied only by copyData().
// Moving one (from a temporary, a return, std::move) takes the data along,
// as transferData() does, so a returned attribute keeps its values whether
// or not the compiler elides the copy. Not thread-safe; the string table is.

#include <iosfwd>
#include <vector>

#include "attribute/AttributeDataHandler.h"
#include "foundation/DataType.h"
#include "foundation/Packable.h"
#include "foundation/vUCString.h"
#include "foundation/vUCStringTable.h"

class Packer;
class vString;

class Attribute : public Packable {
 public:
  // A vector whose length is not set yet.
  static constexpr int VECTOR_LENGTH = 0;
  // Each instance has its own length (0xF95D3109 as an unsigned word).
  static constexpr int VARIABLE_LENGTH = -111333111;

  static constexpr short Magic = 1241;
  static constexpr short Version = 5;

  // An empty definition: blank name and class, no type, a vector.
  Attribute();
  Attribute(char const* name, char const* className, DataType type, int length = 1, double sampleRate = 0.0,
            double firstTime = 0.0);
  Attribute(vUCString const& name, vUCString const& className, DataType type, int length = 1,
            double sampleRate = 0.0, double firstTime = 0.0);
  Attribute(char const* name, vUCString const& className, DataType type, int length = 1, double sampleRate = 0.0,
            double firstTime = 0.0);
  Attribute(vUCString const& name, char const* className, DataType type, int length = 1, double sampleRate = 0.0,
            double firstTime = 0.0);
  // The definition and statistics of other, without its data.
  Attribute(Attribute const& other);
  // The definition, statistics and data of other, which ends empty.
  Attribute(Attribute&& other) noexcept;
  explicit Attribute(Packer& packer);
  ~Attribute() override;

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

  // Copies the definition and statistics; empties this attribute of data.
  virtual Attribute& operator=(Attribute const& other);
  // Takes definition and data from other, which ends empty.
  Attribute& operator=(Attribute&& other);
  // By name entry: a pointer comparison.
  virtual bool operator==(Attribute const& other) const;
  virtual bool operator!=(Attribute const& other) const;
  // By the lexical rank of the names: an integer comparison.
  virtual bool operator<(Attribute const& other) const;

  virtual vUCString const& getName() const;
  virtual void setName(vUCString const& name);
  virtual void setName(char const* name);
  virtual vUCString const& getClass() const;
  virtual DataType getDataType() const;
  virtual int getLength() const;
  virtual void setLength(int length);
  // The length of one instance; for a fixed length the common length.
  virtual int getLength(unsigned int instance) const;
  // Values held in all instances.
  virtual long long getTotalLength() const;
  virtual double getSampleRate() const;
  virtual void setSampleRate(double sampleRate);
  virtual unsigned int getNInstances() const;
  virtual bool isVariableLength() const;
  virtual bool isSortable() const;
  // Bytes of one instance; VARIABLE_LENGTH for a variable-length attribute.
  virtual int getNBytes() const;
  virtual int getNBytes(unsigned int instance) const;
  virtual long long getTotalNBytes() const;
  virtual void setFirstTime(double firstTime);
  virtual double getFirstTime() const;
  virtual double getLastTime() const;

  // The one memory operation: holds nInstances instances afterwards. With
  // data the attribute adopts data (and, for a variable length, lengths);
  // with handler it reads data without owning it and deletes handler when
  // done. Without data a block is allocated, or kept when the count is
  // unchanged. lengths, when given, always passes to the attribute.
  virtual void resize(unsigned int nInstances, void* data = nullptr, int* lengths = nullptr,
                      AttributeDataHandler* handler = nullptr);
  // Takes over source's data (and handler); source ends empty.
  virtual void transferData(Attribute& source);
  // Definition and a copy of other's data.
  virtual void copyData(Attribute const& other);
  // nInstances instances with a copy of lengths (variable length only) and
  // of data when given.
  virtual void copyData(unsigned int nInstances, void const* data, int const* lengths = nullptr);

  // Hand the block to the caller, leaving no instances. Not allowed while a
  // data handler is in place.
  virtual short* releaseInt16Data();
  virtual int* releaseInt32Data();
  virtual long long* releaseInt64Data();
  virtual float* releaseFloat32Data();
  virtual double* releaseFloat64Data();
  virtual vString* releaseStringData();
  virtual void* releaseData();
  // Frees the lengths and offsets arrays.
  virtual void releaseLengths();

  // The first value of an instance.
  virtual short* getInt16Pointer(unsigned int instance);
  virtual short const* getInt16Pointer(unsigned int instance) const;
  virtual int* getInt32Pointer(unsigned int instance);
  virtual int const* getInt32Pointer(unsigned int instance) const;
  virtual long long* getInt64Pointer(unsigned int instance);
  virtual long long const* getInt64Pointer(unsigned int instance) const;
  virtual float* getFloat32Pointer(unsigned int instance);
  virtual float const* getFloat32Pointer(unsigned int instance) const;
  virtual double* getFloat64Pointer(unsigned int instance);
  virtual double const* getFloat64Pointer(unsigned int instance) const;
  virtual vString* getStringPointer(unsigned int instance);
  virtual vString const* getStringPointer(unsigned int instance) const;
  virtual void* getPointer(unsigned int instance);
  virtual void const* getPointer(unsigned int instance) const;
  virtual int* getLengthsPointer();
  virtual int const* getLengthsPointer() const;

  // Scalars (length exactly 1) of the attribute's own type.
  virtual short getInt16(unsigned int instance) const;
  virtual int getInt32(unsigned int instance) const;
  virtual long long getInt64(unsigned int instance) const;
  virtual float getFloat32(unsigned int instance) const;
  virtual double getFloat64(unsigned int instance) const;
  virtual vString const& getString(unsigned int instance) const;
  // A numeric scalar as a double.
  virtual double getValue(unsigned int instance) const;
  // Value `position` (1-based) of an instance as a double.
  virtual double getValue(unsigned int instance, int position) const;
  virtual void setInt16(unsigned int instance, short value);
  virtual void setInt32(unsigned int instance, int value);
  virtual void setInt64(unsigned int instance, long long value);
  virtual void setFloat32(unsigned int instance, float value);
  virtual void setFloat64(unsigned int instance, double value);
  virtual void setString(unsigned int instance, vString const& value);
  // Stores a numeric scalar, converted to the attribute's type.
  virtual void setValue(unsigned int instance, double value);
  virtual void setValue(unsigned int instance, vString const& value);

  // Vector arithmetic: samples are 1-based.
  virtual int getSampleAtTime(double time) const;
  virtual double getTimeAtSample(int sample) const;
  virtual int getSamplesInGate(double gate) const;
  virtual double getTimeLengthOfGate(int nSamples) const;
  // All values as doubles.
  virtual void getValues(std::vector<double>& values) const;
  // Changes the length of one instance of a variable-length attribute,
  // keeping the values of all others.
  virtual void setInstanceLength(unsigned int instance, int newLength);
  virtual int getElementNBytes() const;
  virtual int getDataTypeSize() const;
  // Deep comparison of definitions.
  virtual bool compare(Attribute const& other) const;
  virtual void getStatisticValues(double& minValue, double& maxValue, long long& nZeros) const;
  virtual void setStatisticValues(double const& minValue, double const& maxValue, long long const& nZeros);
  virtual vUCStringTableData const* getNameID() const;
  virtual vUCStringTableData const* getClassID() const;

  // True for a vector: a length other than 1, or a length of 1 with a
  // sample rate.
  bool isVector() const { return m_isVector; }
  // Gives up the data handler (to the caller) and with it the data.
  AttributeDataHandler* releaseDataHandler();
  bool hasDataHandler() const { return m_dataHandler != nullptr; }

  void setClass(vUCString const& className);
  void setClass(char const* className);
  vUCString const& getOriginalName() const { return m_originalName->getString(); }
  vUCString const& getOriginalClass() const { return m_originalClass->getString(); }
  DataType getOriginalDataType() const { return m_originalDataType; }
  void setOriginalDataType(DataType type) { m_originalDataType = type; }

  // The one table of attribute names and classes.
  static vUCStringTable& getStringTable();
  static vUCStringTableData const* getNameID(vUCString const& name);
  static vUCStringTableData const* getClassID(vUCString const& className);

 protected:
  void myContructorInitialize();
  void mySetDataType(DataType type);
  void myValidateInstance(unsigned int instance, char const* method, int line, char const* file, bool fatal) const;
  // Scalar access: a valid instance of a fixed attribute of length 1.
  void myGetChecks(unsigned int instance, char const* method) const;
  // Vector access: a valid instance and a position within its length.
  void myGetChecks2(unsigned int instance, int position, char const* method) const;
  void myCheckDataType(DataType wanted, char const* method) const;
  void myCheckCanReleaseData() const;
  void* myAllocateMemory(long long nValues) const;
  void myFreeData();
  void myFreeLengths();
  void myBuildOffsets(unsigned int from);
  void* myRelease(DataType wanted, char const* method);
  long long myOffset(unsigned int instance) const;
  int myEffectiveLength() const;

 private:
  void mySetDataFieldsEmpty();
  void myInit(vUCString const& name, vUCString const& className, DataType type, int length, double sampleRate,
              double firstTime);
  void myUnpack(Packer& packer);
  // transferData without the type check.
  void myTakeOver(Attribute& source);
  // Data, lengths, count and handler of source, which has the same
  // definition; this holds none before.
  void myMoveDataFrom(Attribute& source);

  DataType m_dataType;
  DataType m_originalDataType;
  int m_length;
  double m_sampleRate;
  double m_firstTime;
  int m_elementSize;
  unsigned int m_nInstances;
  void* m_data;
  int* m_lengths;
  int* m_offsets;
  bool m_isVector;
  double m_minValue;
  double m_maxValue;
  long long m_nZeros;
  vUCStringTableData const* m_name;
  vUCStringTableData const* m_class;
  vUCStringTableData const* m_originalName;
  vUCStringTableData const* m_originalClass;
  AttributeDataHandler* m_dataHandler;
};

// Debug print of the definition.
std::ostream& operator<<(std::ostream& out, Attribute const& attribute);

#endif
