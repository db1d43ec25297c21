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
void startDorn(bool installSignals);
void printStack();

}  // namespace vUtl

#endif
