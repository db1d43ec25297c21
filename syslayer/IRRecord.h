#ifndef SYSLAYER_IRRECORD_H
#define SYSLAYER_IRRECORD_H

// ir: indexed records, named typed values kept as structures of the ss
// heap (SSHeap.h). A record is a structure of four slots under the ir root
// (which ir_init_ hangs in slot 1 of the ss root on first use):
//   slot 1  the kind: 1 integer, 2 float, 3 double, 4 text, 9 to 12 arrays
//           of the same (0 while nothing is stored)
//   slot 2  the changed flag (word 5 of the record), set by every store
//   slot 3  the value: the integer, the float's bits, the text, or the array
//   slot 4  with slot 3, a double
//
// Stores take an index: 0 stores a scalar and makes the record that kind;
// n >= 1 stores element n of an array, growing it as needed: an empty
// record becomes an array of the value's kind, an array of another kind
// takes the value converted. Reads take index 0 for a scalar (or the first
// element) and convert to the kind asked for: floats to integers by
// truncation, texts parsed (a text that is no number fails), numbers to
// text as "%d", "%.7g" or "%.15g". status is 1 when good, 0 when the
// value could not be converted or the index is outside the record.

#include <cstdint>

enum { IR_INT = 1, IR_FLOAT = 2, IR_DOUBLE = 3, IR_TEXT = 4, IR_ARRAY = 8 };

void ir_init_(int32_t& root);
void ir_new_(int32_t& id);
void ir_kind_(int32_t const& id, int32_t& kind);
// 1 for a scalar, the size of an array, 0 for an empty record.
void ir_n_(int32_t const& id, int32_t& n);
// Sizes an array; a scalar becomes an array of its kind with its value as
// the first element, an empty record an integer array.
void ir_setn_(int32_t const& id, int32_t const& n);

void ir_puti_(int32_t const& id, int32_t const& index, int32_t const& value);
void ir_putf_(int32_t const& id, int32_t const& index, float const& value);
void ir_putd_(int32_t const& id, int32_t const& index, double const& value);
// A logical, kept as the integer 1 or 0.
void ir_putl_(int32_t const& id, int32_t const& index, int32_t const& value);
// A zero-ended text; ir_putnt_ a text of `length` bytes.
void ir_putt_(int32_t const& id, int32_t const& index, char const* text);
void ir_putnt_(int32_t const& id, int32_t const& index, char const* text, int32_t const& length);

void ir_geti_(int32_t const& id, int32_t const& index, int32_t& value, int32_t& status);
void ir_getf_(int32_t const& id, int32_t const& index, float& value, int32_t& status);
void ir_getd_(int32_t const& id, int32_t const& index, double& value, int32_t& status);
// Blank-filled to length.
void ir_gett_(int32_t const& id, int32_t const& index, char* text, int32_t const& length, int32_t& status);
// Elements first to first+count-1; texts each `width` bytes, blank-filled.
void ir_getisr_(int32_t const& id, int32_t const& first, int32_t const& count, int32_t* values, int32_t& status);
void ir_getfsr_(int32_t const& id, int32_t const& first, int32_t const& count, float* values, int32_t& status);
// Logicals: 1 for any non-zero value.
void ir_getlsr_(int32_t const& id, int32_t const& first, int32_t const& count, int32_t* values, int32_t& status);
void ir_gettsr_(int32_t const& id, int32_t const& first, int32_t const& count, char* texts, int32_t const& width,
                int32_t& status);

// Conversions between the scalar kinds: a 32-bit word (integer or float
// bits) and, for ir_convert8_, doubles. ir_format_ writes a value of a kind
// as text, blank-filled.
void ir_convert_(int32_t const& fromKind, int32_t const& from, int32_t const& toKind, int32_t& to, int32_t& status);
void ir_convert8_(int32_t const& fromKind, double const& from, int32_t const& toKind, double& to, int32_t& status);
void ir_format_(int32_t const& kind, double const& value, char* text, int32_t const& length);

#endif
