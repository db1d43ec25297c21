#ifndef ATTRIBUTE_PROPERTY_H
#define ATTRIBUTE_PROPERTY_H

// Property: a named, typed value or array of values that a store or an
// attribute set carries beside its attributes.
//
// The held types are vINT16, vUINT16, vINT32, vUINT32, vFLOAT32, vFLOAT64,
// vBOOL8 (one byte, 0 or 1) and vSTRING; vINT8 and vUINT8 can be held too
// but do not travel in a Packer. Elements are numbered from 1. Every getter
// and setter converts between the property's type and its own: numbers by C
// rules (a float becomes an integer by truncation), text by parsing or
// formatting, and a boolean as non-zero.
//
// operator==, operator!= and operator< look at the names only, so that a
// std::set holds one property per name; compare() is the deep comparison.

#include "foundation/DataType.h"
#include "foundation/Packable.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class Packer;

class Property : public Packable {
 public:
  static constexpr short Magic = 1301;
  static constexpr short Version = 1;

  // Not initialised: blank name, no type.
  Property();
  Property(Property const& other);
  Property(vUCString const& name, vString const& value);
  Property(vUCString const& name, char const* value);
  Property(vUCString const& name, double value);
  Property(vUCString const& name, float value);
  Property(vUCString const& name, int value);
  Property(vUCString const& name, unsigned int value);
  Property(vUCString const& name, short value);
  Property(vUCString const& name, unsigned short value);
  // A vBOOL8: 0 is false, anything else true.
  Property(vUCString const& name, unsigned char value);
  Property(vUCString const& name, unsigned int n, vString const* values);
  Property(vUCString const& name, unsigned int n, double const* values);
  Property(vUCString const& name, unsigned int n, float const* values);
  Property(vUCString const& name, unsigned int n, int const* values);
  Property(vUCString const& name, unsigned int n, unsigned int const* values);
  Property(vUCString const& name, unsigned int n, short const* values);
  Property(vUCString const& name, unsigned int n, unsigned short const* values);
  Property(vUCString const& name, unsigned int n, unsigned char const* values);
  // n elements of type from data, which may be null for zeros (or empty
  // strings); vSTRING data are vString objects.
  Property(vUCString const& name, DataType type, unsigned int n, void const* data);
  ~Property() override;

  // Give the property a new name, type and values; the old ones go.
  void redefine(vUCString const& name, unsigned int n, vString const* values);
  void redefine(vUCString const& name, DataType type, unsigned int n, void const* data);

  DataType getDataType() const { return m_dataType; }
  unsigned int getNElements() const { return m_nElements; }
  // The block: an array of the type (vString objects for vSTRING).
  void const* getData() const { return m_data; }
  vUCString const& getName() const { return m_name; }
  bool isInitialized() const;

  vString getString(unsigned int element = 1) const;
  double getFloat64(unsigned int element = 1) const;
  float getFloat32(unsigned int element = 1) const;
  int getInt32(unsigned int element = 1) const;
  unsigned int getUInt32(unsigned int element = 1) const;
  short getInt16(unsigned int element = 1) const;
  unsigned short getUInt16(unsigned int element = 1) const;
  bool getBool8(unsigned int element = 1) const;

  void setString(vString const& value, unsigned int element = 1);
  void setFloat64(double value, unsigned int element = 1);
  void setFloat32(float value, unsigned int element = 1);
  void setInt32(int value, unsigned int element = 1);
  void setUInt32(unsigned int value, unsigned int element = 1);
  void setInt16(short value, unsigned int element = 1);
  void setUInt16(unsigned short value, unsigned int element = 1);
  void setBool8(bool value, unsigned int element = 1);

  // n elements: the first ones kept, new ones zero (or empty strings).
  void resize(unsigned int n);

  virtual bool compare(Property const& other) const;
  Property& operator=(Property const& other);
  bool operator==(Property const& other) const { return m_name == other.m_name; }
  bool operator!=(Property const& other) const { return !(m_name == other.m_name); }
  bool operator<(Property const& other) const { return m_name < other.m_name; }

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

  void swap(Property& other);

 protected:
  void freeMyData();
  unsigned int myGetOffset(unsigned int element) const;

 private:
  template <class To>
  To myGet(unsigned int element, char const* target, char const* method) const;
  template <class From>
  void mySet(From value, unsigned int element, char const* method);
  double myParse(vString const& text, char const* target, char const* method) const;
  void myInitEmpty();

  unsigned int m_nElements;
  DataType m_dataType;
  vUCString m_name;
  void* m_data;
};

#endif
