#ifndef FOUNDATION_VUTL_H
#define FOUNDATION_VUTL_H

// vUtl: free utility functions shared by every layer. A namespace rather than
// a class so that each group lives in the source file of its topic.
// None of these functions is thread-safe unless said so.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "foundation/DataType.h"
#include "foundation/vUtlSort.h"

class vString;

namespace vUtl {

// --- Formats and lists (vUtlFormat.cpp) -----------------------------------
// Rewrites a printf format so that "%lld" matches a 64-bit argument on this
// platform; every formatting entry point of the system passes through it.
void reformatInt64(vString& format);
// True when the list is consecutive ascending numbers (an empty list is not).
bool isListARange(std::vector<unsigned int> const& list);

// --- Environment (vUtlEnv.cpp) ------------------------------------------
// True and the value when the variable is set; otherwise false and cleared.
bool getenv(char const* name, vString& value);
void putenv(char const* name, vString const& value);
// The host name cut at the first '.'.
vString gethostname();
bool gethostname(char* buffer, unsigned size);
vString homeDirectory();

// --- Host, installation and commands (vUtlSystem.cpp) ---------------------
// The dotted IPv4 address of a host; a name that does not resolve is fatal.
vString getIPAddress(vString const& host);
// DORN_DOMAIN, or the system's domain (the NIS domain, else the part of this
// host's canonical name after its first '.'); none is fatal:
// "Unable to get domain name, errno=%d".
vString getDomainName();
// The release tree, ending in '/': VREL names it; otherwise RLITE or, after
// it, cor_root names an installation root holding the release at
// <root>/<RELEASE>/rondolite/ (at <root>/rondolite/ without RELEASE); with
// none of them, "./".
vString releaseDirectory();
// releaseDirectory() + "SupportFiles/" and + "SystemFiles/".
vString supportFilesDirectory();
vString systemFilesDirectory();
// VSRC and VDOC as set, or empty.
vString sourceDirectory();
vString documentationDirectory();
// The first line of "which <program>", or empty. MISCUTL_WHICHDEBUG=1
// prints the result.
vString which(vString const& program);
// MACHINE, or fatal "MACHINE environment variable not defined!".
vString getMachineType();
// Runs the ping command of the system property UTL/PING (default
// "vping %s", the %s taking the host) and tells whether it exited with 0.
// A property without text is fatal.
bool ping(vString const& host);
// True for a blank host, "localhost", or a name whose part before the first
// '.' is this host's name (in any case).
bool isThisHost(vString const& host);
// Flags of systemCommand and system.
enum SystemFlags {
  // Runs the command in the background: system() returns at once.
  SystemBackground = 1
};
// The shell text that runs `command` on `host`: the command itself for this
// host, otherwise "rsh <host>[ -l <VUSER>] -n  <command>".
vString systemCommand(char const* command, vString const* host, int flags);
// Runs systemCommand's text by the shell and returns its exit status (128 +
// the signal for a command killed by one). A shell that cannot be started is
// fatal: "Error executing command '%s', errno=%d".
int system(char const* command, vString const* host = nullptr, int flags = 0);
// DORNSERVER, or the server this domain's entry names in the section
// [DornServer] of the system file "DomainServers.ini"; none is fatal:
// "Unknown domain name %s. Try setenv DORNSERVER servername.".
vString getDefaultServer();
// The same with DORNDEVSERVER and the section [DornDevServer].
vString getDefaultDevServer();
// Prompts on standard output and reads one line from standard input; an
// empty line or the end of the input gives the default.
vString enterc(char const* prompt, vString const& defaultValue);

// --- Batch job identity and build (vUtlJob.cpp) ---------------------------
// The batch job this process runs under, as the job system puts it in the
// environment (DORNJOBDECKID, DORNJOBDECKNAME, DORNJOBID, DORNJOBNUMBER);
// 0 or empty outside a job, and for a value that is not a number.
int64_t getDornJobDeckID();
vString getDornJobDeckName();
int64_t getDornJobID();
int64_t getDornJobNumber();
// True when DORNJOBID names a job (is set and not 0).
bool isDornBatchJob();
// The build number this code was made with (RONDO_BUILD_NUMBER when the
// build gives one), 0 otherwise.
int getBuildNumber();

// --- Diagnostics (vUtlDorn.cpp) -------------------------------------------
// Process start-up: umask(0) and the default memory-mapping limit at every
// call; on the first call PELLIN_FONT_PATH and, when asked, the crash
// signal handlers; noMoreMemory as the allocation failure handler.
void startDorn(bool installSignals);
// Prints the call stack of the caller on standard error.
void printStack();
// The allocation failure handler: reports and throws std::bad_alloc.
void noMoreMemory();
// The crash handler: reports the signal and the stack, then ends the process
// (abort() for SIGSEGV, exit(status) otherwise).
void signalHandler(int status);
// The report text of a signal, such as "SIGSEGV Invalid memory reference.",
// or null when none is listed for it.
char const* signalText(int status);

// --- Data types (vUtlDataType.cpp) ----------------------------------------
// Codes and flags are those of DataType (foundation/DataType.h); the functions
// take a whole type byte, flags included. The base type decides the size.
//
// Bytes of one element in memory: vSTRING is one vString object, vDATE one
// vDate object. An unknown base raises "Unknown DataType %d.".
int dataTypeSize(int type);
// "vINT32", "ArrayOfvINT32", "AddressOfArrayOfvINT32", ...; an unknown base
// raises "Unknown DataType %d.".
vString dataTypeName(int type);
// The code of an upper-case name such as "VINT32" or "VSTRINGARRAY" (the
// text is upper-cased first); vNOTYPE for a name that is not known.
DataType dataTypeFromName(vString const& name);
// True for a byte with 0x40 set and 0x20 clear: an entry that refers to
// caller memory instead of holding the data.
inline bool dataTypeIsAddressOf(int type) { return (type & 96) == 64; }
// The five number types that attribute values are computed, sorted, binned
// and mapped in: vINT16, vINT32, vINT64, vFLOAT32 and vFLOAT64.
inline bool dataTypeIsAttributeNumber(int type) {
  return type == vINT16 || type == vINT32 || type == vINT64 || type == vFLOAT32 || type == vFLOAT64;
}

// --- Byte order (vUtlSwap.cpp) ----------------------------------------------
// Pure loops over caller buffers: no allocation, no state. Unaligned data is
// fine. The contiguous forms are what file stores and the Packer spend their
// time in, so they are written for the vectoriser.
//
// Reverses each of n elements of size 2, 4 or 8 bytes in place. Any other
// size raises "Invalid datatype, datasize =%d." from "ByteSwap::swapBytes()".
void swapBytes(void* data, int size, int n);
// Swapping copy in groups: nGroups groups of groupLength elements of size
// bytes each. The elements of a group lie back to back; group g starts at
// source + g * sourceStride and goes to target + g * targetStride (strides
// in bytes). With groupLength 1 it is the plain strided form, with strides
// equal to size * groupLength it is one contiguous run. Source and target
// may be the same memory when the strides are equal; other overlaps are not
// allowed. Sizes other than 2, 4 and 8 raise as above.
void swapBytes(void const* source, int size, int sourceStride, unsigned int nGroups, int groupLength,
               void* target, int targetStride);
// The contiguous kernels behind both forms; n is a count of elements.
void swapBytes16(void* data, std::size_t n);
void swapBytes32(void* data, std::size_t n);
void swapBytes64(void* data, std::size_t n);
void swapBytes16(void const* source, void* target, std::size_t n);
void swapBytes32(void const* source, void* target, std::size_t n);
void swapBytes64(void const* source, void* target, std::size_t n);


// --- Numeric conversion, checksums, limits (vUtlConvert.cpp) --------------
// Nearest integer, halves away from zero: 2.5 gives 3, -2.5 gives -3.
// Values beyond the result's range saturate at its limits and NaN gives 0,
// so no input is undefined. Inline and without branches or floating-point
// comparisons (the range is told from the bit pattern, and the limit is
// merged by masks), so that loops over them vectorise.
inline int nint(double x) {
  uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  uint64_t const magnitude = bits & 0x7FFFFFFFFFFFFFFFULL;
  // From |x| = 2^31 - 0.5 on (infinities and NaN too) the result is a limit,
  // and 0 stands in for x in the arithmetic.
  bool const outside = magnitude >= 0x41DFFFFFFFE00000ULL;
  uint64_t const insideBits = bits & (static_cast<uint64_t>(outside) - 1u);
  double inside;
  std::memcpy(&inside, &insideBits, sizeof inside);
  int i = static_cast<int>(inside);
  // The remainder is exact and lies in (-1, 1): twice it truncates to the
  // step of rounding, -1, 0 or 1.
  i += static_cast<int>(2.0 * (inside - static_cast<double>(i)));
  // INT_MAX, one more (INT_MIN) for a negative x, 0 for NaN.
  uint32_t const limit = (0x7FFFFFFFu + static_cast<uint32_t>(bits >> 63)) &
                         (0u - static_cast<uint32_t>(magnitude <= 0x7FF0000000000000ULL));
  uint32_t const pick = 0u - static_cast<uint32_t>(outside);
  return static_cast<int>((static_cast<uint32_t>(i) & ~pick) | (limit & pick));
}
// The 64-bit form.
inline long long nint64(double x) {
  uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  uint64_t const magnitude = bits & 0x7FFFFFFFFFFFFFFFULL;
  // From 2^62 on every double is an integer, so only |x| >= 2^63 is out.
  bool const outside = magnitude >= 0x43E0000000000000ULL;
  uint64_t const insideBits = bits & (static_cast<uint64_t>(outside) - 1u);
  double inside;
  std::memcpy(&inside, &insideBits, sizeof inside);
  long long i = static_cast<long long>(inside);
  i += static_cast<long long>(2.0 * (inside - static_cast<double>(i)));
  uint64_t const limit = (0x7FFFFFFFFFFFFFFFULL + (bits >> 63)) &
                         (0u - static_cast<uint64_t>(magnitude <= 0x7FF0000000000000ULL));
  uint64_t const pick = 0u - static_cast<uint64_t>(outside);
  return static_cast<long long>((static_cast<uint64_t>(i) & ~pick) | (limit & pick));
}

// Flags of copyConvert.
enum ConvertFlags {
  // Integer results outside the target's range saturate at its limits, and
  // vFLOAT64 to vFLOAT32 saturates at the largest float instead of going to
  // infinity. Without it integers narrow by keeping their low bits.
  ConvertClip = 1,
  // Floating point to integer truncates toward zero instead of rounding to
  // the nearest integer (halves away from zero, as nint).
  ConvertTruncate = 2,
  // The source elements are in the other byte order: each is swapped as it
  // is read, in the same pass.
  ConvertSwapSource = 4
};
// Converts n values of sourceType at source into targetType at target.
// Types: vINT8, vUINT8, vINT16, vUINT16, vINT32, vUINT32, vINT64, vUINT64,
// vFLOAT32, vFLOAT64, and vCHAR8, vUCHAR8, vBOOL8 as 8-bit integers; any
// other is fatal from "vUtl::copyConvert()": "Cannot convert %s data to %s."
// Floating point goes to integers by rounding (or ConvertTruncate); NaN
// gives 0, and out-of-range values saturate when the target has 64 bits or
// ConvertClip is set, else go through the saturated 64-bit integer and keep
// its low bits as any integer does. Integers go to floating point by plain
// conversion. Buffers need no alignment. source and target may be the very
// same address when both types have the same size; other overlaps are not
// allowed.
void copyConvert(void const* source, int sourceType, void* target, int targetType, std::size_t n, int flags = 0);

// IBM System/360 single precision (the SEG-Y sample format 1) to IEEE 754
// single precision and back, n values. With swap the IBM words are in the
// other byte order than the machine's (true for the big-endian words of a
// file read on x86). source and target may be the same address.
//
// IBM to IEEE is exact but for results below the smallest normal float,
// which round to nearest (ties to even) and may become 0; magnitudes above
// the largest float become infinity. IEEE to IBM rounds the fraction to
// nearest (ties to even) where the hexadecimal exponent drops up to three
// bits; infinity becomes the largest IBM magnitude of its sign and NaN 0.
void ibmToIeee(void const* source, void* target, std::size_t n, bool swap);
void ieeeToIbm(void const* source, void* target, std::size_t n, bool swap);

// CRC-32 (the polynomial of zlib and Ethernet, reflected 0xEDB88320) of n
// bytes. Chained: calculateCRC(b, nb, calculateCRC(a, na, 0)) is the CRC of
// a followed by b. Start from 0.
uint32_t calculateCRC(void const* data, std::size_t n, uint32_t crc = 0);

// The smallest and largest value of a list; false (and both left alone)
// for an empty list.
bool getLimits(std::vector<unsigned int> const& list, unsigned int& smallest, unsigned int& largest);
bool getLimits(std::vector<int> const& list, int& smallest, int& largest);

// --- Sorting (vUtlHeapSort.cpp) -------------------------------------------
// In-place heap sorts that carry an index array along with the keys: no
// memory beyond the arrays, no recursion. Not stable: equal keys leave in
// the order the heap leaves them. n must be at least 1. Instantiated for
// short, int, long long, float and double keys with an unsigned int index.
//
// Ascending by key.
template <class T, class Index>
void heapSort(int n, T* keys, Index* index);
// By key1 in order1, ties by key2 in order2. An order other than ASCENDING
// or DESCENDING in either place leaves the arrays as they are.
template <class K1, class K2, class Index>
void heapSort2Key(int n, K1* key1, K2* key2, Index* index, vUtlSort::SortOrder::SortOrderType order1,
                  vUtlSort::SortOrder::SortOrderType order2);

}  // namespace vUtl

#endif
