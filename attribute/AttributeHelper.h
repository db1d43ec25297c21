#ifndef ATTRIBUTE_ATTRIBUTEHELPER_H
#define ATTRIBUTE_ATTRIBUTEHELPER_H

// AttributeHelper: operations on Attribute objects that belong to no single
// store: copying instances between attributes, resizing with the data kept,
// filling, noise, checksums, time gates and searches. All static; nothing is
// kept between calls but the state of rand() used by the noise.
//
// Instance numbers are 1-based throughout. Failures go through
// Message::fatal (or throw UtlExcept where noted) and leave the attributes as
// they were.

#include <cstdint>
#include <iosfwd>
#include <list>
#include <vector>

#include "attribute/Attribute.h"

class AttributeHelper {
 public:
  // count instances from src (from srcFirst) to dst (from dstFirst), as one
  // block move of count times src's bytes per instance; strings go one by
  // one. Same data type; src not longer than dst and of fixed length. A
  // srcFirst below 1 and ranges past either end throw UtlExcept from
  // "AttributeHelper::copy()". Overlapping ranges of one attribute are fine.
  static void copy(Attribute const& src, int srcFirst, Attribute& dst, int dstFirst, int count);
  // Scatter: src instances from srcFirst on go to the listed instances of
  // dst. Gather: the listed instances of src go to dst from dstFirst on.
  // Each instance moves src's bytes per instance to the start of its place.
  static void copy(Attribute const& src, int srcFirst, Attribute& dst, std::vector<int> const& dstList);
  static void copy(Attribute const& src, std::vector<int> const& srcList, Attribute& dst, int dstFirst);
  static void copy(Attribute const& src, unsigned int srcFirst, Attribute& dst,
                   std::vector<unsigned int> const& dstList);
  static void copy(Attribute const& src, std::vector<unsigned int> const& srcList, Attribute& dst,
                   unsigned int dstFirst);
  // Instances first to last of src to dst from dstFirst on; both of one
  // type and length. Variable-length data go value by value, and the
  // instances take the source's lengths.
  static void copyRange(Attribute const& src, unsigned int first, unsigned int last, Attribute& dst,
                        unsigned int dstFirst);

  // Makes n instances, keeping the values of those that fit; new instances
  // are zero (empty for strings, of length 0 for a variable length).
  static void reallocate(Attribute& attribute, unsigned int n);
  static void reallocate(std::list<Attribute>::iterator first, std::list<Attribute>::iterator last,
                         unsigned int n);
  // Sets each instance (a scalar) through Attribute::setValue.
  static void set(Attribute& attribute, unsigned int first, unsigned int last, double value);
  static void set(Attribute& attribute, std::vector<unsigned int> const& list, double value);
  // All values 0 (strings empty).
  static void zero(Attribute& attribute);
  // Adds (r / 2147483647 - 0.5) * amplitude to every value, r from rand();
  // vINT32 adds the noise truncated. vINT32, vFLOAT32, vFLOAT64 only.
  static void addNoise(Attribute& attribute, float amplitude);
  static void createNoise(Attribute& attribute, float amplitude);
  // CRC-32 of the data (vUtl::calculateCRC): 0 without instances. Equal data
  // give equal values. vINT16 is refused, as it always was.
  static uint32_t calculateCRC(Attribute const& attribute);

  // The time of the attribute's sample grid nearest to time, halves away
  // from zero on both sides of the first time.
  static double findNearestTime(Attribute const& attribute, double time);
  // Copies src's vectors to dst's time window: dst takes src's number of
  // instances, each with zeros where src has no samples.
  static void timegate(Attribute const& src, Attribute& dst);
  // The instances, ascending, with at least one value in [low, high].
  static std::vector<unsigned int> findInstances(Attribute const& attribute, double low, double high);
  // Keeps the listed instances, in the order of the list.
  static void keepInstances(Attribute& attribute, std::vector<unsigned int> const& list);

  // Name, class, "DataType=", "#Instances=", "Length=", "SampleRate=", then
  // the values of instances first to last (0: to the end).
  static void dump(std::ostream& out, Attribute const& attribute, unsigned int first = 1, unsigned int last = 0);
  // Interactive choice of attributes from available into selection, reading
  // answers from in until an empty line or the end of the input.
  static void selectAttributes(std::list<Attribute> const& available, std::list<Attribute>& selection,
                               std::istream& in, std::ostream& out);

 private:
  static void myCopyVariableRange(Attribute const& src, unsigned int first, unsigned int last, Attribute& dst,
                                  unsigned int dstFirst);
  static void myCopyList(char const* label, Attribute const& src, std::vector<long long> const& srcInstances,
                         Attribute& dst, std::vector<long long> const& dstInstances, bool listIsSource);
};

#endif
