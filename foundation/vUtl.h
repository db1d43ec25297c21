#ifndef FOUNDATION_VUTL_H
#define FOUNDATION_VUTL_H

// vUtl: free utility functions shared by every layer. A namespace rather than
// a class so that each group lives in the source file of its topic.
// None of these functions is thread-safe unless said so.

#include <cstdint>
#include <vector>

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
vString getIPAddress(vString const& host);
vString getDomainName();
vString releaseDirectory();
vString supportFilesDirectory();
vString systemFilesDirectory();
vString sourceDirectory();
vString documentationDirectory();
vString which(vString const& program);
vString getMachineType();
vString systemCommand(char const* command, vString const* host, int flags);
int system(char const* command, vString const* host = nullptr, int flags = 0);
vString getDefaultServer();
vString getDefaultDevServer();
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

}  // namespace vUtl

#endif
