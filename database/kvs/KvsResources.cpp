#include "database/kvs/KvsResources.h"

namespace kvs {

bool KvsResIsPointer(long code) {
  if (code & KvsText) return true;
  long i = code & 0x1FF;
  return i == (KvsNuserData & 0x1FF) || i == KvsNchildren || i == KvsNbuf || i == KvsNdata || i == KvsNnull;
}

const char* _KvsRes(long code) {
  switch (code & 0x1FF) {
    case 1: return "KvsNclassId";
    case 2: return "KvsNstatus";
    case 3: return "KvsNmode";
    case 4: return "KvsNproject";
    case 5: return "KvsNname";
    case 6: return "KvsNident";
    case 7: return "KvsNuserData";
    case 8: return "KvsNtmp";
    case 9: return "KvsNnoNull";
    case 10: return "KvsNisExtended";
    case 11: return "KvsNisSorted";
    case 12: return "KvsNextension";
    case 16: return "KvsNnumChildren";
    case 17: return "KvsNchildren";
    case 18: return "KvsNnumSlots";
    case 21: return "KvsNserver";
    case 22: return "KvsNbase";
    case 23: return "KvsNhome";
    case 24: return "KvsNtmpdir";
    case 25: return "KvsNdict";
    case 26: return "KvsNlogfd";
    case 27: return "KvsNlogfile";
    case 28: return "KvsNclient";
    case 31: return "KvsNhost";
    case 32: return "KvsNuser";
    case 33: return "KvsNsocket";
    case 34: return "KvsNpid";
    case 35: return "KvsNspid";
    case 36: return "KvsNbuflen";
    case 37: return "KvsNbuf";
    case 38: return "KvsNmsgi";
    case 39: return "KvsNmsgo";
    case 40: return "KvsNbufsiz";
    case 41: return "KvsNtype";
    case 42: return "KvsNversion";
    case 43: return "KvsNdomain";
    case 44: return "KvsNdata";
    case 45: return "KvsNscan";
    case 46: return "KvsNgrouped";
    case 47: return "KvsNforUpdate";
    case 48: return "KvsNnumids";
    case 49: return "KvsNsize";
    case 50: return "KvsNopenMode";
    case 51: return "KvsNlength";
    case 52: return "KvsNoffset";
    case 53: return "KvsNisOpened";
    case 54: return "KvsNfilename";
    case 55: return "KvsNfd";
    case 56: return "KvsNkey1";
    case 57: return "KvsNkey2";
    case 58: return "KvsNreadMode";
    case 60: return "KvsNreal";
    case 61: return "KvsNclass";
    case 62: return "KvsNformat";
    case 63: return "KvsNfmt";
    case 64: return "KvsNdimension";
    case 65: return "KvsNunit";
    case 66: return "KvsNnull";
    case 67: return "KvsNascii";
    case 68: return "KvsNmin";
    case 69: return "KvsNmax";
    case 70: return "KvsNfirst";
    case 71: return "KvsNlast";
    case 72: return "KvsNvalues";
    case 74: return "KvsNfpos";
    case 75: return "KvsNlpos";
    case 76: return "KvsNincr";
    case 77: return "KvsNmask";
    case 78: return "KvsNshft";
    case 79: return "KvsNisKey";
    case 80: return "KvsNhead";
    case 81: return "KvsNvalue";
    case 82: return "KvsNparam";
    case 83: return "KvsNselect";
    case 84: return "KvsNsite";
    case 85: return "KvsNora";
    case 86: return "KvsNremote";
    case 87: return "KvsNdatasite";
    default: return "KvsN?";
  }
}

}  // namespace kvs
