#ifndef FOUNDATION_VUTL_H
#define FOUNDATION_VUTL_H

// vUtl: free utility functions shared by every layer. A namespace rather than
// a class so that each group lives in the source file of its topic.
// None of these functions is thread-safe unless said so.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "foundation/DataType.h"

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

}  // namespace vUtl

#endif
