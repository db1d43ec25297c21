#ifndef FOUNDATION_PACKABLE_H
#define FOUNDATION_PACKABLE_H

// Packable: the base of every class that travels in a Packer message.
//
// The pattern every implementation follows: pack() writes
// packFrame(Magic, Version), its fields in a fixed order, endFrame().
// unpack() reads the frame start, refuses a foreign magic with its own
// message, reads the fields the version found has (older frames lack later
// fields, which keep their defaults) and ends with endFrame() for a version
// it knows in full, or with skipFrame() for a frame of a newer writer.

class Packer;

class Packable {
 public:
  virtual ~Packable();
  virtual void pack(Packer& packer) const = 0;
  virtual void unpack(Packer& packer) = 0;
};

#endif
