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

}  // namespace vUtl

#endif
