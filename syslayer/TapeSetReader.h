#ifndef SYSLAYER_TAPESETREADER_H
#define SYSLAYER_TAPESETREADER_H

// TapeSetReader: a list of tapes (drives or tape images) or older
// variable-length files read as one stream of bytes.
//
// A name beginning with "F" that is one of the drive names "F3490", "F3590",
// "F3590E", "FDLT", "FDLT4000", "FDLT7000", "FDLT8000", "FSDLT600", "FLTO",
// "FLTO2", "FLTO3", "F3592" is not a tape: it sets the drive type for the
// tapes after it (0x40000000, the 3590, until one does). A name containing
// ".vlr" is a variable-length file. ANSI labels at the start of a tape are
// skipped. The end of a file or of a volume moves on to the next tape;
// other failures are fatal through the service's terminate path.

#include <list>
#include <vector>

#include "foundation/vString.h"

class TapeSetReader {
 public:
  explicit TapeSetReader(std::list<vString> const& tapes);
  ~TapeSetReader();
  TapeSetReader(TapeSetReader const&) = delete;
  TapeSetReader& operator=(TapeSetReader const&) = delete;

  // Bytes to drop from the first data block of the first tape (also when
  // that takes several blocks).
  void setInitialSkip(unsigned bytes);
  // Returns the bytes read: short only at the end of the last tape.
  unsigned read(void* buffer, unsigned count);
  // Moves count bytes on; returns how many it could.
  int skip(int count);
  void close();
  // True while a tape is open or more are to come.
  bool isOpen() const;

  // The drive type that the next tape opens with.
  int getDeviceType() const { return m_deviceType; }

  static constexpr unsigned kBufferSize = 1000000;
  static constexpr int kBlockSize = 8192;

 private:
  bool myOpenNextTape();
  // Refills the buffer; false at the end of the last tape.
  bool myReadNext();
  void myCloseTape();

  std::list<vString> m_tapes;
  std::list<vString>::const_iterator m_next;
  std::vector<char> m_buffer;
  int m_id;
  int m_status;
  unsigned m_left;      // bytes of the buffer not yet delivered
  unsigned m_initialSkip;
  bool m_expectLabels;
  int m_deviceType;
  bool m_vlr;           // the open one is a variable-length file
  unsigned m_start;     // where the undelivered bytes begin
  vString m_current;
};

#endif
