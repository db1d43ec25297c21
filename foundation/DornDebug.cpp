#include "foundation/DornDebug.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "foundation/UtlExcept.h"

namespace {

bool s_enabled = false;
FILE* s_out = nullptr;
std::string s_filename;
unsigned s_level = 0;
unsigned s_flags = 0;
int s_indent = 0;

int const kIndentWidth = 2;

void myClose() {
  if (s_out && s_out != stderr) std::fclose(s_out);
  s_out = nullptr;
}

// Writes one line: time prefix, indentation, text. lineFlags 8 raises the
// indentation after the line, 16 lowers it.
void myWrite(unsigned lineFlags, char const* text) {
  if (!DornDebug::isEnabled()) return;
  char line[4096];
  size_t n = 0;
  if (s_flags & DornDebug::TimeStamp) {
    time_t const now = std::time(nullptr);
    struct tm t;
    localtime_r(&now, &t);
    n += std::strftime(line, sizeof line, "%H:%M:%S ", &t);
  }
  for (int i = 0; i < s_indent * kIndentWidth && n < sizeof line - 2; ++i) line[n++] = ' ';
  size_t const room = sizeof line - 2 - n;
  size_t len = std::strlen(text);
  if (len > room) len = room;
  std::memcpy(line + n, text, len);
  n += len;
  if (n == 0 || line[n - 1] != '\n') line[n++] = '\n';
  line[n] = 0;
  std::fputs(line, s_out);
  if (s_flags & DornDebug::FlushLines) std::fflush(s_out);
  if (lineFlags & DornDebug::IndentAfter) DornDebug::indentUp();
  if (lineFlags & DornDebug::UnindentAfter) DornDebug::indentDown();
}

void myWriteV(unsigned lineFlags, char const* format, va_list args) {
  if (!DornDebug::isEnabled()) return;
  char text[4096];
  std::vsnprintf(text, sizeof text, format ? format : "", args);
  myWrite(lineFlags, text);
}

}  // namespace

void DornDebug::initialize(char const* programName) {
  char const* level = std::getenv("DORNDEBUGLEVEL");
  char const* flags = std::getenv("DORNDEBUGFLAGS");
  char const* output = std::getenv("DORNDEBUGOUTPUT");
  unsigned const l = level ? static_cast<unsigned>(std::strtoul(level, nullptr, 0)) : 0u;
  unsigned const f = flags ? static_cast<unsigned>(std::strtoul(flags, nullptr, 0)) : 0u;
  initializeDirect(l > 0, output, l, f);
  if (programName && isEnabled()) DornDebug::printf("DornDebug trace of %s", programName);
}

void DornDebug::initializeDirect(bool enable, char const* filename, unsigned level, unsigned flags) {
  terminate();
  s_level = level;
  s_flags = flags;
  s_indent = 0;
  s_filename.clear();
  if (!enable) return;
  if (filename && *filename && std::strcmp(filename, "-") != 0) {
    s_out = std::fopen(filename, (flags & Append) ? "a" : "w");
    if (s_out) s_filename = filename;
  }
  if (!s_out) s_out = stderr;
  s_enabled = true;
}

void DornDebug::terminate() {
  if (s_out) std::fflush(s_out);
  myClose();
  s_enabled = false;
  s_indent = 0;
}

bool DornDebug::isEnabled() { return s_enabled && s_level > 0 && s_out != nullptr; }

void DornDebug::entry(char const* format, ...) {
  if (!isEnabled()) return;
  va_list args;
  va_start(args, format);
  myWriteV(IndentAfter, format, args);
  va_end(args);
}

void DornDebug::exit() {
  if (!isEnabled()) return;
  myWrite(UnindentAfter, "(exit)");
}

void DornDebug::exit(char const* format, ...) {
  if (!isEnabled()) return;
  va_list args;
  va_start(args, format);
  myWriteV(UnindentAfter, format, args);
  va_end(args);
}

void DornDebug::printf(char const* format, ...) {
  if (!isEnabled()) return;
  va_list args;
  va_start(args, format);
  myWriteV(0, format, args);
  va_end(args);
}

void DornDebug::where(char const* text, char const* file, long line) {
  if (!isEnabled()) return;
  char buffer[4096];
  std::snprintf(buffer, sizeof buffer, "%s  [%s:%ld]", text ? text : "", file ? file : "", line);
  myWrite(0, buffer);
}

void DornDebug::dump(void const* bytes, size_t length) { dump(bytes, length, nullptr); }

void DornDebug::dump(void const* bytes, size_t length, char const* title) {
  if (!isEnabled()) return;
  if (title) myWrite(0, title);
  myWrite(0, "Offset   -----------------  Hex Codes  -----------------  --ASCII Values--");
  unsigned char const* p = static_cast<unsigned char const*>(bytes);
  for (size_t row = 0; row < length; row += 16) {
    char line[128];
    int n = std::snprintf(line, sizeof line, "%06lx   ", static_cast<unsigned long>(row));
    for (size_t i = 0; i < 16; ++i) {
      if (row + i < length)
        n += std::snprintf(line + n, sizeof line - static_cast<size_t>(n), "%02x ", p[row + i]);
      else
        n += std::snprintf(line + n, sizeof line - static_cast<size_t>(n), "   ");
    }
    line[n++] = ' ';
    for (size_t i = 0; i < 16 && row + i < length; ++i) {
      unsigned char const c = p[row + i];
      line[n++] = (c >= 32 && c < 127) ? static_cast<char>(c) : '.';
    }
    line[n] = 0;
    myWrite(0, line);
  }
}

void DornDebug::exception(char const* label, UtlExcept const& e) {
  exception(label, e.getMethod().c_str(), e.getReason().c_str());
}

void DornDebug::exception(char const* label, char const* method, char const* reason) {
  if (!isEnabled()) return;
  char buffer[4096];
  std::snprintf(buffer, sizeof buffer, "*%s EXCEPTION* %s - %s", label ? label : "", method ? method : "",
                reason ? reason : "");
  myWrite(0, buffer);
}

void DornDebug::indentUp() { ++s_indent; }

void DornDebug::indentDown() {
  if (s_indent > 0) --s_indent;
}

void DornDebug::setIndent(int indent) { s_indent = indent < 0 ? 0 : indent; }
int DornDebug::getIndent() { return s_indent; }
void DornDebug::setLevel(unsigned level) { s_level = level; }
unsigned DornDebug::getLevel() { return s_level; }
char const* DornDebug::getFilename() { return s_filename.c_str(); }
unsigned DornDebug::getFlags() { return s_flags; }
