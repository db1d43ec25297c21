#pragma once
// Resource codes naming object attributes: bits 0-8 index the name table,
// bit 25 marks a value passed as a pointer to text.
namespace kvs {

constexpr long KvsText = 0x2000000;

enum KvsResource : long {
  KvsNclassId = 1, KvsNstatus = 2, KvsNmode = 3, KvsNproject = 4 | KvsText, KvsNname = 5 | KvsText,
  KvsNident = 6 | KvsText, KvsNuserData = 7, KvsNtmp = 8, KvsNnoNull = 9, KvsNisExtended = 10,
  KvsNisSorted = 11, KvsNextension = 12, KvsNnumChildren = 16, KvsNchildren = 17, KvsNnumSlots = 18,
  KvsNserver = 21 | KvsText, KvsNbase = 22 | KvsText, KvsNhome = 23 | KvsText, KvsNtmpdir = 24 | KvsText,
  KvsNdict = 25 | KvsText, KvsNlogfd = 26, KvsNlogfile = 27 | KvsText, KvsNclient = 28 | KvsText,
  KvsNhost = 31 | KvsText, KvsNuser = 32 | KvsText, KvsNsocket = 33, KvsNpid = 34, KvsNspid = 35,
  KvsNbuflen = 36, KvsNbuf = 37, KvsNmsgi = 38, KvsNmsgo = 39, KvsNbufsiz = 40, KvsNtype = 41 | KvsText,
  KvsNversion = 42 | KvsText, KvsNdomain = 43 | KvsText, KvsNdata = 44, KvsNscan = 45, KvsNgrouped = 46,
  KvsNforUpdate = 47, KvsNnumids = 48, KvsNsize = 49, KvsNopenMode = 50, KvsNlength = 51, KvsNoffset = 52,
  KvsNisOpened = 53, KvsNfilename = 54 | KvsText, KvsNfd = 55, KvsNkey1 = 56, KvsNkey2 = 57,
  KvsNreadMode = 58, KvsNreal = 60, KvsNclass = 61 | KvsText, KvsNformat = 62 | KvsText,
  KvsNfmt = 63 | KvsText, KvsNdimension = 64 | KvsText, KvsNunit = 65 | KvsText, KvsNnull = 66,
  KvsNascii = 67 | KvsText, KvsNmin = 68, KvsNmax = 69, KvsNfirst = 70, KvsNlast = 71, KvsNvalues = 72,
  KvsNfpos = 74, KvsNlpos = 75, KvsNincr = 76, KvsNmask = 77, KvsNshft = 78, KvsNisKey = 79, KvsNhead = 80,
  KvsNvalue = 81, KvsNparam = 82, KvsNselect = 83 | KvsText, KvsNsite = 84 | KvsText, KvsNora = 85,
  KvsNremote = 86, KvsNdatasite = 87 | KvsText
};

// Resources whose value travels as a pointer (text, or data).
bool KvsResIsPointer(long code);
// The printed name of a resource code, "KvsN?" for an unknown one.
const char* _KvsRes(long code);

}  // namespace kvs
