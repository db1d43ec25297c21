#ifndef SYSLAYER_SYSUTIL_H
#define SYSLAYER_SYSUTIL_H

// Small routines of the system layer's ut (utility) and er (error) families
// that the parameter trees and the record file service use.

#include <cstdint>

// Zeroed memory for n 32-bit words; null when there is none.
int32_t* ut_wcalloc_(int64_t const& n);
// Grows a block from ut_wcalloc_ to n words, zeroing the new words; null on
// failure (the old block is then still valid).
int32_t* ut_wrealloc_(int32_t* block, int64_t const& oldN, int64_t const& n);
void ut_wfree_(int32_t* block);
// The user's login name, blank-filled to length (no zero).
void ut_getuser_(char* name, int const& length);
// Today's date in a form, blank-filled to length (no zero):
//   "world"  " yyddd" or "0yyddd": the tape label form, a blank before 2000
//            and '0' after, two digits of the year and the day of the year;
//   "iso"    "yyyy-mm-dd".
// An unknown form gives blanks.
void ut_date_(char const* form, char* text, int const& length);

// Fatal message under the routine's name (the label), never returns.
[[noreturn]] void er_fatal_(char const* routine, char const* text);
// Warning: an error message under the routine's name.
void er_warn_(char const* routine, char const* text);

#endif
