// Index files of Nyx data files: the byte offset of every trace.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "filestore/nyx/NyxDiskStore.h"
#include "filestore/nyx/NyxFS.h"
#include "foundation/Message.h"

namespace {

char const* const kIndexLabel = "NyxDiskStore::hasIndexFile";

vFilename indexName(vFilename const& data) {
  vFilename index(data);
  index.setExtension("idx");
  return index;
}

uint32_t littleWord(unsigned char const* b) {
  return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
         static_cast<uint32_t>(b[3]) << 24;
}

void putLittle(unsigned char* b, uint64_t v, int bytes) {
  for (int k = 0; k < bytes; ++k) b[k] = static_cast<unsigned char>(v >> (8 * k));
}

// Reads up to count bytes; how many came.
long readSome(int fd, void* buffer, long count) {
  long done = 0;
  while (done < count) {
    long const got = NYXFSread(fd, static_cast<char*>(buffer) + done, static_cast<unsigned long>(count - done));
    if (got <= 0) break;
    done += got;
  }
  return done;
}

// Reads all of count bytes; false when it can't.
bool readAll(int fd, void* buffer, long count) { return readSome(fd, buffer, count) == count; }

}  // namespace

bool NyxDiskStore::hasIndexFile(vFilename const& file) {
  if (isTapeName(file.getFilename())) return false;
  struct stat s;
  return ::stat(indexName(file).c_str(), &s) == 0;
}

bool NyxDiskStore::hasIndexFile() const { return m_record.fileFormat != TAPES && hasIndexFile(m_fileName); }

void NyxDiskStore::myLoadIndex() {
  m_index.clear();
  vFilename const name = indexName(m_fileName);
  int const fd = NYXFSopen2(name.c_str(), O_RDONLY);
  if (fd < 0) {
    Message::error(kIndexLabel, 0, "Failed to open the index file '%s'!", name.c_str());
    return;
  }
  unsigned char header[16];
  std::vector<long long> index;
  if (!readAll(fd, header, sizeof header)) {
    Message::error(kIndexLabel, 0, "Index file '%s' does not contain the right number of instances, expected %d found %d!",
                   name.c_str(), m_record.nInstances, 0);
  } else if (littleWord(header) != 1) {
    Message::error(kIndexLabel, 0, "Index file '%s' is not the correct version, we only support version 1, not %d!",
                   name.c_str(), static_cast<int>(littleWord(header)));
  } else if (static_cast<int>(littleWord(header + 4)) != m_record.extRecordLengthB) {
    Message::error(kIndexLabel, 0, "Index file '%s' does not contain the right record length, expected %d found %d!",
                   name.c_str(), m_record.extRecordLengthB, static_cast<int>(littleWord(header + 4)));
  } else {
    int const count = static_cast<int>(littleWord(header + 8));
    std::vector<unsigned char> records(static_cast<std::size_t>(m_record.nInstances) * 8);
    if (count > m_record.nInstances && myIndexShowsACut(fd)) {
      NYXFSclose(fd);
      Message::fatal("NyxDiskStore::open", 0,
                     "The Nyx file %s is cut short: its index calls for %d traces of %d bytes, it holds %d.",
                     m_fileName.c_str(), count, m_record.extRecordLengthB, m_record.nInstances);
    }
    // An index cut short holds fewer records than its header counts: those
    // it holds are what it has found.
    long const held = count == m_record.nInstances
                          ? readSome(fd, records.data(), static_cast<long>(records.size())) / 8
                          : count;
    if (held != m_record.nInstances) {
      Message::error(kIndexLabel, 0,
                     "Index file '%s' does not contain the right number of instances, expected %d found %d!",
                     name.c_str(), m_record.nInstances, static_cast<int>(held));
    } else {
      for (int k = 0; k < count; ++k)
        index.push_back(static_cast<long long>(littleWord(&records[8 * k]) |
                                               static_cast<uint64_t>(littleWord(&records[8 * k + 4])) << 32));
    }
  }
  NYXFSclose(fd);
  m_index.swap(index);
}

// An index of more traces than the file holds (the caller has seen that it
// is) is this file's own, made before the file was cut, when it places
// every trace the file holds where the file does and the first of the
// others at or past the file's end. The index is read from just after its
// header, and left anywhere.
bool NyxDiskStore::myIndexShowsACut(int fd) const {
  std::vector<unsigned char> records(static_cast<std::size_t>(m_record.nInstances + 1) * 8);
  if (!readAll(fd, records.data(), static_cast<long>(records.size()))) return false;
  auto offset = [&](int k) {
    return static_cast<long long>(littleWord(&records[8 * k]) |
                                  static_cast<uint64_t>(littleWord(&records[8 * k + 4])) << 32);
  };
  for (int k = 0; k < m_record.nInstances; ++k)
    if (offset(k) != m_dat.offsetOf(k + 1)) return false;
  return offset(m_record.nInstances) >= myFileSize();
}

void NyxDiskStore::generateIndexFile() {
  char const* const label = "NyxDiskStore::generateIndexFile";
  myCheckOpen(label);
  if (m_record.fileFormat == TAPES) Message::fatal(label, 0, "Cannot generate an index file for tapes!");
  vFilename const name = indexName(m_fileName);
  int const fd = NYXFSopen3(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (fd < 0) Message::fatal(label, 0, "Failed to create the index file '%s'!", name.c_str());
  unsigned char header[16] = {};
  putLittle(header, 1, 4);
  putLittle(header + 4, static_cast<uint32_t>(m_record.extRecordLengthB), 4);
  putLittle(header + 8, static_cast<uint32_t>(m_record.nInstances), 4);
  if (NYXFSwrite(fd, header, sizeof header) != static_cast<long>(sizeof header)) {
    NYXFSclose(fd);
    Message::fatal(label, 0, "Failed to write header record to index file '%s'!", name.c_str());
  }
  // Walk the file: the offsets of the layout, not of an index in use.
  m_index.clear();
  for (int i = 1; i <= m_record.nInstances; ++i) {
    unsigned char record[8];
    putLittle(record, static_cast<uint64_t>(myOffsetOf(static_cast<unsigned int>(i))), 8);
    if (NYXFSwrite(fd, record, sizeof record) != static_cast<long>(sizeof record)) {
      NYXFSclose(fd);
      Message::fatal(label, 0, "Failed to write record %d to index file '%s'!", i, name.c_str());
    }
  }
  NYXFSclose(fd);
  myLoadIndex();
}

void NyxDiskStore::generateIndexFile(vHandle<Project>, vFilename const& file) {
  NyxDiskStore store;
  store.open(file);
  if (!store.hasIndexFile() || !store.isUsingIndex()) store.generateIndexFile();
  store.close();
}
