#ifndef FOUNDATION_SYSTEMFILELOADER_H
#define FOUNDATION_SYSTEMFILELOADER_H

// SystemFileLoader: base of every reader of the release's system files
// (property tables, attribute tables, translation and mapping files). A file
// is looked for as named, relative to the working directory, and then in
// vUtl::systemFilesDirectory(), so that a copy in the working directory
// overrides the release's for one run. The derived class reads the stream.

#include <iosfwd>

#include "foundation/vString.h"

class SystemFileLoader {
 public:
  SystemFileLoader();
  virtual ~SystemFileLoader();

  // Finds the file, opens it and hands the stream to doLoad with `text`,
  // the caller's word for what is being read. A file found nowhere is fatal:
  // "File %s was not found in ./ or %s.".
  void load(vString const& file, vString const& text);

  // The path that the last load opened.
  vString const& getPath() const { return m_path; }

  // Where load would find the file: true and its path, or false.
  static bool find(vString const& file, vString& path);

 protected:
  virtual void doLoad(std::istream& in, vString const& text) = 0;

 private:
  SystemFileLoader(SystemFileLoader const&) = delete;
  SystemFileLoader& operator=(SystemFileLoader const&) = delete;

  vString m_path;
};

#endif
