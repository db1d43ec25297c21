#ifndef FILESTORE_SEGY_SEGYFORMATFILE_H
#define FILESTORE_SEGY_SEGYFORMATFILE_H

// SegyFormatFile: the layout of a SEG-Y file as a format description file
// (extension "syf") tells it. Line by line, any case, '#' starts a comment:
//
//   FORMAT KELP                    the naming scheme (KELP, DORN; KELP if absent)
//   STORECLASS seismic             the store's class and subclass
//   STORESUBCLASS shots
//   KEYNAMES FFID CHANNEL          the two key attributes
//   CDP_X  cdpx  trace  181  int4  CDP easting
//   name   alias location position format description...
//
// location "binary" or "trace"; position 1-based; format "int4", "int2" or
// "ieee4" (exactly so). Trace entries become attributes: some file names
// stand for defined attributes (CDP_X is "CMP.X", ...), and the others keep
// their name and type, translated through the "Kelp" translation table, so
// that a name the table knows becomes the attribute it stands for. Key
// names are translated the same way. "CMP" and "TRACE" are added where the
// file does not place them.

#include "filestore/segy/SegyFormatBase.h"
#include "filestore/segy/SegyFormatSpecs.h"
#include <string>
#include <vector>

#include "foundation/vFilename.h"

class SegyFormatFile : public SegyFormatBase {
 public:
  SegyFormatFile();
  ~SegyFormatFile() override;

  // Loads the description (the extension is forced to "syf"), found as
  // named or among the system files; false when neither has it. Fatal
  // without a binary header set first.
  bool loadFormat(vFilename const& name);

  vFilename const& getFormatFileName() const { return m_formatFileName; }
  SegyFormatSpecs const& getSpecs() const { return m_specs; }
  // "kelp" or "dorn".
  vString const& getFormatName() const { return m_formatName; }

 protected:
  std::list<Attribute> doGetAttributeList() const override;
  int doGetAttributeOffset(vUCString const& name) const override;
  DataType doGetSegyType(vUCString const& name) const override;

  void myLoadFormat(vString const& path);
  void myCreateAttributes();
  void myCreateKelpAttributes();
  void myAddInCmp();
  void myAddInTrace();

 private:
  void myParseLine(int lineNumber, vString const& line);
  // The words of an attribute line: name, alias, location, position,
  // format, and the rest of the line as the sixth.
  void myParseAttributeLine(int lineNumber, std::vector<std::string> const& words);
  // The attribute that a trace entry stands for.
  Attribute myKelpAttribute(SegyFormatSpecs::Entry const& entry) const;
  bool myDefines(char const* name) const;
  void myAddEntry(SegyFormatSpecs::Entry const& entry);

  vFilename m_formatFileName;
  vString m_formatName;
  SegyFormatSpecs m_specs;
  // The entry of the samples when the file did not place them; -1 if none.
  std::size_t m_addedTrace;
};

#endif
