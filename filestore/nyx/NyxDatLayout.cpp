#include "filestore/nyx/NyxDatLayout.h"

#include <algorithm>
#include <string>

#include "foundation/Message.h"

void NyxDatLayout::parse(Reader const& read, long long fileSize, char const* label, std::string const& name) {
  *this = NyxDatLayout();
  int32_t lead = 0;
  if (read(0, &lead, 4) != 4) Message::fatal(label, 0, "Failed to set the initial position in the file!");
  if (lead != PROLOGUE) {
    if (static_cast<int32_t>(NyxTrace::swap32(static_cast<uint32_t>(lead))) != PROLOGUE)
      Message::fatal(label, 0, "Failed to read the initial part of the file!");
    swapped = true;
  }
  auto word = [&](long long offset, char const* failure) {
    uint32_t w = 0;
    if (read(offset, &w, 4) != 4) Message::fatal(label, 0, failure);
    return static_cast<int32_t>(swapped ? NyxTrace::swap32(w) : w);
  };
  char texts[26 + 38 + 160];
  long long pos = 4;
  for (int part : {26, 38, 160}) {
    if (read(pos, texts, part) != part) Message::fatal(label, 0, "Failed to read the initial part of the file!");
    pos += part;
  }
  int32_t const history = word(pos, "Failed to read the initial part of the file!");
  pos += 4;
  if (history != 0) {
    if (history < 4 || pos + history > fileSize)
      Message::fatal(label, 0, "Failed to skip past the first \"special\" trace!");
    if (word(pos, "Failed to read the first word out of the special history trace!") != -1)
      Message::fatal(label, 0, "Failed to read the first word out of the special history trace!");
    pos += history;
  }
  while (pos < fileSize) {
    int32_t header[BLOCK_HEADER_WORDS];
    if (read(pos, header, sizeof header) != static_cast<long long>(sizeof header))
      Message::fatal(label, 0, "Failed to read block header from file!");
    if (swapped) NyxTrace::swapWords(header, BLOCK_HEADER_WORDS);
    long long const size = header[0];
    int const type = header[1], count = header[3], additional = header[5];
    bool const traces = type == 7 || type == 15;
    bool const beyond = pos + size > fileSize;
    if (size < static_cast<long long>(sizeof header) || (beyond && !traces))
      Message::fatal(label, 0, "Failed to move to the next block header at position %d in the file!",
                     static_cast<int>(pos));
    if (traces) {
      long long const first = pos + static_cast<long long>(sizeof header) + additional;
      if (blocks.empty()) {
        // The first trace tells the layout of all.
        if (additional < 0 || count < 1 || first + NyxTrace::HEADER_BYTES > pos + size)
          Message::fatal(label, 0, "Failed to move back to the first seismic trace!");
        if (read(first, firstHeader, NyxTrace::HEADER_BYTES) != NyxTrace::HEADER_BYTES)
          Message::fatal(label, 0, "Failed to read trace header from file!");
        if (swapped) NyxTrace::swapWords(firstHeader, NyxTrace::HEADER_WORDS);
        dataFormat = firstHeader[NyxTrace::DAT_FORMAT] & 7;
        nSamples = firstHeader[NyxTrace::NSAMPLES];
        int const sampleSize = NyxTrace::sampleSize(dataFormat);
        if (sampleSize == 0) Message::fatal(label, 0, "Data format %d is unsupported!", dataFormat);
        if (nSamples < 0 || nSamples > (1 << 24))
          Message::fatal(label, 0, "Failed to read trace header from file!");
        traceBytes = NyxTrace::HEADER_BYTES + nSamples * sampleSize;
      }
      long long const calculated = static_cast<long long>(sizeof header) + additional +
                                   static_cast<long long>(count) * traceBytes;
      bool const addsUp = additional >= 0 && count >= 0 && calculated == size;
      if (beyond && !addsUp)
        Message::fatal(label, 0, "Failed to move to the next block header at position %d in the file!",
                       static_cast<int>(pos));
      if (!addsUp)
        Message::fatal(label, 0, "Calculation error, physical file size %s != calculated size %s!",
                       std::to_string(size).c_str(), std::to_string(calculated).c_str());
      // A block whose header adds up but whose traces run past the end of
      // the file: the file was cut, and says how many traces it lost.
      if (beyond)
        Message::fatal(label, 0,
                       "The Nyx file %s is cut short: its block at byte %lld calls for %d traces of %d bytes, it "
                       "holds %lld.",
                       name.c_str(), pos, count, traceBytes, std::max(0LL, fileSize - first) / traceBytes);
      if (count > 0) blocks.push_back(Block{first, count});
      nInstances += count;
    }
    pos += size;
  }
  if (blocks.empty()) Message::fatal(label, 0, "Failed to move back to the first seismic trace!");
}

long long NyxDatLayout::offsetOf(long long instance) const {
  long long k = instance - 1;
  for (Block const& b : blocks) {
    if (k < b.count) return b.firstTrace + k * traceBytes;
    k -= b.count;
  }
  return -1;
}
