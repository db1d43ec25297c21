#include "foundation/vFilename.h"

#include <cctype>

#include "foundation/Message.h"
#include "foundation/vUtl.h"

vFilename::vFilename() : m_drive('C'), m_isNT(false) {}

vFilename::vFilename(vString const& text) : m_drive('C'), m_isNT(false) { myLoad(text); }

vFilename::vFilename(char const* text) : m_drive('C'), m_isNT(false) { myLoad(vString(text)); }

vFilename::vFilename(vFilename const& other)
    : m_host(other.m_host),
      m_directory(other.m_directory),
      m_name(other.m_name),
      m_extension(other.m_extension),
      m_drive(other.m_drive),
      m_isNT(other.m_isNT) {}

vFilename::~vFilename() {}

vFilename& vFilename::operator=(vFilename const& other) {
  if (this == &other) return *this;
  m_host = other.m_host;
  m_directory = other.m_directory;
  m_name = other.m_name;
  m_extension = other.m_extension;
  m_drive = other.m_drive;
  m_isNT = other.m_isNT;
  m_fullName.erase();
  return *this;
}

vFilename& vFilename::operator=(vString const& text) {
  myLoad(text);
  return *this;
}

vFilename& vFilename::operator=(char const* text) {
  myLoad(vString(text));
  return *this;
}

// --- decoding --------------------------------------------------------------------

void vFilename::myLoad(vString const& text) {
  m_host.erase();
  m_directory.erase();
  m_name.erase();
  m_extension.erase();
  m_fullName.erase();
  m_drive = 'C';
  m_isNT = false;
  if (text.search('\\') >= 0 || (text.length() >= 2 && text[1] == ':'))
    myDecodeNT(text);
  else
    myDecodeUnix(text);
}

void vFilename::myDecodeUnix(vString const& text) {
  vString path(text);
  int const colon = text.search(':');
  if (colon >= 0) {
    m_host = text.substr(0, static_cast<unsigned int>(colon));
    path = text.substr(static_cast<unsigned int>(colon) + 1);
  }
  m_drive = 0;
  mySplitPath(path, '/');
}

void vFilename::myDecodeNT(vString const& text) {
  vString rest(text);
  if (text.length() >= 2 && text[0] == '\\' && text[1] == '\\') {
    int const end = text.search('\\', 2);
    if (end < 0) Message::fatal("vFilename::myDecodeNT", 0, "invalid filename '%s'", text.c_str());
    m_host = text.substr(2, static_cast<unsigned int>(end) - 2);
    rest = text.substr(static_cast<unsigned int>(end) + 1);
  }
  if (rest.length() >= 2 && rest[1] == ':') {
    setDrive(rest[0]);
    rest = rest.substr(2);
  }
  m_isNT = true;
  mySplitPath(rest, '\\');
}

// Splits at the last separator: the directory keeps everything up to and
// including it (setDirectory then drops the trailing one). An NT path may
// also use '/', which is what getFilename() writes back.
void vFilename::mySplitPath(vString const& path, char separator) {
  int cut = -1;
  for (int i = static_cast<int>(path.length()) - 1; i >= 0; --i) {
    if (path[i] == separator || path[i] == '/') {
      cut = i;
      break;
    }
  }
  if (cut >= 0) {
    setDirectory(path.substr(0, static_cast<unsigned int>(cut) + 1));
    setName(path.substr(static_cast<unsigned int>(cut) + 1));
  } else {
    m_directory.erase();
    setName(path);
  }
}

// --- parts -----------------------------------------------------------------------

void vFilename::setHost(vString const& host) {
  m_host = host;
  m_fullName.erase();
}

void vFilename::setRoot(vString const& root) {
  m_name = root;
  m_fullName.erase();
}

void vFilename::setDirectory(vString const& directory) {
  vString d(directory);
  if (d.length() >= 2 && d[1] == ':' && std::isalpha(static_cast<unsigned char>(d[0]))) {
    m_drive = d[0];
    d = d.substr(2);
  }
  d.replace('\\', '/');
  if (d.length() > 1 && d[static_cast<int>(d.length()) - 1] == '/') d.truncate(static_cast<int>(d.length()) - 1);
  m_directory = d;
  m_fullName.erase();
}

void vFilename::setName(vString const& name) {
  int dot = 0;
  if (name.searchForLast('.', dot) == 0) {
    m_name = name.substr(0, static_cast<unsigned int>(dot));
    m_extension = name.substr(static_cast<unsigned int>(dot) + 1);
  } else {
    m_name = name;
    m_extension.erase();
  }
  m_fullName.erase();
}

void vFilename::setExtension(vString const& extension) {
  if (extension.length() > 0 && extension[0] == '.')
    m_extension = extension.substr(1);
  else
    m_extension = extension;
  m_fullName.erase();
}

void vFilename::setDrive(char drive) {
  if (drive != 0 && !std::isalpha(static_cast<unsigned char>(drive)))
    Message::fatal("vFilename::setDrive", 0, "Invalid drive letter '%c'.", drive);
  m_drive = drive;
  m_fullName.erase();
}

vString vFilename::getName() const {
  vString n(m_name);
  if (m_extension.length() > 0) {
    n += '.';
    n += m_extension;
  }
  return n;
}

void vFilename::clearHost() { setHost(vString()); }
void vFilename::clearRoot() { setRoot(vString()); }
void vFilename::clearDirectory() {
  m_directory.erase();
  m_fullName.erase();
}
void vFilename::clearName() {
  m_name.erase();
  m_extension.erase();
  m_fullName.erase();
}
void vFilename::clearExtension() {
  m_extension.erase();
  m_fullName.erase();
}
void vFilename::clearDrive() {
  m_drive = 0;
  m_fullName.erase();
}

// --- the whole name --------------------------------------------------------------

vString const& vFilename::getFilename() const {
  if (m_fullName.length() != 0) return m_fullName;
  vString full;
  if (m_isNT) {
    if (!m_host.isBlank()) {
      full += "\\\\";
      full += m_host;
      full += '\\';
    }
    if (m_drive) {
      full += m_drive;
      full += ':';
    }
  } else if (!m_host.isBlank()) {
    full += m_host;
    full += ':';
  }
  full += m_directory;
  // A relative name has no directory and takes no separator.
  if (m_directory.length() != 0 && m_directory != "/") full += '/';
  full += getName();
  if (m_isNT && full == "C:") full.erase();
  m_fullName = full;
  return m_fullName;
}

char const* vFilename::c_str() const { return getFilename().c_str(); }
unsigned int vFilename::length() const { return getFilename().length(); }

bool vFilename::operator==(vFilename const& other) const {
  if (m_name != other.m_name) return false;
  vString const here = vUtl::gethostname();
  vString const& a = m_host.isBlank() ? here : m_host;
  vString const& b = other.m_host.isBlank() ? here : other.m_host;
  if (a != b) return false;
  if (std::toupper(static_cast<unsigned char>(m_drive)) != std::toupper(static_cast<unsigned char>(other.m_drive)))
    return false;
  return m_directory == other.m_directory && m_extension == other.m_extension;
}
