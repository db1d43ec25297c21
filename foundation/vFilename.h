#ifndef FOUNDATION_VFILENAME_H
#define FOUNDATION_VFILENAME_H

// vFilename: a path taken apart into host, directory, name, extension and
// drive, in Unix ("host:/dir/name.ext") or NT ("\\host\C:\dir\name.ext",
// "D:\dir\name.ext") form. A text with a backslash, or with ':' as its second
// character, is NT; anything else is Unix. Directories are kept with '/'
// separators and without a trailing '/' (except the root "/").
//
// The name is the part after the directory with its extension; the root is
// that name without the extension. Not thread-safe.

#include "foundation/vString.h"

class vFilename {
 public:
  vFilename();
  vFilename(vString const& text);
  vFilename(char const* text);
  vFilename(vFilename const& other);
  virtual ~vFilename();

  void setHost(vString const& host);
  // Sets the name without touching the extension.
  void setRoot(vString const& root);
  void setDirectory(vString const& directory);
  // Splits at the last '.' into root and extension.
  void setName(vString const& name);
  // One leading '.' is dropped.
  void setExtension(vString const& extension);
  // A letter, or 0 for none; anything else is fatal.
  void setDrive(char drive);

  vString const& getHost() const { return m_host; }
  vString const& getRoot() const { return m_name; }
  vString const& getDirectory() const { return m_directory; }
  // Root and extension joined by '.' (no '.' without an extension).
  vString getName() const;
  vString const& getExtension() const { return m_extension; }
  char getDrive() const { return m_drive; }
  bool isNT() const { return m_isNT; }

  void clearHost();
  void clearRoot();
  void clearDirectory();
  // Clears root and extension.
  void clearName();
  void clearExtension();
  void clearDrive();

  // The whole path, rebuilt in the form it was given in.
  vString const& getFilename() const;
  char const* c_str() const;
  unsigned int length() const;

  vFilename& operator=(vFilename const& other);
  vFilename& operator=(vString const& text);
  vFilename& operator=(char const* text);
  // Same file: a blank host stands for this host, drives compare upper-cased.
  bool operator==(vFilename const& other) const;
  bool operator!=(vFilename const& other) const { return !(*this == other); }

 private:
  void myLoad(vString const& text);
  void myDecodeUnix(vString const& text);
  void myDecodeNT(vString const& text);
  void mySplitPath(vString const& path, char separator);

  vString m_host;
  vString m_directory;
  vString m_name;
  vString m_extension;
  char m_drive;
  mutable vString m_fullName;
  bool m_isNT;
};

#endif
