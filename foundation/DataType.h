#ifndef FOUNDATION_DATATYPE_H
#define FOUNDATION_DATATYPE_H

// DataType: the value type codes of the whole system. Attributes, properties
// and every Packer entry carry one. The codes are part of the wire format and
// of stored files: never renumber them.
//
// Flags combine with a base code in one byte: vARRAYOF (0x80) marks an array
// of the base type, vADDRESSOF (0x40, only inside a sending Packer) marks an
// entry that refers to caller memory. A code is an address-of code when bit
// 0x40 is set and bit 0x20 clear, which keeps vENDFRAME and vPACKFRAME out.
// See vUtl::dataTypeSize, vUtl::dataTypeName, vUtl::dataTypeFromName.

enum DataType {
  vNOTYPE = 0,
  vINT8 = 1,
  vUINT8 = 2,
  vINT16 = 3,
  vUINT16 = 4,
  vINT32 = 5,
  vUINT32 = 6,
  vINT64 = 7,
  vUINT64 = 8,
  vINT128 = 9,
  vUINT128 = 10,
  vFLOAT32 = 11,
  vFLOAT64 = 12,
  vFLOAT128 = 13,
  vCHAR8 = 14,
  vUCHAR8 = 15,
  vBOOL8 = 16,
  vSTRING = 17,
  vDATE = 18,
  vLOB = 19,
  vCLOB = 20,
  vCOMPLEX32 = 21,
  vCOMPLEX64 = 22,
  vFLOAT16 = 23,
  vIBMFLOAT32 = 24,
  vENDFRAME = 126,
  vPACKFRAME = 127,

  vADDRESSOF = 0x40,
  vARRAYOF = 0x80,

  // Composite codes that name a whole array type in text (definition files).
  vBOOLEANARRAY = vARRAYOF | vBOOL8,
  vNUMBERARRAY = vARRAYOF | vFLOAT64,
  vSTRINGARRAY = vARRAYOF | vSTRING
};

#endif
